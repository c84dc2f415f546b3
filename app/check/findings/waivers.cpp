#include "app/check/findings/waivers.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <unordered_map>

#include "gx/text/strings.h"
#include "platform/files.h"

namespace {

constexpr std::size_t most_bytes = 16U << 20;
constexpr std::string_view file_name = "waivers";

std::string path_of_file(const std::string& directory) {
  return directory + "/" + std::string(file_name);
}

// The next word or quoted text of a line; nothing at its end or when a quote is not closed.
std::optional<std::string> take_word(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (line.empty()) return std::nullopt;
  std::string word;
  if (line.front() != '"') {
    const auto end = std::min(line.find_first_of(" \t\""), line.size());
    word = line.substr(0, end);
    line.remove_prefix(end);
    return word;
  }
  for (std::size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '"') {
      line.remove_prefix(i + 1);
      return word;
    }
    if (line[i] == '\\' && i + 1 < line.size()) ++i;
    word += line[i];
  }
  return std::nullopt;
}

std::string in_quotes(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

bool is_date(std::string_view word) {
  constexpr std::string_view form = "dddd-dd-dd";
  return word.size() == form.size() && std::ranges::equal(word, form, [](char c, char f) {
           return f == 'd' ? c >= '0' && c <= '9' : c == f;
         });
}

// What is wrong with a line; "" when it is a waiver.
std::string parse_line(std::string_view line, kv_waiver_t& waiver) {
  const auto printable = [](char c) { return c == '\t' || (c >= 32 && c <= 126); };
  if (!std::ranges::all_of(line, printable)) return "contains a control or non-ASCII character";
  const auto rule = take_word(line);
  if (!rule) return "no rule";
  const auto known = kv_rule_named(*rule);
  if (!known) return "unknown rule : " + rule->substr(0, 40);
  const auto path = take_word(line), reason = take_word(line), date = take_word(line);
  if (!path || !reason || !date) return "not : rule \"path\" \"reason\" date";
  if (!path->starts_with('/')) return "no path : " + path->substr(0, 40);
  if (!is_date(*date)) return "no date : " + date->substr(0, 40);
  if (line.find_first_not_of(" \t") != line.npos) return "text after the date";
  waiver.rule = *known;
  waiver.path = *path;
  waiver.reason = *reason;
  waiver.date = *date;
  return "";
}

// What a waiver of one path and a finding have in common, letters in either case.
std::string key_of(kv_rule rule, std::string_view path) {
  std::string key = std::to_string(static_cast<int>(rule)).append(path);
  std::ranges::transform(key, key.begin(), gx_upper_case);
  return key;
}

bool begins_as(const kv_waiver_t& waiver, const kv_finding_t& finding) {
  std::string_view stem = waiver.path;
  stem.remove_suffix(1);
  return waiver.rule == finding.rule &&
         gx_iden(std::string_view(finding.path).substr(0, stem.size()), stem);
}

}  // namespace

kv_waivers_t kv_parse_waivers(std::string_view text) {
  kv_waivers_t result;
  for (int number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const auto first = line.find_first_not_of(" \t");
    if (first == line.npos || line[first] == '#') continue;
    kv_waiver_t waiver;
    waiver.line = number;
    const std::string fault = parse_line(line, waiver);
    if (fault.empty()) {
      result.waivers.push_back(std::move(waiver));
    } else {
      result.faults.push_back(std::string(file_name) + ":" + std::to_string(number) + " : " +
                              fault);
    }
  }
  return result;
}

kv_waivers_t kv_read_waivers(const std::string& directory) {
  const x_descriptor file = x_open_regular(path_of_file(directory));
  if (!file && errno == ENOENT) return {};
  std::string text;
  if (!file || !x_read_whole(file.get(), text, most_bytes + 1)) {
    return {{}, {std::string(file_name) + " : " + x_why(errno)}};
  }
  if (text.size() > most_bytes) return {{}, {std::string(file_name) + " : larger than 16 MB"}};
  return kv_parse_waivers(text);
}

std::vector<kv_waiver_t> kv_apply_waivers(const std::vector<kv_waiver_t>& waivers,
                                          kv_findings_t& findings) {
  if (waivers.empty()) return {};
  std::unordered_multimap<std::string, std::size_t> of_one_path;
  std::vector<std::size_t> of_many;
  for (std::size_t i = 0; i < waivers.size(); ++i) {
    if (waivers[i].path.ends_with('*')) {
      of_many.push_back(i);
    } else {
      of_one_path.emplace(key_of(waivers[i].rule, waivers[i].path), i);
    }
  }
  std::vector<bool> is_met(waivers.size());
  for (auto& finding : findings) {
    const auto take = [&](std::size_t waiver) { finding.waived = is_met[waiver] = true; };
    const auto [first, last] = of_one_path.equal_range(key_of(finding.rule, finding.path));
    for (auto at = first; at != last; ++at) take(at->second);
    for (const std::size_t waiver : of_many)
      if (begins_as(waivers[waiver], finding)) take(waiver);
  }
  std::vector<kv_waiver_t> idle;
  for (std::size_t i = 0; i < waivers.size(); ++i)
    if (!is_met[i]) idle.push_back(waivers[i]);
  return idle;
}

std::string kv_waiver_line(const kv_waiver_t& waiver) {
  return std::string(kv_row_of(waiver.rule).name) + " " + in_quotes(waiver.path) + " " +
         in_quotes(waiver.reason) + " " + waiver.date;
}

std::string kv_add_waiver(const std::string& directory, const kv_waiver_t& waiver) {
  const std::string path = path_of_file(directory);
  std::string text;
  if (const x_descriptor file = x_open_regular(path)) {
    if (!x_read_whole(file.get(), text, most_bytes)) return x_why(errno);
    if (text.size() == most_bytes) return "larger than 16 MB";
  } else if (errno != ENOENT) {
    return x_why(errno);
  }
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
  text += kv_waiver_line(waiver) + "\n";
  return x_replace_file(path, text) ? "" : x_why(errno);
}
