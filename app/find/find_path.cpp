#include "app/find/find_path.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>

#include "app/find/expanded.h"
#include "app/find/readings.h"
#include "app/find/search_drawings.h"
#include "app/sheet/walk.h"
#include "app/state.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

// The first letters of all names at the top.
std::string first_letters(kv_drawings_t& drawings) {
  std::string letters;
  const auto* top = drawings.top();
  if (top == nullptr) return letters;
  for (const int inst : lb_instances(*top)) {
    const char letter = gx_upper_case(lb_inst_name(*top, inst).front());
    if (letters.find(letter) == letters.npos) letters += letter;
  }
  return letters;
}

kv_readings_t readings(kv_drawings_t& drawings, std::string_view text) {
  std::vector<kv_reference_t> references;
  if (drawings.top() != nullptr) {
    const int top = kv_pext.arrayof_file.front().file_index;
    references = kv_read_references(std::string(gx_view(gx_at(gx_vext.filear, top).dirname)));
  }
  return kv_readings_of(text, first_letters(drawings), references);
}

// --- in the expansion

kv_found_t found_at(const kv_expanded_t& expanded, kv_object_t hit) {
  constexpr std::string_view words[] = {"instance", "block", "net", "net", "pin", "pin"};
  const auto& [netlist, origins, paths] = expanded;
  const auto place = kv_place_of(netlist, origins, hit);
  const bool is_bit = hit.what == kv_named::net && netlist.bus(hit.index) != 0;
  kv_found_t found;
  found.path = paths.path(hit);
  found.what = is_bit ? "bit of a bus" : gx_at(words, hit.what);
  found.object_id = place.object_id;
  found.sheet_path = kv_visit_path(netlist, origins, place.visit);
  found.visit = place.visit;
  return found;
}

std::vector<kv_object_t> hits_of(const kv_expanded_t& expanded, const kv_readings_t& wanted,
                                 std::size_t most) {
  switch (wanted.match) {
    case kv_match::whole:
      return expanded.paths.find(wanted.keys, most);
    case kv_match::beginning:
      return expanded.paths.find_beginning(wanted.keys, most);
    case kv_match::anywhere:
      break;
  }
  return expanded.paths.find_containing(wanted.keys.front(), most);
}

std::vector<kv_found_t> find(const std::optional<kv_expanded_t>& expanded, kv_drawings_t& drawings,
                             const kv_readings_t& wanted, std::size_t most) {
  std::vector<kv_found_t> found;
  if (expanded) {
    // A flat net that is global and its child on a sheet are one place.
    const auto hits = hits_of(*expanded, wanted, most > SIZE_MAX / 2 ? most : 2 * most);
    std::set<std::tuple<std::string_view, std::int32_t, int>> seen;
    for (const auto hit : hits) {
      const auto place = kv_place_of(expanded->netlist, expanded->origins, hit);
      if (found.size() < most &&
          seen.emplace(expanded->paths.path(hit), place.visit, place.object_id).second)
        found.push_back(found_at(*expanded, hit));
    }
    return found;
  }
  for (const auto& key : wanted.keys) {
    found = kv_search_drawings(drawings, key, wanted.match, most);
    if (!found.empty()) break;
  }
  return found;
}

// The longest part that exists, names left out from the end; "/" at least.
std::string longest_part(const std::optional<kv_expanded_t>& expanded, kv_drawings_t& drawings,
                         kv_readings_t wanted) {
  wanted.match = kv_match::whole;
  while (!wanted.keys.empty()) {
    for (auto& key : wanted.keys) key.resize(std::min(key.rfind('/'), key.size()));
    std::erase(wanted.keys, "");
    const auto found = find(expanded, drawings, wanted, 1);
    if (!found.empty()) return found.front().path;
  }
  return "/";
}

// The flat net of a pin; a pin of one bit on a bus is on that bit of it.
std::int32_t net_of_pin(const kv_memory_netlist_t& netlist, kv_object_t pin) {
  const kv_bits_t bits = netlist.bits(pin);
  const std::int32_t bit = bits.count == 1 ? bits.net(0) : 0;
  return bit != 0 ? bit : netlist.net(pin);
}

}  // namespace

kv_search_t kv_search_path(kv_drawings_t& drawings, std::string_view text, std::size_t most) {
  const auto expanded = kv_expanded();
  const auto wanted = readings(drawings, text);
  kv_search_t result;
  result.found = find(expanded, drawings, wanted, most);
  if (result.found.empty()) result.longest = longest_part(expanded, drawings, wanted);
  return result;
}

void kv_tell_search_end(std::string_view label, const kv_search_t& search) {
  const bool is_none = search.found.empty();
  std::string line = "# !! ";
  line.append(is_none ? "The longest part that exists" : label).append(" : \"");
  line.append(is_none ? search.longest : search.found.front().path).append("\"");
  gx_tell_wrapped(line, gx_line_kind::detail);
}

std::vector<std::int32_t> kv_search_nets(const kv_expanded_t& expanded, kv_drawings_t& drawings,
                                         std::string_view text, std::size_t most) {
  std::vector<std::int32_t> nets;
  std::vector<std::int32_t> nets_of_pins;
  for (const auto hit : hits_of(expanded, readings(drawings, text), SIZE_MAX)) {
    if (hit.what == kv_named::net) nets.push_back(hit.index);
    if (hit.what == kv_named::net_child) nets.push_back(expanded.paths.net_of_child(hit.index));
    if (hit.what == kv_named::pin || hit.what == kv_named::pinm)
      nets_of_pins.push_back(net_of_pin(expanded.netlist, hit));
  }
  if (nets.empty()) nets = std::move(nets_of_pins);
  std::erase(nets, 0);
  std::sort(nets.begin(), nets.end());
  nets.erase(std::unique(nets.begin(), nets.end()), nets.end());
  if (nets.size() > most) nets.resize(most);
  return nets;
}
