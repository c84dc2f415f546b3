// Designs made from descriptions in a directory of their own, flattened by the commands a user
// gives.
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

class flat_design {
 public:
  flat_design() {
    kv_sext = kv_defref_exp_rec_t{};
    std::filesystem::current_path(directory.path());
    kv_sext.designfile = ::open("design_kv", O_RDWR | O_CREAT, 0660);
  }
  ~flat_design() {
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

  scratch_directory directory;
  session_capture session;

 private:
  std::filesystem::path here = std::filesystem::current_path();
};

class FlattenTest : public ::testing::Test, protected flat_design {};
