// Words of formats with places for nodes.
#include "import/xschem/deck_lines.h"

#include <algorithm>
#include <charconv>

#include "deck/letters.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/xschem/tcl/tcl.h"

namespace {

// Text with its pins as `put_pin` writes them, and "@name" as the name.
std::string filled(std::string_view text, std::string_view name, bool escaped,
                   const std::function<std::string(int)>& put_pin) {
  std::string out;
  while (!text.empty()) {
    if (text.starts_with("@name")) {
      out += name;
      text.remove_prefix(5);
    } else if (text.front() == '\1') {
      const auto end = std::min(text.find('\2'), text.size() - 1);
      int pin = 0;
      std::from_chars(text.data() + 1, text.data() + end, pin);
      out += put_pin(pin);
      text.remove_prefix(end + 1);
    } else {
      if (text.front() == '@' && escaped) out += '@';
      out += text.front();
      text.remove_prefix(1);
    }
  }
  return out;
}

class line_writer {
 public:
  line_writer(const gxi_xschem_placed_t& placed, const gxi_xschem_device_t& device,
              const std::function<std::string(std::size_t, std::size_t)>& around)
      : placed_(placed), device_(device), around_(around) {
    for (const auto& node : device.nodes) {
      first_.push_back(next_);
      next_ += gxi_xschem_pin_names(placed, node).size();
    }
  }

  std::string run(std::string_view name) const {
    std::string line;
    const auto of_pin = [this](int pin) { return pin_places(pin); };
    for (const auto& word : device_.line) {
      if (word.text == "m=1") continue;  // as it is without
      std::string text = word.pin >= 0    ? pin_places(word.pin)
                         : word.node >= 0 ? places(static_cast<std::size_t>(word.node))
                                          : filled(word.text, name, true, of_pin);
      if (!line.empty()) line += ' ';
      line += text;
    }
    return line;
  }

 private:
  std::string places(std::size_t node) const {
    const auto end = node + 1 < first_.size() ? first_[node + 1] : next_;
    std::string text;
    for (std::size_t place = gx_at(first_, node); place < end; ++place) {
      auto one = around_(node, place - first_[node]);
      one.insert(one.find('@') + 1, std::to_string(place + 1));
      text += (text.empty() ? "" : " ") + one;
    }
    return text;
  }

  std::string pin_places(int pin) const {
    const int same = gx_at(placed_.symbol->pins, pin).same_as;
    for (std::size_t node = 0; node < device_.nodes.size(); ++node)
      if (device_.nodes[node].pin == (same >= 0 ? same : pin)) return places(node);
    return {};
  }

  const gxi_xschem_placed_t& placed_;
  const gxi_xschem_device_t& device_;
  const std::function<std::string(std::size_t, std::size_t)>& around_;
  std::vector<std::size_t> first_;  // place of the first bit of each node
  std::size_t next_ = 0;
};

}  // namespace

std::string gxi_xschem_deck_line(
    const gxi_xschem_placed_t& placed, std::size_t line, std::size_t k,
    const std::function<std::string(std::size_t, std::size_t)>& around) {
  return line_writer(placed, placed.devices[line], around).run(placed.names[k]);
}

std::string gxi_xschem_statements(const gxi_xschem_placed_t& placed) {
  const auto format = placed.symbol->attributes.get("format");
  std::string text;
  if (format.find("@value") != std::string_view::npos || format.empty())
    text = gxi_xschem_value(placed, "value");
  else
    text = gxi_xschem_plain_tcl(gxi_xschem_substitute(format,
                                                      [&](std::string_view name) {
                                                        return gxi_xschem_whole_value(placed, name);
                                                      }),
                                *placed.symbol->scope)
               .text;
  // Other "@" are the simulator's, as in "@m1[gm]".
  for (const auto& name : gxi_xschem_parameters_of(placed))
    for (std::size_t at = 0; (at = text.find("@" + name, at)) != std::string::npos; ++at)
      if (!dk_begins_name(text.c_str()[at + 1 + name.size()])) text.erase(at, 1);
  return text;
}

std::string gxi_xschem_deck_commands(const gxi_xschem_placed_t& placed,
                                     const std::function<std::string(int)>& net) {
  std::string all;
  const std::string name(placed.value("name"));
  for (const auto& command : placed.commands) {
    std::string line;
    bool named = true;  // a net without a name is none that a command can mean
    const auto net_of = [&](int pin) {
      auto of = net(pin);
      named = named && !of.empty();
      return of;
    };
    for (const auto& word : command)
      line += (line.empty() ? "" : " ") +
              (word.pin >= 0 ? net_of(word.pin) : filled(word.text, name, false, net_of));
    if (named) all += line + "\n";
  }
  if (placed.role == gxi_xschem_role_t::device &&
      gxi_xschem_truth(gxi_xschem_value(placed, "savecurrent")).value_or(false))
    for (const auto& one : placed.names) all += ".save i(" + one + ")\n";
  return all;
}

std::vector<std::pair<std::string, std::string>> gxi_xschem_deck_parameters(
    const gxi_xschem_placed_t& placed) {
  constexpr std::string_view others[] = {"name", "spiceprefix", "lab", "m"};
  std::vector<std::pair<std::string, std::string>> parameters;
  const std::string extra = " " + gxi_xschem_value(placed, "extra") + " ";
  for (const auto& [name, value] : placed.symbol->defaults.all()) {
    const bool is_node =
        !placed.devices.empty() &&
        std::ranges::any_of(placed.devices.front().nodes, [&own = name](const auto& node) {
          return node.pin < 0 && node.name == own;
        });
    if (is_node || std::ranges::find(others, name) != std::end(others) || value.empty() ||
        extra.find(" " + name + " ") != std::string::npos)
      continue;
    parameters.emplace_back(name, value);
  }
  return parameters;
}
