// Electrical types: what the property ELECTRICAL of pins and nets says to the rules of drivers, and
// NOCONN of nets to those of single pins, too.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "expand/sheet/sheet_analysis.h"

// How a pin drives its net: an open collector pulls one way, a tri-state pin when it is enabled.
enum class kv_drive : std::uint8_t { none, open, tri_state, output, supply };

struct kv_electrical_t {
  std::string_view name;
  bool takes = false;          // it needs something that drives it
  bool takes_supply = false;   // that must be a supply
  bool drives_inputs = false;  // enough for those that only need something
  kv_drive drive = kv_drive::none;
  bool may_be_open = false;
};

// By its name, letters in either case; nullptr: the word has no meaning here.
const kv_electrical_t* kv_electrical_named(std::string_view name);
// What a PINTYPE says where there is no ELECTRICAL: a kv_io_type.
const kv_electrical_t& kv_electrical_of(std::int16_t io_type);

// Of the nets of a design's sheets: it is meant to be joined to one pin; it needs a supply, has
// one, or something else that drives it, which is not drawn as a pin.
enum kv_net_mark : std::uint8_t {
  kv_mark_open = 1,
  kv_mark_takes_supply = 2,
  kv_mark_supplied = 4,
  kv_mark_driven = 8,
};

class kv_electrical_marks {
 public:
  // Reads the marks of an analysed sheet.
  void take(const kv_sheet_t& sheet, const gx_file_gene_recf_t& file);
  bool has_any() const { return !by_sheet_.empty(); }
  // By the id of a pin's property family; nullptr: the pin says nothing.
  const kv_electrical_t* of_pin(const kv_sheet_t& sheet, int object_id) const;
  // By the id of a net: kv_net_mark, added.
  std::uint8_t of_net(const kv_sheet_t& sheet, int object_id) const;

 private:
  std::uint8_t at(const kv_sheet_t& sheet, int object_id) const;

  // By object id: of a net its marks, of a pin the place of its type in the table, from 1. Sheets
  // without any are left out.
  std::unordered_map<const kv_sheet_t*, std::vector<std::uint8_t>> by_sheet_{};
};
