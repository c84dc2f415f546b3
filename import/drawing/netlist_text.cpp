// Words of netlist lines.
#include "import/drawing/netlist_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <span>
#include <sstream>

#include "gx/text/strings.h"

namespace {

// A line with those that continue it.
struct whole_line_t {
  std::string text{};
  std::string drawn{};  // as it is
};

// Lines and comments, which may stand between a line and what continues it.
std::vector<whole_line_t> lines_of(std::string_view text) {
  std::vector<whole_line_t> lines;
  std::size_t last = 0;  // that was no comment
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) {
    const auto first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos) continue;
    const std::string drawn = line + "\n";
    line.erase(0, first);
    if (line.front() == '+' && !lines.empty()) {
      lines[last].text += " " + line.substr(1);
      lines[last].drawn += drawn;
      continue;
    }
    if (line.front() != '*') last = lines.size();
    lines.push_back({std::move(line), drawn});
  }
  return lines;
}

std::vector<std::string> whole_lines(std::string_view text) {
  std::vector<std::string> lines;
  for (auto& line : lines_of(text)) lines.push_back(std::move(line.text));
  return lines;
}

// The words of a line, "a = 1" one of them; brackets of XSPICE and what inverts its ports left out.
std::vector<std::string> words_of(const std::string& line) {
  const bool ports = gx_upper_case(line.front()) == 'A';
  std::vector<std::string> words;
  bool joined = false;
  std::string plain;
  for (const char c : line) {
    if (c == '=')
      plain += " = ";
    else
      plain += ports && std::string_view("[]()").find(c) != std::string_view::npos ? ' ' : c;
  }
  constexpr std::string_view blanks = " \t\n\v\f\r";
  for (auto at = plain.find_first_not_of(blanks); at != plain.npos;) {
    const auto end = std::min(plain.find_first_of(blanks, at), plain.size());
    const std::string word = plain.substr(at, end - at);
    at = plain.find_first_not_of(blanks, end);
    const bool equals = word == "=" && words.size() > 1;
    if (equals || joined) {
      words.back() += word;
    } else if (!ports || gxi_is_node(word)) {
      words.push_back(ports ? word.substr(word.find_first_not_of('~')) : word);
    }
    joined = equals;
  }
  return words;
}

// The line with "@1", "@2" ... for its first words after the name that are nodes.
std::string with_places(const std::string& line, std::size_t count) {
  const bool ports = gx_upper_case(line.front()) == 'A';
  const std::string_view between = ports ? " \t[]()" : " \t";
  std::string out = line.substr(0, line.find_first_of(" \t"));
  std::size_t at = out.size();
  for (std::size_t node = 0; node < count && at < line.size();) {
    const auto begin = std::min(line.find_first_not_of(between, at), line.size());
    const auto end = std::min(line.find_first_of(between, begin), line.size());
    out += line.substr(at, begin - at);
    const auto word = line.substr(begin, end - begin);
    at = end;
    if (ports && !gxi_is_node(word)) {
      out += word;
      continue;
    }
    if (ports && word.starts_with('~')) out += '~';
    out += "@" + std::to_string(++node);
  }
  for (const char c : line.substr(at)) out += c == '@' ? "@@" : std::string(1, c);
  return out;
}

bool is_one_of(std::span<const std::string_view> words, std::string_view word) {
  return std::ranges::any_of(words, [&](auto known) { return gx_iden(known, word); });
}

// What no simulator takes for a node.
bool is_of_value(std::string_view word) {
  constexpr auto words = std::to_array<std::string_view>(
      {"TABLE", "VALUE", "VOL", "CUR", "POLY", "LAPLACE", "FREQ", "PWL", "VCR", "VCCS", "VCVS"});
  return word.find_first_of("({'\"=") != std::string_view::npos || is_one_of(words, word);
}

std::size_t nodes_among(const std::vector<std::string>& words) {
  const auto from = [&](std::size_t first, auto is_value) {
    return static_cast<std::size_t>(
        std::find_if(words.begin() + static_cast<std::ptrdiff_t>(std::min(first, words.size())),
                     words.end(), is_value) -
        words.begin());
  };
  const auto most = static_cast<std::size_t>(gxi_spice_nodes(words.front().front()));
  if (most == static_cast<std::size_t>(gxi_any_nodes)) {
    const auto plain = from(1, [](const auto& word) {
      return word.find('=') != std::string::npos || gx_iden(word, "params:");
    });
    return plain > 2 ? plain - 2 : 0;
  }
  // Of a controlled source that says TABLE or POLY(2) there are two, whatever these are called.
  return most == 4 ? std::min(most, from(3, gxi_begins_value) - 1) : most;
}

}  // namespace

int gxi_spice_nodes(char letter) {
  switch (gx_upper_case(letter)) {
    case 'M':
    case 'E':
    case 'G':
    case 'S':
    case 'T':
    case 'O':
      return 4;
    case 'Q':
    case 'J':
    case 'Z':
      return 3;
    case 'K':
      return 0;
    case 'X':
    case 'A':
    case 'U':
      return gxi_any_nodes;
    default:
      return 2;
  }
}

bool gxi_begins_value(std::string_view word) {
  // Kinds of controlled sources that may well be names of nets elsewhere.
  constexpr auto kinds = std::to_array<std::string_view>({"DELAY", "OPAMP", "TRANSFORMER"});
  return is_of_value(word) || is_one_of(kinds, word);
}

bool gxi_is_node(std::string_view word) {
  return word.find_first_not_of("[](){},~") != std::string_view::npos && word.front() != '%' &&
         !is_of_value(word);
}

std::vector<std::string> gxi_netlist_ports(std::string_view text, std::string_view subcircuit) {
  for (const auto& line : whole_lines(text)) {
    if (!gx_equal(".subckt", line)) continue;
    auto words = words_of(line);
    if (words.size() < 2 || !gx_iden(words[1], subcircuit)) continue;
    const auto parameters = std::find_if(words.begin() + 2, words.end(), [](const auto& word) {
      return word.find('=') != std::string::npos || gx_iden(word, "params:");
    });
    return {words.begin() + 2, parameters};
  }
  return {};
}

std::vector<gxi_netlist_device_t> gxi_netlist_devices(std::string_view text, std::string* rest) {
  std::vector<gxi_netlist_device_t> devices;
  int inside = 0;  // of blocks that hold other things
  for (const auto& [line, drawn] : lines_of(text)) {
    for (const auto* const word : {".control", ".subckt"}) inside += gx_equal(word, line);
    const bool may_be = inside == 0 && std::isalpha(static_cast<unsigned char>(line.front())) != 0;
    for (const auto* const word : {".endc", ".ends"})
      if (gx_equal(word, line) && inside > 0) --inside;
    const auto words = may_be ? words_of(line) : std::vector<std::string>{};
    const auto count = words.empty() ? 0 : nodes_among(words);
    if (count == 0 || words.size() < count + 1) {
      if (rest != nullptr) *rest += drawn;
      continue;
    }
    gxi_netlist_device_t device;
    device.name = words[0];
    const auto first = words.begin() + 1;
    device.nodes.assign(first, first + static_cast<std::ptrdiff_t>(count));
    for (std::size_t i = count + 1; i < words.size(); ++i)
      device.value += (device.value.empty() ? "" : " ") + words[i];
    device.line = with_places(line, count);
    devices.push_back(std::move(device));
  }
  return devices;
}
