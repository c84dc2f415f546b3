#include "deck/write/elements.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "gx/text/strings.h"

namespace {

std::string_view class_of(const kvi_netlist_t& netlist, kv_object_t inst) {
  for (std::int32_t k = 0; k < netlist.nb_of_properties(inst); ++k) {
    if (netlist.property_name(inst.what, k) != "CLASS") continue;
    const auto property = netlist.property(inst, k);
    if (property.type == kv_prop_string) return property.text;
  }
  return {};
}

bool is_device(char c) { return std::string_view("MRCDQ").find(c) != std::string_view::npos; }

}  // namespace

dk_elements_t::dk_elements_t(const dk_visits_t& visits, const dk_options_t& options,
                             const dk_output_t& output, dk_naming_t naming)
    : visits_(visits), options_(options), output_(output), naming_(std::move(naming)) {
  names_.parameter = [this](std::string_view name) { return parameter(name); };
  names_.node = [this](std::string_view name) { return node_named(name); };
  names_.device = [this](std::string_view name) { return device_named(name); };
  names_.pin = [this](int pin, std::string& out) {
    const kv_object_t object = visits_.netlist().pin(current_, pin - 1);
    if (pin > visits_.netlist().nb_of_pins(current_) || !visits_.netlist().holds(object)) return;
    const auto bits = visits_.netlist().bits(object);
    for (std::int32_t bit = 0; bit < bits.count; ++bit) {
      const auto node = naming_.node_of_pin(object, bit);
      const std::string_view last = std::string_view(node).substr(node.rfind(':') + 1);
      out.append(bit == 0 ? "" : " ").append(is_xspice_ && gx_iden(last, "null") ? last : node);
    }
  };
}

// In the values of a call the names that it sets are those of the subcircuit, but each in its own
// value: "W='2*W' AD='W*L'".
std::optional<std::string> dk_elements_t::parameter(std::string_view name) const {
  const auto is = [&](const std::string& given) { return gx_iden(given, name); };
  if (call_ != nullptr && !is(piece_->of) && std::ranges::any_of(call_->given, is))
    return std::nullopt;
  return dk_find(*visits_.at(visit_).values, name);
}

std::string dk_elements_t::node_named(std::string_view name) const {
  const std::int32_t net = name == "0" ? 0 : visits_.net(visit_, name);
  return net == 0 ? std::string(name) : naming_.node(net);
}

std::string dk_elements_t::device_named(std::string_view name) const {
  auto* const sheet = visits_.at(visit_).sheet;
  if (sheet == nullptr || sheet->device(name).empty()) return std::string(name);
  return naming_.element(name.substr(0, 1), name);
}

// For a layout, "XM1" of the instance M1 is M1.
std::string dk_elements_t::called(const dk_drawn_t& drawn, const dk_line_t& line) const {
  const std::string_view inst = drawn.instance->name, name = line.name;
  const bool prefixed = name.size() == inst.size() + 1 && gx_upper_case(name.front()) == 'X' &&
                        name.substr(1) == inst && is_device(gx_upper_case(inst.front()));
  return std::string(options_.lvs && prefixed ? inst : name);
}

bool dk_elements_t::write(std::int32_t inst) {
  current_ = {kv_named::inst, inst};
  const auto* const drawn = visits_.drawn_leaf(inst);
  if (drawn == nullptr) return write_plain(inst);
  for (const auto& line : drawn->lines) {
    if (line.is_command()) {
      if (options_.lvs) continue;
      line_ = line.name;
    } else {
      const std::string name = called(*drawn, line);
      line_ = naming_.element(name.substr(0, 1), name);
    }
    const auto name_ends = line_.size();
    const char letter = gx_upper_case(line.name.front());
    const bool calls = letter == 'X';
    is_xspice_ = letter == 'A';
    for (const auto& piece : line.pieces) {
      piece_ = &piece;
      call_ = calls && !piece.of.empty() ? &line : nullptr;
      if (piece.kind == dk_piece_t::kind_t::text)
        line_ += piece.text;
      else if (piece.kind == dk_piece_t::kind_t::pin)
        names_.pin(piece.pin, line_);
      else if (piece.kind == dk_piece_t::kind_t::device)
        line_ += device_named(piece.text);
      else
        dk_put(piece, names_, line_);
    }
    call_ = nullptr;
    output_.line(line_);
    if (!options_.saved.empty() && !line.is_command())
      save(std::string_view(line_).substr(0, name_ends), line_);
  }
  return true;
}

