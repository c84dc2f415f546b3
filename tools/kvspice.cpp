// kvspice: an expanded design as a flat SPICE netlist.
//
// Each instance becomes one line: its name, its nets in the order of its pins, the values of its
// kept properties. Texts are written as they are (MODEL, VALUE), numbers as NAME=value with their
// middle value unless they are 0. What a run must keep for this: CLASS, the letter of the device,
// as a string.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "kvi/load.h"
#include "platform/files.h"
#include "platform/usage.h"
#include "tools/escape.h"

namespace {

constexpr tool_t tool{
    "kvspice",
    "usage: kvspice [-o FILE] DESIGN [INCLUDE...]\n"
    "Writes a flat SPICE netlist of the design that KIVO expanded in the directory DESIGN, or "
    "whose\n"
    "design file is DESIGN. The INCLUDE files (models, analyses) are included at its end.\n"
    "  -o FILE    writes to FILE, not to standard output\n"
    "  --help     prints this\n"
    "  --version  prints the version\n"};

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
std::string upper(std::string_view text) {
  std::string letters(text);
  std::transform(letters.begin(), letters.end(), letters.begin(), [](char c) { return upper(c); });
  return letters;
}

// A path as the simulator names it: "/GROUND" is "0", "/N" is "N", "/X1/N3" is "1:N3". These are
// the names that GIVE sends.
std::string simulator_name(std::string_view path) {
  if (path == "/GROUND") return "0";
  if (path.starts_with('/')) path.remove_prefix(path.find('/', 1) == path.npos ? 1 : 2);
  std::string name = tool_escaped(path);
  std::replace(name.begin(), name.end(), '/', ':');
  return name;
}

// The node of each net. Nets of one global, whose names are the same but for the case of letters,
// are one node: that of the net at the top that bears its name, or else of the first one.
class nodes_t {
 public:
  explicit nodes_t(const kvi_design_t& design)
      : node_(static_cast<std::size_t>(design.count<kv_net_record_t>()) + 1) {
    struct global_t {
      std::int32_t net;
      bool at_top;
    };
    std::unordered_map<std::string, global_t> globals;
    for (std::int32_t i = 1; i <= design.count<kv_net_record_t>(); ++i) {
      gx_at(node_, i) = i;
      const auto net = design.get<kv_net_record_t>(i);
      const std::string_view name = design.text(net.name);
      if (net.net_kind != kv_kind_global || name.empty()) continue;
      const bool at_top = upper(design.text(net.sim_path)) == "/" + upper(name);
      global_t& global = globals.try_emplace(upper(name), global_t{i, at_top}).first->second;
      if (at_top && !global.at_top) global = {i, true};
      globals_.push_back(i);
    }
    for (const std::int32_t i : globals_) {
      const auto net = design.get<kv_net_record_t>(i);
      gx_at(node_, i) = globals.at(upper(design.text(net.name))).net;
    }
  }
  // The net that gives the node of net `i` its name.
  std::int32_t of(std::int32_t i) const { return gx_at(node_, i); }

 private:
  std::vector<std::int32_t> node_, globals_;
};

class netlist_t {
 public:
  explicit netlist_t(const kvi_design_t& design) : design_(design), nodes_(design) {}

  // Two nodes of one name (the simulator does not know the case of letters) would be joined: tells
  // so and returns false.
  bool names_differ() {
    std::unordered_map<std::string, std::int32_t> names;
    bool differ = true;
    for (std::int32_t i = 1; i <= design_.count<kv_net_record_t>(); ++i) {
      const auto net = design_.get<kv_net_record_t>(i);
      if (nodes_.of(i) != i || net.net_type == kv_net_bus) continue;
      const std::string name = simulator_name(design_.text(net.sim_path));
      if (names.try_emplace(upper(name), i).second) continue;
      tool_complain(tool, "two nets have the name " + name);
      differ = false;
    }
    return differ;
  }

