// A table of devices, and the words of a line.
#include "import/lepton/deck_lines.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "gx/text/numbers.h"
#include "import/drawing/netlist_text.h"
#include "import/drawing/source_file.h"

namespace {

namespace fs = std::filesystem;

// Attributes that follow: "+area" as its value alone, others as NAME=value.
struct device_t {
  std::string_view device;
  char letter;      // the line begins with it; '\0': with the refdes alone
  bool is_passive;  // its value comes first, then its model
  std::string_view attributes;
};
constexpr auto devices = std::to_array<device_t>({
    {"RESISTOR", 'R', true, "area l w temp"},
    {"CAPACITOR", 'C', true, "area l w ic"},
    {"POLARIZED_CAPACITOR", 'C', true, "area l w ic"},
    {"INDUCTOR", 'L', true, "ic"},
    {"DIODE", 'D', false, "+area +off ic temp"},
    {"NPN_TRANSISTOR", 'Q', false, "+area +off ic temp"},
    {"PNP_TRANSISTOR", 'Q', false, "+area +off ic temp"},
    {"NMOS_TRANSISTOR", 'M', false, "+off l w as ad pd ps nrd nrs temp ic m"},
    {"PMOS_TRANSISTOR", 'M', false, "+off l w as ad pd ps nrd nrs temp ic m"},
    {"VOLTAGE_SOURCE", 'V', true, ""},
    {"CURRENT_SOURCE", 'I', true, ""},
});
constexpr device_t other{"", '\0', false, "area l w m temp ic"};

// By its device, else as the letter of its refdes says: a Zener diode D1 is a diode.
const device_t& device_of(const gxi_lepton_placed_t& placed) {
  const auto name = placed.value("device");
  const auto* found = std::ranges::find(devices, name, &device_t::device);
  if (found == devices.end())
    found = std::ranges::find_if(devices, [&](const device_t& one) {
      return !one.is_passive && placed.name.starts_with(one.letter);
    });
  return found == devices.end() ? other : *found;
}

// Of the component, else of its symbol; "unknown" is what symbols propose.
std::string_view given(const gxi_lepton_placed_t& placed, std::string_view name) {
  const auto text = placed.value(name);
  return text == "unknown" || text == "?" ? std::string_view() : text;
}

// The model that a transistor or diode brings with it.
std::string own_model(const gxi_lepton_placed_t& placed, const device_t& device) {
  const auto parameters = given(placed, "model");
  auto name = given(placed, "model-name");
  if (name.empty()) name = given(placed, "value");
  if (parameters.empty() || name.empty() || device.is_passive || device.letter == '\0') return {};
  const auto type = device.letter == 'D' ? "D" : device.device.substr(0, device.device.find('_'));
  return "\n.MODEL " + std::string(name) + " " + std::string(type) + " (" +
         std::string(parameters) + ")";
}

struct statement_t {
  std::string_view device, command;
};
constexpr auto statements = std::to_array<statement_t>(
    {{"model", ".MODEL"}, {"directive", ""}, {"include", ".INCLUDE"}, {"options", ".OPTIONS"}});

// What says that a sheet is a subcircuit, and its ports.
constexpr std::string_view subcircuit = "spice-subcircuit-LL", port = "spice-IO";

const statement_t* statement_of(const gxi_lepton_placed_t& placed) {
  const auto name = placed.value("device");
  const auto* const found = std::ranges::find(statements, name, &statement_t::device);
  return found == statements.end() ? nullptr : found;
}

void add(std::string& line, std::string_view word) {
  if (word.empty()) return;
  if (!line.empty()) line += ' ';
  for (const char c : word) line.append(c == '@' ? 2 : 1, c);
}

void add_nodes(std::string& line, std::size_t from, std::size_t end) {
  for (std::size_t pin = from; pin < end; ++pin) line += " @" + std::to_string(pin + 1);
}

std::string statement(const gxi_lepton_placed_t& placed, const statement_t& kind) {
  const auto file = given(placed, "file");
  if (!file.empty()) return ".INCLUDE " + std::string(file);
  std::string line(kind.command);
  if (kind.device != "model") {
    add(line, given(placed, "value"));
    return line;
  }
  const auto parameters = given(placed, "model");
  for (const auto* const name : {"model-name", "type"}) add(line, given(placed, name));
  if (!parameters.empty()) add(line, "(" + std::string(parameters) + ")");
  return line;
}

// The words after the nodes.
void add_values(std::string& line, const gxi_lepton_placed_t& placed, const device_t& device) {
  const auto value = given(placed, "value"), model = given(placed, "model-name");
  if (device.is_passive) {
    add(line, value);
    add(line, model);
  } else {
    add(line, !model.empty() ? model : !value.empty() ? value : placed.value("device"));
  }
  auto rest = device.attributes;
  while (!rest.empty()) {
    auto name = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    const bool alone = name.starts_with('+');
    if (alone) name.remove_prefix(1);
    const std::string text(given(placed, name));
    if (!text.empty()) add(line, alone ? text : std::string(name) + "=" + text);
  }
}

// A source of high gain; nothing flows into what it measures.
std::string nullor(const gxi_lepton_placed_t& placed, const std::string& name) {
  const auto value = given(placed, "value");
  std::string lines = "E_" + name;
  add_nodes(lines, 0, 4);
  add(lines, value.empty() ? "1000Meg" : value);
  lines += "\nIMeasure_" + name;
  add_nodes(lines, 2, 4);
  lines += " dc 0\nIOut_" + name;
  add_nodes(lines, 0, 2);
  return lines + " dc 0";
}

// "P" and 10 of "P10", as ports are in order.
std::pair<std::string_view, std::size_t> order_of(std::string_view name) {
  const auto number = std::min(name.find_first_of("0123456789"), name.size());
  return {name.substr(0, number), gx_whole_number<std::size_t>(name.substr(number)).value_or(0)};
}

bool is_subcircuit(const gxi_lepton_placed_t& placed) {
  const auto file = gxi_lepton_model_file(placed);
  const auto path = fs::path(placed.file).parent_path() / file;
  std::error_code none;
  if (file.empty() || !fs::is_regular_file(path, none)) return false;
  return !gxi_netlist_ports(gxi_read_source(path), given(placed, "model-name")).empty();
}

}  // namespace

