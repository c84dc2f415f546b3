// Roles, slots, links.
#include "import/lepton/parts.h"

#include <algorithm>

#include "gx/text/numbers.h"

namespace {

std::vector<std::string> parted(std::string_view list) {
  std::vector<std::string> parts;
  while (!list.empty()) {
    const auto end = std::min(list.find(','), list.size());
    auto part = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
    while (!part.empty() && part.back() == ' ') part.remove_suffix(1);
    if (!part.empty()) parts.emplace_back(part);
  }
  return parts;
}

// The attributes of the component, then those of its symbol.
std::vector<std::string_view> all_values(const gxi_lepton_placed_t& placed, std::string_view name) {
  auto values = gxi_lepton_values(placed.component->attributes, name);
  for (const auto value : gxi_lepton_values(placed.symbol->records->texts, name))
    values.push_back(value);
  return values;
}

// The place of a pin in its list of numbers; 0: none.
std::size_t sequence_of(const gxi_lepton_pin_t& pin) {
  const auto text = gxi_lepton_value(pin.attributes, "pinseq");
  return gx_whole_number<std::size_t>(text).value_or(0);
}

void take_pins(gxi_lepton_placed_t& placed) {
  for (const auto& pin : placed.symbol->records->pins)
    if (!pin.bus) placed.pins.push_back(&pin);
  std::stable_sort(placed.pins.begin(), placed.pins.end(),
                   [](const auto* a, const auto* b) { return sequence_of(*a) < sequence_of(*b); });
}

void number_pins(gxi_lepton_placed_t& placed) {
  std::string slot(placed.value("slot"));
  if (slot.empty()) slot = "1";
  std::vector<std::string> in_slot;
  for (const auto value : all_values(placed, "slotdef")) {
    const auto colon = value.find(':');
    if (colon == std::string_view::npos || value.substr(0, colon) != slot) continue;
    in_slot = parted(value.substr(colon + 1));
    break;
  }
  for (const auto* pin : placed.pins) {
    const auto sequence = sequence_of(*pin);
    placed.numbers.push_back(sequence > 0 && sequence <= in_slot.size()
                                 ? in_slot[sequence - 1]
                                 : std::string(gxi_lepton_value(pin->attributes, "pinnumber")));
  }
}

// The first that names a pin counts: those of the component come first.
void take_links(gxi_lepton_placed_t& placed, gxm_messages_t& messages) {
  for (const auto value : all_values(placed, "net")) {
    const auto colon = value.find(':');
    if (colon == std::string_view::npos || colon == 0) {
      gxm_complain(messages, placed.source(),
                   "net=" + std::string(value) + " names no net and pins");
      continue;
    }
    for (auto& pin : parted(value.substr(colon + 1)))
      if (std::none_of(placed.links.begin(), placed.links.end(),
                       [&](const auto& link) { return link.pin == pin; }))
        placed.links.push_back({std::string(value.substr(0, colon)), std::move(pin)});
  }
}

void take_sheets(gxi_lepton_placed_t& placed, const gxi_lepton_library_t& library,
                 gxm_messages_t& messages) {
  auto sources = gxi_lepton_values(placed.component->attributes, "source");
  if (sources.empty()) sources = gxi_lepton_values(placed.symbol->records->texts, "source");
  for (const auto source : sources)
    for (const auto& name : parted(source)) {
      if (auto sheet = library.sheet(name))
        placed.sheets.push_back(std::move(*sheet));
      else
        gxm_complain(messages, placed.source(), "sheet " + name + " is in no library");
    }
}

}  // namespace

std::string_view gxi_lepton_placed_t::value(std::string_view attribute) const {
  const auto values = all_values(*this, attribute);
  return values.empty() ? std::string_view() : values.front();
}

const gxi_lepton_link_t* gxi_lepton_placed_t::link_of(std::size_t pin) const {
  const auto found = std::find_if(links.begin(), links.end(),
                                  [&](const auto& link) { return link.pin == numbers[pin]; });
  return found == links.end() ? nullptr : &*found;
}

std::vector<const gxi_lepton_link_t*> gxi_lepton_placed_t::hidden_links() const {
  std::vector<const gxi_lepton_link_t*> hidden;
  for (const auto& link : links)
    if (std::find(numbers.begin(), numbers.end(), link.pin) == numbers.end())
      hidden.push_back(&link);
  return hidden;
}

gxi_lepton_placed_t gxi_lepton_place(gxi_lepton_library_t& library,
                                     const gxi_lepton_component_t& component, std::string_view page,
                                     gxm_messages_t& messages) {
  gxi_lepton_placed_t placed{.component = &component, .file = page};
  placed.symbol = &library.symbol(component, page);
  take_pins(placed);
  number_pins(placed);
  if (placed.value("device") == "DRC_Directive" && placed.value("value") == "NoConnection")
    placed.role = gxi_lepton_role_t::noconn;
  if (placed.role == gxi_lepton_role_t::noconn || placed.value("graphical") == "1") return placed;
  take_links(placed, messages);
  // Of several names the last counts; a name of the symbol is only a proposal.
  const auto names = gxi_lepton_values(component.attributes, "refdes");
  if (!names.empty()) placed.name = names.back();
  if (names.empty() && !all_values(placed, "net").empty()) {
    placed.role = gxi_lepton_role_t::power;
    return placed;
  }
  if (placed.name.empty()) {
    placed.name = "U?";
    gxm_complain(messages, placed.source(), component.symbol + " has no refdes: it is U?");
  }
  placed.role = gxi_lepton_role_t::part;
  if (library.project().walks_down) take_sheets(placed, library, messages);
  if (!placed.sheets.empty()) placed.role = gxi_lepton_role_t::block;
  return placed;
}
