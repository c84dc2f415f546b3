#include "app/check/findings/findings_file.h"

#include <algorithm>
#include <cerrno>

#include "platform/files.h"
#include "platform/json.h"

namespace {

constexpr std::string_view version = "2.02";

std::string json_text(std::string_view text) {
  std::string json;
  x_append_json(json, text);
  return json;
}

void append_rules(std::string& json) {
  bool is_first = true;
  for (const auto& row : kv_rules()) {
    json += is_first ? "\n" : ",\n";
    json.append("     {\"id\": ").append(json_text(row.name));
    json.append(", \"shortDescription\": {\"text\": ").append(json_text(row.meaning)).append("}}");
    is_first = false;
  }
}

// The uri of a file below the present directory, letters that a uri does not take as "%20".
std::string uri_of(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF", plain = "/-._~";
  std::string uri;
  for (const char c : path) {
    const bool is_plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                          (c >= 'a' && c <= 'z') || plain.find(c) != plain.npos;
    if (is_plain) {
      uri += c;
      continue;
    }
    const auto code = static_cast<unsigned char>(c);
    uri.append("%").append(1, digits[code >> 4U]).append(1, digits[code & 15U]);
  }
  return uri;
}

void append_result(std::string& json, const kv_finding_t& f) {
  json.append("    {\"ruleId\": ").append(json_text(kv_row_of(f.rule).name));
  json.append(", \"level\": ").append(json_text(kv_severity_word(f.severity)));
  json.append(", \"message\": {\"text\": ").append(json_text(f.words)).append("}");
  json += ", \"locations\": [{";
  if (!f.sheet.empty()) {
    json += "\"physicalLocation\": {\"artifactLocation\": {\"uri\": ";
    json.append(json_text(uri_of(f.sheet))).append("}}, ");
  }
  json += "\"logicalLocations\": [{\"fullyQualifiedName\": ";
  json.append(json_text(f.path)).append("}]}]");
  if (f.waived) json += ", \"suppressions\": [{\"kind\": \"external\"}]";
  json += "}";
}

// --- JUnit

std::string xml_text(std::string_view text) {
  std::string xml;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '&') {
      xml += "&amp;";
    } else if (c == '<') {
      xml += "&lt;";
    } else if (c == '>') {
      xml += "&gt;";
    } else if (c == '"') {
      xml += "&quot;";
    } else {
      xml += code < 32 || code > 126 ? '?' : c;
    }
  }
  return xml;
}

bool has_failed(const kv_finding_t& f) { return !f.waived && f.severity == kv_severity::error; }

void append_case(std::string& xml, std::string_view rule, std::string_view path,
                 const std::string& outcome) {
  xml.append("  <testcase classname=\"").append(rule).append("\" name=\"");
  xml.append(xml_text(path)).append("\"");
  xml.append(outcome.empty() ? "/>\n" : ">" + outcome + "</testcase>\n");
}

std::string outcome_of(const kv_finding_t& f) {
  const std::string words = xml_text(f.words);
  if (f.waived) return "<skipped message=\"waived: " + words + "\"/>";
  if (has_failed(f)) return "<failure message=\"" + words + "\"/>";
  return "<system-out>warning: " + words + "</system-out>";
}

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

std::string kv_findings_sarif(const kv_findings_t& findings) {
  std::string json =
      "{\"$schema\": \"https://json.schemastore.org/sarif-2.1.0.json\",\n"
      " \"version\": \"2.1.0\",\n \"runs\": [\n  {\"tool\": {\"driver\": "
      "{\"name\": \"KIVO\", \"version\": ";
  json.append(json_text(version)).append(", \"rules\": [");
  append_rules(json);
  json += "]}},\n   \"results\": [";
  for (std::size_t i = 0; i < findings.size(); ++i) {
    json += i == 0 ? "\n" : ",\n";
    append_result(json, findings[i]);
  }
  return json += "]}]}\n";
}

std::string kv_findings_junit(const kv_findings_t& findings, const kv_severities_t& severities) {
  std::string cases;
  std::size_t nb_of_cases = findings.size();
  for (const auto& f : findings) append_case(cases, kv_row_of(f.rule).name, f.path, outcome_of(f));
  for (const auto& row : kv_rules()) {
    const bool is_off = kv_severity_of(severities, row.rule) == kv_severity::off;
    const bool is_found =
        std::ranges::find(findings, row.rule, &kv_finding_t::rule) != findings.end();
    if (is_off || is_found) continue;
    append_case(cases, row.name, row.meaning, "");
    ++nb_of_cases;
  }
  const auto failed = std::ranges::count_if(findings, has_failed);
  const auto waived = std::ranges::count(findings, true, &kv_finding_t::waived);
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n <testsuite name=\"CHEck "
         "DESign\" tests=\"" +
         std::to_string(nb_of_cases) + "\" failures=\"" + std::to_string(failed) +
         "\" errors=\"0\" skipped=\"" + std::to_string(waived) + "\">\n" + cases +
         " </testsuite>\n</testsuites>\n";
}

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
