// kvdump: a design file as readable text, every field of every record in the order of the file; and
// the format of design files, from the same description that writes and reads them.
#include <concepts>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "export/csv.h"
#include "export/json.h"
#include "export/sqlite/sqlite.h"
#include "kvi/load.h"
#include "netlist/design_records.h"
#include "platform/files.h"
#include "platform/json.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool{"kvdump",
                      "usage: kvdump [FORM] DESIGN\n"
                      "       kvdump --format\n"
                      "Prints the design file of the directory DESIGN, or the design file DESIGN: "
                      "as text, every field\n"
                      "of every record in the order of the file, or in another FORM:\n"
                      "  --json           as JSON\n"
                      "  --format yosys   as JSON of the form that Yosys reads\n"
                      "  --csv DIRECTORY  as tables, a file each in that directory\n"
                      "  --sqlite FILE    as an SQLite database\n"
                      "Other options:\n"
                      "  --format   prints the format of design files, as tables in Markdown\n"
                      "  --help     prints this\n"
                      "  --version  prints the version\n"};

void print_text(std::string_view text) { std::printf("\"%s\"", x_escaped(text).c_str()); }

void print_value(float value) { std::printf("%g", static_cast<double>(value)); }
void print_value(const gx_string_record_t& string) { print_text(gx_view(string)); }
void print_value(const kv_signal_state_rec& signal) {
  std::printf("state %d, time %d, fixed %d", signal.state, signal.time, signal.fixed);
}
template <std::integral Number>
void print_value(Number value) {
  std::printf("%d", static_cast<int>(value));
}
template <typename Number, std::size_t Count>
void print_value(const Number (&values)[Count]) {
  for (std::size_t i = 0; i < Count; ++i) {
    if (i > 0) std::printf(", ");
    print_value(values[i]);
  }
}

template <typename Record>
void print_fields(const kvi_design_t& design, const Record& record) {
  kv_for_each_field(record, [&](const auto& field) {
    std::printf("  %-18.*s ", static_cast<int>(field.name.size()), field.name.data());
    print_value(record.*field.member);
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(record.*field.member)>,
                                 std::int32_t>) {
      if (field.target == kv_array::strings && record.*field.member != 0) {
        std::printf(" ");
        print_text(design.text(record.*field.member));
      }
    }
    std::printf("\n");
  });
}

template <typename Record>
void print_records(const kvi_design_t& design, std::string_view name) {
  for (std::int32_t i = 1; i <= design.count<Record>(); ++i) {
    std::printf("%.*s %d\n", static_cast<int>(name.size()), name.data(), i);
    if constexpr (std::is_same_v<Record, kv_string_record_t>) {
      std::printf("  ");
      print_text(design.text(i));
      std::printf("\n");
    }
    print_fields(design, design.get<Record>(i));
  }
}

void print_design(const kvi_design_t& design) {
  std::printf("general information\n");
  print_fields(design, design.info());
  for (std::size_t part = 0; part < std::size(kv_list_parts); ++part) {
    const std::string_view name = kv_list_parts[part].name;
    int n = 0;
    for (const kv_prop_type_record_t& entry : design.list(part)) {
      std::printf("%.*s %d\n", static_cast<int>(name.size()), name.data(), ++n);
      print_fields(design, entry);
    }
  }
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    if constexpr (!std::is_same_v<record, char>) print_records<record>(design, part.name);
  });
}

// --- the format

template <typename Value>
std::string type_name() {
  if constexpr (std::is_array_v<Value>) {
    return std::to_string(std::extent_v<Value>) + " x " + type_name<std::remove_extent_t<Value>>();
  } else if constexpr (std::is_same_v<Value, gx_string_record_t>) {
    return "text";
  } else if constexpr (std::is_same_v<Value, kv_signal_state_rec>) {
    return "signal";
  } else if constexpr (std::is_floating_point_v<Value>) {
    return "float" + std::to_string(8 * sizeof(Value));
  } else {
    return (std::is_signed_v<Value> ? "int" : "uint") + std::to_string(8 * sizeof(Value));
  }
}

std::string part_name(kv_array array) {
  std::string name;
  int at = 0;
  kv_for_each_part([&](const auto& part) {
    if (at++ == static_cast<int>(array)) name = part.name;
  });
  return name;
}