std::string gxi_lepton_model_file(const gxi_lepton_placed_t& placed) {
  return statement_of(placed) != nullptr ? std::string() : std::string(given(placed, "file"));
}

std::string gxi_lepton_deck_lines(const gxi_lepton_placed_t& placed, const std::string& name) {
  if (const auto* const kind = statement_of(placed)) return statement(placed, *kind);
  const auto what = placed.value("device");
  if (what == subcircuit || what == port) return "\n";  // a line without a device
  if (what == "SPICE-nullor" && placed.pins.size() == 4) return nullor(placed, name);
  const auto& device = device_of(placed);
  std::string line;
  const char letter = device.letter == '\0' && is_subcircuit(placed) ? 'X' : device.letter;
  if (letter != '\0' && !name.starts_with(letter)) line = letter;
  line += name;
  if (what == "K") {
    add(line, placed.value("inductors"));
    add(line, given(placed, "value"));
    return line;
  }
  // What such a source senses is a device of its own.
  const bool senses = (what == "SPICE-cccs" || what == "SPICE-ccvs") && placed.pins.size() == 4;
  add_nodes(line, 0, senses ? 2 : placed.pins.size());
  if (senses) line += " Vsense_" + name;
  add_values(line, placed, device);
  line += own_model(placed, device);
  if (senses) {
    line += "\nVsense_" + name;
    add_nodes(line, 2, 4);
    line += " dc 0";
  }
  return line;
}

std::string gxi_lepton_subcircuit(
    std::span<const gxi_lepton_placed_t> sheet,
    const std::function<std::string_view(std::size_t part)>& net_of_first_pin) {
  const gxi_lepton_placed_t* named = nullptr;
  std::vector<std::size_t> ports;
  for (std::size_t i = 0; i < sheet.size(); ++i) {
    if (sheet[i].role != gxi_lepton_role_t::part) continue;
    const auto device = sheet[i].value("device");
    if (device == subcircuit) named = &sheet[i];
    if (device == port && !sheet[i].pins.empty()) ports.push_back(i);
  }
  if (named == nullptr) return {};
  std::ranges::stable_sort(ports, {}, [&](std::size_t i) { return order_of(sheet[i].name); });
  const auto name = given(*named, "model-name");
  std::string line = ".SUBCKT " + std::string(name.empty() ? "unknown" : name);
  for (const auto i : ports) line.append(" ").append(net_of_first_pin(i));
  return line;
}
