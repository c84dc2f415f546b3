// Why a flat net is what it is: the nets of sheets that are in it, and what joined each.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "expand/origins.h"
#include "gx/text/at.h"

// A net of a sheet that is a flat net, or that holds it as one of its bits.
struct kv_drawn_t {
  std::int32_t visit = -1;  // of the sheet
  int object_id = 0;
  std::int32_t net = 0;    // the flat net that was saved or joined: it, or the bus that it is of
  std::int32_t child = 0;  // its record; 0: it is the flat net's own
};

class kv_explainer_t {
 public:
  // Of a design and where it comes from, which must stay as they are.
  kv_explainer_t(const kv_memory_netlist_t& netlist, const kv_origins_t& origins)
      : netlist_(netlist), origins_(origins) {}

  // Every net of a sheet in the flat net, sheet by sheet as they were visited; of a bit of a bus
  // first those of the bus that hold it.
  std::vector<kv_drawn_t> drawn(std::int32_t net) const;
  // The same, on each sheet in the order of joining: a reason names only nets before it.
  std::vector<kv_drawn_t> joined(std::int32_t net);

  // In words what joined one of them: "port D of /XR/X0, pin /XR/X0/D", "global VDD, instance I_7",
  // "same NET name as N_31", "shared vertex 112", "bit 2 of bus Q". Empty for the net that the flat
  // net was saved by.
  std::string reason(std::int32_t net, const kv_drawn_t& drawn);

  const kv_sheet_t& sheet(std::int32_t visit) const { return *gx_at(origins_.visits, visit).sheet; }

 private:
  // What joined each net of a group to the one that begins it, and when; by place in the list of
  // nets.
  struct joined_t {
    std::string words;
    std::size_t order;
  };
  using group_reasons_t = std::map<std::int32_t, joined_t>;

  struct place_t;
  place_t place_of(const kv_drawn_t& drawn);
  std::size_t order_of(std::int32_t net, const kv_drawn_t& drawn);
  void add_drawn(std::int32_t net, std::vector<kv_drawn_t>& drawn) const;
  bool has_bit(const kv_drawn_t& drawn, std::int32_t bit) const;
  bool is_saved_by_net(std::int32_t net) const;
  kv_object_t pin_into(std::int32_t visit, std::int32_t port) const;
  std::string port_words(std::int32_t net, const place_t& place) const;
  std::string bit_words(std::int32_t net) const;
  std::string tied_words(const place_t& place) const;
  std::string root_words(std::int32_t net, const kv_drawn_t& drawn, const place_t& place,
                         std::int32_t& root) const;
  const group_reasons_t& group_reasons(const kv_sheet_t& sheet, std::int32_t root);
  const std::vector<std::int32_t>& nets_by_id(const kv_sheet_t& sheet);

  const kv_memory_netlist_t netlist_;
  const kv_origins_t& origins_;
  std::map<std::pair<const kv_sheet_t*, std::int32_t>, group_reasons_t> reasons_;
  std::map<const kv_sheet_t*, std::vector<std::int32_t>> by_id_;  // place in the list of nets
};