template <typename Record, typename Member>
void print_row(const kv_field_t<Record, Member>& field, std::string_view when) {
  std::printf("| %zu | `%.*s` | %s | %s | %.*s |\n", field.offset,
              static_cast<int>(field.name.size()), field.name.data(), type_name<Member>().c_str(),
              field.target ? part_name(*field.target).c_str() : "", static_cast<int>(when.size()),
              when.data());
}

template <typename Record>
void print_layout(std::string_view name) {
  std::printf("\n### %.*s (%zu bytes)\n\n", static_cast<int>(name.size()), name.data(),
              kv_layout<Record>::size);
  std::printf("| offset | field | type | index of | only in |\n|---|---|---|---|---|\n");
  const auto rows = [&](std::string_view when) {
    return [=](const auto&... field) { (print_row(field, when), ...); };
  };
  std::apply(rows(""), kv_layout<Record>::fields);
  std::apply([&](const auto&... variant) { (std::apply(rows(variant.when), variant.fields), ...); },
             kv_layout<Record>::variants);
}

void print_part(std::string_view name, std::string_view count, std::size_t size) {
  std::printf("| %.*s | `%.*s` | %zu |\n", static_cast<int>(name.size()), name.data(),
              static_cast<int>(count.size()), count.data(), size);
}

void print_format() {
  std::printf("### Parts\n\n| part | count | bytes of a record |\n|---|---|---|\n");
  std::printf("| general information | 1 | %zu |\n", kv_layout<kv_general_info_record_t>::size);
  for (const kv_list_part_t& part : kv_list_parts) {
    print_part(part.name, kv_count_name(part.count), kv_layout<kv_prop_type_record_t>::size);
  }
  kv_for_each_part([](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    print_part(part.name, kv_count_name(part.count), kv_layout<record>::size);
  });
  print_layout<kv_general_info_record_t>("general information");
  print_layout<kv_prop_type_record_t>("property_instance, property_pin, property_net");
  kv_for_each_part([](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    if constexpr (!std::is_same_v<record, char>) print_layout<record>(part.name);
  });
  print_layout<kv_signal_state_rec>("signal");
}

// The findings of the last check of a design directory; "" when there are none.
std::string findings_of(const std::string& directory) {
  constexpr std::size_t most = std::size_t{1} << 30U;
  std::string findings;
  return x_read_regular(directory + "/findings.json", findings, most) ? findings : "";
}

// The name of the design: the last of its path, without that of the file.
std::string name_of(std::string path) {
  if (path.ends_with("/design_kv")) path.resize(path.size() - 10);
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

int main(int argc, char** argv) {
  bool format = false, json = false;
  std::string_view csv, sqlite;
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "--format", .flag = &format},
                                   {.name = "--json", .flag = &json},
                                   {.name = "--csv", .value = &csv},
                                   {.name = "--sqlite", .value = &sqlite}};
  if (const auto status = tool_read(tool, argc, argv, options, words)) return *status;
  const bool yosys = format && !words.empty();
  if (format + json + !csv.empty() + !sqlite.empty() > 1)
    return tool_usage_error(tool, "one form at a time");
  if (format && !yosys) {
    print_format();
    return tool_end(tool, 0);
  }
  if (yosys && words[0] != "yosys") return tool_usage_error(tool, "no form but yosys has a name");
  if (yosys) words.erase(words.begin());
  if (words.size() != 1) return tool_usage_error(tool, "give one DESIGN");
  const std::string path(words[0]);
  kvi_design_t design;
  const kvi_loaded_t loaded = kvi_open_design(design, path);
  if (loaded.result != kvi_load_result::loaded) {
    tool_complain(tool, loaded.message);
    return 1;
  }
  std::string trouble;
  if (json) {
    kv_write_json(design, stdout);
  } else if (yosys) {
    kv_write_yosys(design, name_of(path), stdout);
  } else if (!csv.empty()) {
    trouble = kv_write_csv(design, path, std::string(csv));
  } else if (!sqlite.empty()) {
    trouble = kv_write_sqlite(design, path, findings_of(path), std::string(sqlite));
  } else {
    print_design(design);
  }
  if (trouble.empty() && !design.is_unchanged()) trouble = kvi_changed_message(path);
  if (trouble.empty()) return tool_end(tool, 0);
  tool_complain(tool, trouble);
  return tool_end(tool, 1);
}
