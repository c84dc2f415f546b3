// kvspice: an expanded design as a flat SPICE netlist.
//
// Each instance becomes one line: its name, its nets in the order of its pins, the values of its
// kept properties. Texts are written as they are (MODEL, VALUE), numbers as NAME=value with their
// middle value unless they are 0. What a run must keep for this: CLASS, the letter of the device,
// as a string.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kvi/load.h"
#include "netlist/simulator_names.h"
#include "platform/files.h"
#include "platform/usage.h"
#include "tools/escape.h"

namespace {

constexpr tool_t tool{
    "kvspice",
    "usage: kvspice [-o FILE] [--save NAMES] DESIGN [INCLUDE...]\n"
    "Writes a flat SPICE netlist of the design that KIVO expanded in the directory DESIGN, or "
    "whose\n"
    "design file is DESIGN. The INCLUDE files (models, analyses) are included at its end.\n"
    "  -o FILE       writes to FILE, not to standard output\n"
    "  --save NAMES  values of devices that the simulator is to keep beside the nets: gm,id,vdsat "
    "of\n"
    "                all transistors (M, J), i,p of R, C, L, V and I, q:ic of the devices Q\n"
    "  --help        prints this\n"
    "  --version     prints the version\n"};

// A value that is kept of the devices with one of these letters.
struct saved_t {
  std::string letters, name;
};

// "gm,id,q:ic"; false when it is no such list.
bool read_saved(std::string_view list, std::vector<saved_t>& saved) {
  while (!list.empty()) {
    const std::string_view item = list.substr(0, list.find(','));
    list.remove_prefix(std::min(item.size() + 1, list.size()));
    const auto colon = item.find(':');
    const std::string_view name = colon == item.npos ? item : item.substr(colon + 1);
    const bool is_name = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
      return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
    if (!is_name || colon == 0) return false;
    const bool is_of_two_ends = name == "i" || name == "p";
    saved.push_back({colon != item.npos ? std::string(item.substr(0, colon))
                     : is_of_two_ends   ? "RCLVI"
                                        : "MJ",
                     std::string(name)});
  }
  return true;
}

class deck_t {
 public:
  deck_t(const kvi_design_t& design, std::vector<saved_t> saved)
      : netlist_(design), names_(netlist_), saved_(std::move(saved)) {}

  // False when an instance had to be left out.
  bool write(std::FILE* out, std::string_view title,
             const std::vector<std::string_view>& includes) {
    out_ = out;
    line_.append("* ").append(tool_escaped(title));
    end_line();
    bool whole = true;
    for (std::int32_t i = 1; i <= netlist_.count(kv_named::inst); ++i) {
      whole &= write_instance({kv_named::inst, i});
    }
    if (!saves_.empty()) {
      line_ = ".save all";
      end_line();
      line_ = saves_;
      line_.pop_back();
      end_line();
    }
    for (const std::string_view file : includes) {
      line_.append(".include \"").append(file).append("\"");
      end_line();
    }
    line_ = ".end";
    end_line();
    return whole;
  }

 private:
  void end_line() {
    line_ += '\n';
    std::fwrite(line_.data(), 1, line_.size(), out_);
    line_.clear();
  }

  bool write_instance(kv_object_t inst) {
    const std::string_view path = netlist_.path(inst);
    const std::int32_t nb_of_properties = netlist_.nb_of_properties(inst);
    std::string_view letter;
    for (std::int32_t k = 0; k < nb_of_properties; ++k) {
      if (netlist_.property_name(inst.what, k) != "CLASS") continue;
      const kv_property_t property = netlist_.property(inst, k);
      if (property.type != kv_prop_string) continue;
      letter = property.text;
      break;
    }
    if (letter.empty()) {
      tool_complain(tool, tool_escaped(path) + " has no CLASS");
      return false;
    }
    add_element_name(letter, path);
    add_saves(letter);
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(inst); ++k) add_pin(netlist_.pin(inst, k));
    for (std::int32_t k = 0; k < nb_of_properties; ++k) {
      const std::string_view name = netlist_.property_name(inst.what, k);
      if (name != "CLASS" && name != "INST") add_value(netlist_.property(inst, k));
    }
    end_line();
    return true;
  }

