#include "app/find/readings.h"

#include <algorithm>

#include "gx/text/spelling.h"
#include "netlist/path_key.h"
#include "platform/files.h"

namespace {

constexpr std::size_t longest_references = std::size_t{1} << 30;

void add(kv_readings_t& readings, std::string key) {
  if (std::find(readings.keys.begin(), readings.keys.end(), key) == readings.keys.end())
    readings.keys.push_back(std::move(key));
}

std::string_view without_quotes(std::string_view text) {
  const bool quoted = text.size() > 1 && (text.front() == '"' || text.front() == '\'') &&
                      text.back() == text.front();
  return quoted ? text.substr(1, text.size() - 2) : text;
}

// "D[2]" is the bit D_2 of a bus.
std::string with_bits(std::string_view key) {
  std::string plain;
  for (std::size_t i = 0; i < key.size(); ++i) {
    const auto close = key[i] == '[' ? key.find(']', i) : key.npos;
    const auto inside = close == key.npos ? std::string_view() : key.substr(i + 1, close - i - 1);
    if (!inside.empty() && inside.find_first_not_of("0123456789") == inside.npos) {
      plain += '_';
      plain += inside;
      i = close;
    } else {
      plain += key[i];
    }
  }
  return plain;
}

// Names as they are drawn, spelled: each between its separators, or the text as one name.
void add_spelled(kv_readings_t& readings, std::string_view text) {
  std::string path;
  const std::string_view all = text;
  const bool rooted = text.starts_with('/');
  if (rooted) text.remove_prefix(1);
  const std::string whole = "/" + gx_spelled_name(text);
  for (;;) {
    const auto end = std::min(text.find('/'), text.size());
    path += "/" + gx_spelled_name(text.substr(0, end));
    if (end == text.size()) break;
    text.remove_prefix(end + 1);
  }
  if (path != (rooted ? "" : "/") + std::string(all)) add(readings, kv_path_key(path));
  add(readings, kv_path_key(whole));
}

// "R47", or what is below it: "U3.1".
void add_referenced(kv_readings_t& readings, std::string_view key,
                    const std::vector<kv_reference_t>& references) {
  if (key.starts_with('/')) key.remove_prefix(1);
  const auto end = std::min(key.find('/'), key.size());
  for (const auto& [path, reference] : references)
    if (kv_path_key(reference) == key.substr(0, end))
      add(readings, kv_path_key(path) + std::string(key.substr(end)));
}

}  // namespace

std::vector<kv_reference_t> kv_read_references(const std::string& design_directory) {
  std::vector<kv_reference_t> references;
  std::string bytes;
  const auto file = x_open_regular(design_directory + "/../references");
  if (!file || !x_read_whole(file.get(), bytes, longest_references)) return references;
  for (std::string_view rest = bytes; !rest.empty();) {
    const auto end = std::min(rest.find('\n'), rest.size());
    const auto line = rest.substr(0, end);
    if (const auto blank = line.find(' '); blank != line.npos)
      references.push_back(
          {std::string(line.substr(0, blank)), std::string(line.substr(blank + 1))});
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return references;
}

kv_readings_t kv_readings_of(std::string_view typed, std::string_view letters,
                             const std::vector<kv_reference_t>& references) {
  kv_readings_t readings;
  auto text = without_quotes(typed);
  if (text.size() > 2 && text.starts_with('*') && text.ends_with('*')) {
    readings.match = kv_match::anywhere;
    readings.keys = {kv_path_key(text.substr(1, text.size() - 2))};
    return readings;
  }
  if (text.ends_with('*')) {
    readings.match = kv_match::beginning;
    text.remove_suffix(1);
  } else {
    while (text.size() > 1 && text.back() == '/') text.remove_suffix(1);
  }
  const std::string key = kv_path_key(text);
  const auto separator = key.find('/');
  // "/" is the separator of whole paths; ":br" comes from a block of one letter, which is left out.
  add(readings, text.starts_with('/') ? key : "/" + key);
  if (key == "0") add(readings, "/GROUND");
  if (!text.starts_with('/') && separator != key.npos) {
    for (const char letter : letters) add(readings, std::string("/") + letter + key);
    if (separator == 1) add(readings, key.substr(1));
  }
  const auto plain = readings.keys;
  for (const auto& one : plain) add(readings, with_bits(one));
  add_spelled(readings, text);
  if (readings.match == kv_match::whole) add_referenced(readings, key, references);
  return readings;
}
