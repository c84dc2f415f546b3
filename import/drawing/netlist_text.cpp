// Words of netlist lines.
#include "import/drawing/netlist_text.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "gx/text/strings.h"

namespace {

// Lines with those that continue them.
std::vector<std::string> whole_lines(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) {
    const auto first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos) continue;
    line.erase(0, first);
    if (line.front() == '+' && !lines.empty())
      lines.back() += " " + line.substr(1);
    else
      lines.push_back(std::move(line));
  }
  return lines;
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
    case 'U':
      return 3;
    case 'K':
      return 0;
    case 'X':
    case 'A':
      return gxi_any_nodes;
    default:
      return 2;
  }
}

std::vector<gxi_netlist_device_t> gxi_netlist_devices(std::string_view text) {
  std::vector<gxi_netlist_device_t> devices;
  int inside = 0;  // of blocks that hold other things
  for (const auto& line : whole_lines(text)) {
    for (const auto* const word : {".control", ".subckt"}) inside += gx_equal(word, line);
    for (const auto* const word : {".endc", ".ends"})
      if (gx_equal(word, line) && inside > 0) --inside;
    if (inside > 0 || !std::isalpha(static_cast<unsigned char>(line.front()))) continue;
    std::vector<std::string> words;
    std::istringstream in(line);
    for (std::string word; in >> word;) words.push_back(word);
    auto count = static_cast<std::size_t>(gxi_spice_nodes(line.front()));
    if (count == static_cast<std::size_t>(gxi_any_nodes)) {
      const auto plain = std::find_if(words.begin(), words.end(), [](const auto& word) {
        return word.find('=') != std::string::npos;
      });
      const auto length = static_cast<std::size_t>(plain - words.begin());
      count = length > 2 ? length - 2 : 0;
    }
    if (count == 0 || words.size() < count + 1) continue;
    gxi_netlist_device_t device;
    device.name = words[0];
    const auto first = words.begin() + 1;
    device.nodes.assign(first, first + static_cast<std::ptrdiff_t>(count));
    for (std::size_t i = count + 1; i < words.size(); ++i)
      device.value += (device.value.empty() ? "" : " ") + words[i];
    devices.push_back(std::move(device));
  }
  return devices;
}