  // False when an instance had to be left out.
  bool write(std::FILE* out, std::string_view title,
             const std::vector<std::string_view>& includes) {
    out_ = out;
    line_.append("* ").append(tool_escaped(title));
    end_line();
    bool whole = true;
    for (std::int32_t i = 1; i <= design_.count<kv_inst_record_t>(); ++i) {
      whole &= write_instance(design_.get<kv_inst_record_t>(i));
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

  bool write_instance(const kv_inst_record_t& inst) {
    const auto& kept = design_.property_instance();
    const std::string_view path = design_.text(inst.sim_path);
    const std::int32_t nb_of_property = std::min<std::int32_t>(inst.nb_of_property, kept.count);
    std::string_view letter;
    for (std::int32_t k = 0; k < nb_of_property; ++k) {
      const auto prop = property(inst, k);
      if (name_of(k) == "CLASS" && prop.prop_type == kv_prop_string) {
        letter = design_.text(prop.valuec);
        break;
      }
    }
    if (letter.empty()) {
      tool_complain(tool, tool_escaped(path) + " has no CLASS");
      return false;
    }
    add_element_name(letter, path);
    for (std::int32_t k = 0; k < inst.nb_of_pin; ++k) add_pin(inst.first_pin_ind + k);
    for (std::int32_t k = 0; k < nb_of_property; ++k) {
      if (name_of(k) != "CLASS" && name_of(k) != "INST") add_value(name_of(k), property(inst, k));
    }
    end_line();
    return true;
  }

  std::string_view name_of(std::int32_t k) const {
    return gx_view(gx_at(design_.property_instance().entry, k).name);
  }
  kv_prop_record_t property(const kv_inst_record_t& inst, std::int32_t k) const {
    const std::int32_t index = inst.first_prop + k;
    return design_.holds<kv_prop_record_t>(index) ? design_.get<kv_prop_record_t>(index)
                                                  : kv_prop_record_t{};
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

  // The node of a pin; of a pin on a bus, the node of each bit of its range.
  void add_pin(std::int32_t index) {
    if (!design_.holds<kv_pin_record_t>(index)) return;
    const auto pin = design_.get<kv_pin_record_t>(index);
    if (!design_.holds<kv_net_record_t>(pin.net_ind)) return add_no_node(index, pin);
    const auto net = design_.get<kv_net_record_t>(pin.net_ind);
    if (net.net_type != kv_net_bus) return add_node(pin.net_ind);
    const bool falls = net.net_bus_end < net.net_bus_start;
    const int first =
        falls ? net.net_bus_start - pin.pin_net_start : pin.pin_net_start - net.net_bus_start;
    const int width = std::abs(net.net_bus_end - net.net_bus_start) + 1;
    const int bits = std::abs(pin.pin_end - pin.pin_start) + 1;
    for (int bit = first; bit < first + bits; ++bit) {
      const bool in_bus = bit >= 0 && bit < width;
      if (in_bus && design_.holds<kv_net_record_t>(net.netind_start + bit)) {
        add_node(net.netind_start + bit);
      } else {
        add_no_node(index, pin);
      }
    }
  }
  void add_node(std::int32_t net) {
    const auto node = design_.get<kv_net_record_t>(nodes_.of(net));
    line_.append(" ").append(simulator_name(design_.text(node.sim_path)));
  }
  // A node of its own for a pin, or a bit of it, that is on no net; no path makes such a name.
  void add_no_node(std::int32_t index, const kv_pin_record_t& pin) {
    tool_complain(tool, tool_escaped(design_.text(pin.sim_path)) + " is on no net");
    line_.append(" NC::").append(std::to_string(index));
    if (const int n = nb_of_loose_[index]++; n > 0) line_.append(":").append(std::to_string(n));
  }

  void add_value(std::string_view name, const kv_prop_record_t& prop) {
    double value = 0;
    switch (prop.prop_type) {
      case kv_prop_string: {
        const std::string_view text = design_.text(prop.valuec);
        if (!text.empty()) line_.append(" ").append(tool_escaped(text));
        return;
      }
      case kv_prop_int:
        value = prop.valuei[1];
        break;
      case kv_prop_time:
        value = prop.valuet[1] * static_cast<double>(design_.info().time_step);
        break;
      default:
        value = static_cast<double>(prop.valuer[1]);
        break;
    }
    if (value == 0) return;
    char number[40];
    std::snprintf(number, sizeof number, "%.9g", value);
    line_.append(" ").append(tool_escaped(name)).append("=").append(number);
  }

  const kvi_design_t& design_;
  nodes_t nodes_;
  std::FILE* out_ = nullptr;
  std::string line_;
  std::unordered_map<std::int32_t, int> nb_of_loose_;  // bits on no net, by pin
};

int fail(const std::string& message) {
  tool_complain(tool, message);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::string_view file;
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "-o", .value = &file}};
  if (const auto status = tool_read(tool, argc, argv, options, words)) return *status;
  if (words.empty()) return tool_usage_error(tool, "no DESIGN given");
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

  netlist_t netlist(design);
  if (!netlist.names_differ()) return 1;
  const std::string out_path(file);
  x_file own(out_path.empty() ? nullptr : std::fopen(out_path.c_str(), "w"));
  if (!out_path.empty() && !own) return fail(out_path + ": " + std::strerror(errno));
  std::FILE* const out = own ? own.get() : stdout;
  int status = netlist.write(out, path, words) ? 0 : 1;
  if (!design.is_unchanged()) status = fail(kvi_changed_message(path));
  if (!own) return tool_end(tool, status);
  const bool written = std::ferror(out) == 0;
  if (!x_close(std::move(own)) || !written) return fail(out_path + ": " + std::strerror(errno));
  return status;
}
