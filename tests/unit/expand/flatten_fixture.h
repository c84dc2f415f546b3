// Designs made from descriptions in a directory of their own, flattened by the commands a user
// gives; what the store holds then, as text.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "expand/store.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/object_access.h"
#include "tests/support/make_design.h"
#include "tests/support/session_capture.h"

class FlattenTest : public ::testing::Test {
 protected:
  using lines_t = std::vector<std::string>;

  FlattenTest() {
    kv_sext = kv_defref_exp_rec_t{};
    std::filesystem::current_path(directory.path());
    kv_sext.designfile = ::open("design_kv", O_RDWR | O_CREAT, 0660);
  }
  ~FlattenTest() override {
    ::close(kv_sext.designfile);
    kv_sext = kv_defref_exp_rec_t{};
    std::filesystem::current_path(here);
  }

  // Makes the files of a description; "top" is the design. Parts are symbols of one line each:
  // r (pins 1 in, 2 out, CLASS R), p (a port), g (a global without a name), e (two pins above
  // each other, IXO).
  std::vector<gxm_file_t> build(const std::string& sheets) {
    constexpr std::string_view devices =
        "symbol r\n pin 1 0,0 IN\n pin 2 4,0 OUT\n prop CLASS=R\n"
        "symbol p\n pin P 0,0 IXO\n prop CLASS=PORTIN\n"
        "symbol g\n pin P 0,0 IXO\n prop CLASS=G\n"
        "symbol e\n pin 1 0,0 IXO\n pin 2 0,4 IXO\n prop CLASS=R\n";
    return build_design(std::string(devices) + sheets);
  }
  void write(const std::vector<gxm_file_t>& files) { gxm_write(files, directory.path()); }

  // Declares what most designs need: CLASS marks the leaves, nothing is told of its absence.
  void declare(const lines_t& commands = {"PRIMI CLASS", "PROP INS S CLASS", "PROP PIN S PIN",
                                          "PROP NET S NET"}) {
    for (const auto& command : commands) session.run(command);
  }
  void open_top() { kv_pext.arrayof_file[0].file_index = gx_file_open("top", "sheet"); }

  // The answers of RUN without the lines that tell its progress.
  lines_t answers() {
    lines_t lines;
    for (auto& line : session.run("RUN")) {
      if (line != " RUN " && !line.starts_with("# Processing : ")) lines.push_back(std::move(line));
    }
    return lines;
  }
  // The same for a design that is written, declared and opened first.
  lines_t run(const std::string& sheets) {
    write(build(sheets));
    declare();
    open_top();
    return answers();
  }

  static std::string text(std::int32_t string) { return std::string(kv_string_view(string)); }

  // A flat net: path, kind, " bus" or " sub" when it is one, the pins of its chains, its children
  // with their kinds.
  static std::string net(std::int32_t index) {
    const auto& record = kv_ptrto_net_rec(index);
    std::string line = text(record.sim_path) + " " + std::to_string(record.net_kind);
    if (record.net_type == kv_net_bus) line += " bus";
    if (record.net_type == kv_net_sub) line += " sub";
    for (std::int32_t n = 1; n <= record.nb_pin_in; ++n) {
      line += (n == 1 ? " in " : " ") + text(kv_net_ptrto_pin_in_rec(index, n).sim_path);
    }
    for (std::int32_t n = 1; n <= record.nb_pin_out; ++n) {
      line += (n == 1 ? " out " : " ") + text(kv_net_ptrto_pin_out_rec(index, n).sim_path);
    }
    for (std::int32_t n = 1; n <= record.nb_of_child; ++n) {
      const auto& child = kv_net_ptrto_net_child_rec(index, n);
      line += " + " + text(child.sim_path) + " " + std::to_string(child.net_kind);
    }
    return line;
  }
  static lines_t nets() {
    lines_t lines;
    for (std::int32_t i = 1; i <= kv_sext.nets.count; ++i) lines.push_back(net(i));
    return lines;
  }
  static lines_t leaves() {
    lines_t lines;
    for (std::int32_t i = 1; i <= kv_sext.insts.count; ++i) {
      lines.push_back(text(kv_ptrto_inst_rec(i).sim_path));
    }
    return lines;
  }

  scratch_directory directory;
  session_capture session;

 private:
  std::filesystem::path here = std::filesystem::current_path();
};

// The records of a built file, for tests that damage them.
inline gx_file_gene_recf_t& file_of(std::vector<gxm_file_t>& files, std::string_view directory,
                                    std::string_view base) {
  for (auto& file : files) {
    if (file.directory == directory && file.base == base) return *file.file;
  }
  throw std::runtime_error("no such file");
}
template <typename Rec, typename Change>
void change_each(gx_file_gene_recf_t& file, Change change) {
  for (auto* object : file.ptr_to_ar_objindex) {
    if (object != nullptr && object->object_type == Rec::type) {
      change(reinterpret_cast<Rec&>(*object));
    }
  }
}
inline void rename_property(gx_file_gene_recf_t& file, std::string_view from, std::string_view to) {
  change_each<gx_object_property_rec_t>(file, [&](gx_object_property_rec_t& property) {
    if (gx_view(property.name) == from) property.name = gx_name(to);
  });
}