  // A name must begin with the letter of the device: "/R1" is R1, "/X1/R1" is R.X1.R1.
  void add_element_name(std::string_view letter, std::string_view path) {
    if (path.starts_with('/')) path.remove_prefix(1);
    if (path.find('/') != path.npos || !path.starts_with(letter)) {
      line_.append(tool_escaped(letter)).append(".");
    }
    std::string name = tool_escaped(path);
    std::replace(name.begin(), name.end(), '/', '.');
    line_ += name;
  }

  // What is to be kept of the device whose name the line holds.
  void add_saves(std::string_view letter) {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
    std::string save;
    for (const auto& [letters, name] : saved_) {
      const bool is_of = std::any_of(letters.begin(), letters.end(),
                                     [&](char c) { return upper(c) == upper(letter.front()); });
      if (is_of) save.append(" @").append(line_).append("[").append(name).append("]");
    }
    if (!save.empty()) saves_.append(".save").append(save).append("\n");
  }

  // The node of a pin; of a pin on a bus, the node of each bit of its range.
  void add_pin(kv_object_t pin) {
    if (!netlist_.holds(pin)) return;
    if (netlist_.net(pin) == 0) return add_no_node(pin);
    const kv_bits_t bits = netlist_.bits(pin);
    for (std::int32_t bit = 0; bit < bits.count; ++bit) {
      if (const std::int32_t net = bits.net(bit); net != 0) {
        line_.append(" ").append(tool_escaped(names_.of(net)));
      } else {
        add_no_node(pin);
      }
    }
  }
  // A node of its own for a pin, or a bit of it, that is on no net; no path makes such a name.
  void add_no_node(kv_object_t pin) {
    tool_complain(tool, tool_escaped(netlist_.path(pin)) + " is on no net");
    line_.append(" NC::").append(std::to_string(pin.index));
    if (const int n = nb_of_loose_[pin.index]++; n > 0) line_.append(":").append(std::to_string(n));
  }

  void add_value(const kv_property_t& property) {
    if (property.type == kv_prop_string) {
      if (!property.text.empty()) line_.append(" ").append(tool_escaped(property.text));
      return;
    }
    const double value = netlist_.value(property, 1);
    if (value == 0) return;
    char number[40];
    std::snprintf(number, sizeof number, "%.9g", value);
    line_.append(" ").append(tool_escaped(property.name)).append("=").append(number);
  }

  const kvi_netlist_t netlist_;
  const kv_simulator_names_t<kvi_design_t> names_;
  const std::vector<saved_t> saved_;
  std::FILE* out_ = nullptr;
  std::string line_, saves_;
  std::unordered_map<std::int32_t, int> nb_of_loose_;  // bits on no net, by pin
};

int fail(const std::string& message) {
  tool_complain(tool, message);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::string_view file, save;
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "-o", .value = &file},
                                   {.name = "--save", .value = &save}};
  if (const auto status = tool_read(tool, argc, argv, options, words)) return *status;
  if (words.empty()) return tool_usage_error(tool, "no DESIGN given");
  std::vector<saved_t> saved;
  if (!read_saved(save, saved)) {
    return tool_usage_error(tool, "no list of values: " + tool_escaped(save));
  }
  const std::string path(words[0]);
  words.erase(words.begin());
  for (const std::string_view include : words) {
    if (include.find('"') != include.npos || tool_escaped(include) != include) {
      return tool_usage_error(tool, "a name that SPICE cannot include: " + tool_escaped(include));
    }
  }
  kvi_design_t design;
  const kvi_loaded_t loaded = kvi_open_design(design, path);
  if (loaded.result != kvi_load_result::loaded) return fail(loaded.message);

  deck_t deck(design, std::move(saved));
  const std::string out_path(file);
  x_file own(out_path.empty() ? nullptr : std::fopen(out_path.c_str(), "w"));
  if (!out_path.empty() && !own) return fail(out_path + ": " + std::strerror(errno));
  std::FILE* const out = own ? own.get() : stdout;
  int status = deck.write(out, path, words) ? 0 : 1;
  if (!design.is_unchanged()) status = fail(kvi_changed_message(path));
  if (!own) return tool_end(tool, status);
  const bool written = std::ferror(out) == 0;
  if (!x_close(std::move(own)) || !written) return fail(out_path + ": " + std::strerror(errno));
  return status;
}