std::string dk_elements_t::values_of(std::int32_t inst) {
  current_ = {kv_named::inst, inst};
  std::string values;
  // Those of a line follow from the parameters of the visit.
  if (visits_.drawn_leaf(inst) == nullptr) add_plain_values(current_, values);
  return values;
}

// Without a line: the letter of the device, its nodes, texts as they are, numbers by name.
bool dk_elements_t::write_plain(std::int32_t inst) {
  const auto netlist = visits_.netlist();
  const std::string_view path = netlist.path(current_), name = dk_visits_t::last_name(path);
  const std::string_view letter = class_of(netlist, {kv_named::inst, inst});
  if (letter.empty()) {
    output_.complain(std::string(path) + " has no CLASS");
    return false;
  }
  line_ = naming_.element(letter, name);
  const auto name_ends = line_.size();
  line_ += nodes_of(current_);
  add_plain_values(current_, line_);
  output_.line(line_);
  if (!options_.saved.empty()) save(std::string_view(line_).substr(0, name_ends), line_);
  return true;
}

std::string dk_elements_t::nodes_of(kv_object_t owner) const {
  const auto netlist = visits_.netlist();
  std::string nodes;
  for (std::int32_t k = 0; k < netlist.nb_of_pins(owner); ++k) {
    const auto pin = netlist.pin(owner, k);
    if (!netlist.holds(pin)) continue;
    const auto bits = netlist.bits(pin);
    for (std::int32_t bit = 0; bit < bits.count; ++bit)
      nodes.append(" ").append(naming_.node_of_pin(pin, bit));
  }
  return nodes;
}

void dk_elements_t::add_plain_values(kv_object_t inst, std::string& line) const {
  const auto netlist = visits_.netlist();
  for (std::int32_t k = 0; k < netlist.nb_of_properties(inst); ++k) {
    const std::string_view name = netlist.property_name(inst.what, k);
    if (name == "CLASS" || name == "INST") continue;
    const auto property = netlist.property(inst, k);
    if (property.type == kv_prop_string) {
      if (!property.text.empty()) line.append(" ").append(property.text);
      continue;
    }
    const double value = netlist.value(property, 1);
    if (value == 0) continue;
    char number[40];
    std::snprintf(number, sizeof number, "%.9g", value);
    line.append(" ").append(name).append("=").append(number);
  }
}

void dk_elements_t::write_local(const std::string& statement) {
  write_lines(dk_substitute(statement, names_));
}

void dk_elements_t::write_lines(std::string_view lines) {
  while (!lines.empty()) {
    const auto end = std::min(lines.find('\n'), lines.size());
    output_.line(lines.substr(0, end));
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
}

// Of a call, what is kept of transistors is kept of the one in it that is named as its subcircuit.
void dk_elements_t::save(std::string_view element, std::string_view line) {
  const char letter = gx_upper_case(element.front());
  std::string name(element);
  if (letter == 'X') {
    std::string_view model;
    for (std::size_t at = element.size(); at < line.size();) {
      at = line.find_first_not_of(' ', at);
      if (at == line.npos) break;
      const auto end = std::min(line.find(' ', at), line.size());
      const auto word = line.substr(at, end - at);
      if (word.find('=') != word.npos) break;
      model = word;
      at = end;
    }
    name = "m." + std::string(element) + ".m" + std::string(model);
  }
  std::ranges::transform(name, name.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  const char kind = letter == 'X' ? 'M' : letter;
  for (const auto& [letters, value] : options_.saved)
    if (std::ranges::any_of(letters, [&](char c) { return gx_upper_case(c) == kind; }))
      saved_.push_back("@" + name + "[" + value + "]");
}

void dk_elements_t::write_saved() {
  if (saved_.empty()) return;
  output_.line(".save all");
  constexpr std::size_t longest = 100;
  line_ = ".save";
  for (const auto& name : saved_) {
    if (line_.size() + 1 + name.size() > longest) {
      output_.line(line_);
      line_ = ".save";
    }
    line_.append(" ").append(name);
  }
  output_.line(line_);
}
