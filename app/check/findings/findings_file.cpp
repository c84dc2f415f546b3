#include "app/check/findings/findings_file.h"

#include <cerrno>

#include "platform/files.h"
#include "platform/json.h"

namespace {

void append(std::string& json, std::size_t number, const kv_finding_t& f) {
  json += " {\"number\": ";
  json += std::to_string(number);
  const auto add = [&](std::string_view name, std::string_view value) {
    json.append(", \"").append(name).append("\": ");
    x_append_json(json, value);
  };
  add("severity", kv_severity_word(f.severity));
  add("rule", kv_row_of(f.rule).name);
  add("path", f.path);
  add("sheet", f.sheet);
  json += ", \"object_id\": ";
  json += std::to_string(f.object_id);
  add("words", f.words);
  json += f.waived ? ", \"waived\": true}" : ", \"waived\": false}";
}

}  // namespace

std::string kv_findings_json(const kv_findings_t& findings) {
  constexpr std::size_t names = 160;  // of one finding, with its numbers; grown into when they vary
  std::size_t size = 4;
  for (const auto& f : findings) size += names + f.path.size() + f.sheet.size() + f.words.size();
  std::string json = "[";
  json.reserve(size);
  for (std::size_t i = 0; i < findings.size(); ++i) {
    json += i == 0 ? "\n" : ",\n";
    append(json, i + 1, findings[i]);
  }
  return json += "\n]\n";
}

std::string kv_write_findings(const std::string& directory, std::string_view file,
                              std::string_view text) {
  return x_replace_file(directory + "/" + std::string(file), text) ? "" : x_why(errno);
}
