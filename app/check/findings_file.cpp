#include "app/check/findings_file.h"

#include <cerrno>

#include "gx/text/strings.h"
#include "platform/files.h"

namespace {

std::string text(std::string_view value) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : value) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (code < 32 || code > 126) {  // of a file's name: bytes, each told as itself
      out += "\\u00";
      out += digits[code >> 4U];
      out += digits[code & 15U];
    } else {
      out += c;
    }
  }
  return out + "\"";
}

}  // namespace

std::string kv_findings_json(const kv_findings_t& findings) {
  std::string json = "[";
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const auto& f = findings[i];
    json += i == 0 ? "\n" : ",\n";
    json += " {\"number\": " + std::to_string(i + 1);
    json += f.severity == kv_severity::error ? R"(, "severity": "error")"
                                             : R"(, "severity": "warning")";
    json += ", \"rule\": " + text(kv_row_of(f.rule).name) + ", \"path\": " + text(f.path);
    json += ", \"sheet\": " + text(f.sheet) + ", \"object_id\": " + std::to_string(f.object_id);
    json += ", \"words\": " + text(f.words);
    json += f.waived ? ", \"waived\": true}" : ", \"waived\": false}";
  }
  return json + "\n]\n";
}

std::string kv_write_findings(const std::string& directory, const kv_findings_t& findings) {
  return x_replace_file(directory + "/findings.json", kv_findings_json(findings)) ? ""
                                                                                  : x_why(errno);
}
