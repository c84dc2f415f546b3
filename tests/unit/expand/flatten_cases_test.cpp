// What runs answer and make of designs, as texts in tests/cases/flatten.
#include <algorithm>
#include <sstream>

#include "gx/vext.h"
#include "tests/support/put_field.h"
#include "tests/support/session_case.h"
#include "tests/support/told_netlist.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

// The line with the ids of objects as "#".
std::string without_ids(std::string line) {
  for (const std::string_view mark : {"N_", "I_", "P_", "vertex "}) {
    for (auto at = line.find(mark); at != line.npos; at = line.find(mark, at + 1)) {
      const auto from = at + mark.size();
      const auto end = std::min(line.find_first_not_of("0123456789", from), line.size());
      if (end > from) line.replace(from, end - from, "#");
    }
  }
  return line;
}

// "top/sheet instance rotate 4": of all records of the type ("file": of the file's own); with
// "name=OLD" where that is the value.
void change_records(std::vector<gxm_file_t>& files, std::istringstream words) {
  std::string where, type, name, value;
  std::getline(words >> where >> type >> name >> std::ws, value);
  std::string old;
  if (const auto at = name.find('='); at != name.npos) old = name.substr(at + 1), name.erase(at);
  const auto change = [&](void* record, gx_fields_t fields) {
    for (const auto& field : fields)
      if (field.name == name && (old.empty() || gx_field_text(record, field) == old))
        put_field(record, fields, name, value);
  };
  for (const auto& file : files) {
    if (file.directory + "/" + file.base != where) continue;
    if (type == "file") change(file.file.get(), gx_header_fields());
    for (auto* object : file.file->ptr_to_ar_objindex)
      if (type == gx_type_name(object->object_type))
        change(object, gx_tail_fields(object->object_type));
  }
}

class flatten_session : public flat_design {
 public:
  explicit flatten_session(const std::string& text) {
    std::string design;
    lines_t changes;
    for (const auto& line : split_lines(text))
      line.starts_with("! ") ? changes.push_back(line.substr(2)) : void(design += line + "\n");
    auto files = build(design);
    for (const auto& change : changes) change_records(files, std::istringstream(change));
    write(files);
    if (!design.empty()) open_top();
  }
  lines_t answer(const std::string& line) {
    const auto names = split_lines(std::string("insts\nmacros\nnets\nchildren\npins\nmacro pins"));
    const auto what = std::ranges::find(names, line);
    lines_t lines;
    if (what != names.end()) {
      lines =
          told_objects(kv_memory_netlist_t(kv_sext), static_cast<kv_named>(what - names.begin()));
    } else if (line == "declare") {
      declare();
    } else if (line == "errors") {
      lines = {std::to_string(gx_vext.num_errors) + " errors, " +
               std::to_string(gx_vext.num_warnings) + " warnings, design_kv of " +
               (std::filesystem::file_size("design_kv") == 0 ? "nothing" : "a design")};
    } else if (line == "states") {  // as a simulation begins
      for (std::int32_t i = 1; i <= kv_sext.nets.count; ++i) {
        const auto& now = kv_ptrto_net_rec(i).cur_state;
        lines.push_back(std::to_string(now.state) + (now.fixed != 0 ? " fixed" : ""));
      }
    } else if (line == "kept") {
      lines = kept();
    } else if (line.starts_with("remove ")) {
      std::filesystem::remove(line.substr(7));
    } else if (line.starts_with("write ")) {
      const auto end = line.find(' ', 6);
      write_file(line.substr(6, end - 6), line.substr(end + 1));
    } else {
      lines = session.run(line);
    }
    std::ranges::transform(lines, lines.begin(), without_ids);
    return lines;
  }

 private:
  // What the session has declared.
  static lines_t kept() {
    lines_t lines;
    const auto put = [&](const auto& list, auto told) {
      for (int i = 0; i < list.count; ++i)
        lines.push_back(told(list.entry[static_cast<std::size_t>(i)]));
    };
    put(kv_sext.parameter, [](const auto& one) {
      std::ostringstream line;
      line << "parameter " << gx_view(one.name);
      for (const float value : one.nvalue) line << ' ' << value;
      return line.str();
    });
    put(kv_sext.primitive, [](const auto& one) {
      return "primitive " + std::string(gx_view(one.name)) + "=" + std::string(gx_view(one.nvalue));
    });
    for (const auto* list :
         {&kv_sext.property_net, &kv_sext.property_pin, &kv_sext.property_instance})
      put(*list, [](const auto& one) {
        return "property " + std::string(gx_view(one.prop_type)) + " " +
               std::string(gx_view(one.name));
      });
    lines.push_back("store size " + std::to_string(kv_sext.store_size) + ", time step " +
                    std::to_string(kv_sext.time_step));
    return lines;
  }
};

class FlattenCases : public ::testing::TestWithParam<const char*> {};

TEST_P(FlattenCases, AreAnsweredAsTheyAre) {
  expect_sessions<flatten_session>(std::string("flatten/") + GetParam());
}
INSTANTIATE_TEST_SUITE_P(Files, FlattenCases,
                         ::testing::Values("commands.txt", "errors.txt", "explain.txt",
                                           "nets.txt"));

}  // namespace
