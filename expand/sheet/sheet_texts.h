// The texts and properties of a sheet that an analysis keeps.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "expand/setup.h"
#include "expand/sheet/sheet_records.h"
#include "gx/db/object_records.h"
#include "gx/text/records.h"

// Appends to a sheet's text; the pieces are of that sheet.
kv_text_t kv_keep_text(kv_sheet_t& sheet, std::initializer_list<std::string_view> parts);
// "/" and the name; without one "/", the prefix and the id.
kv_text_t kv_keep_suffix(kv_sheet_t& sheet, std::string_view name, std::string_view prefix, int id);

// Keeps the value of a property; one that is the same at every visit is decoded.
void kv_keep_property(kv_sheet_t& sheet, const kv_setup_t& setup,
                      const kv_prop_type_record_t& entry, std::string_view value);

// The values of all properties of a PROPerty list, whose texts `find` gives by name. Returns the
// place of the first in `sheet.kept`.
template <typename Find>
std::int32_t kv_keep_properties(kv_sheet_t& sheet, const kv_setup_t& setup,
                                const kv_prop_list_t& list, Find find) {
  const auto first = static_cast<std::int32_t>(sheet.kept.size());
  for (const auto& entry : list) kv_keep_property(sheet, setup, entry, find(gx_view(entry.name)));
  return first;
}

// The state that an INIT property asks for; null: none.
kv_init_t kv_keep_init(kv_sheet_t& sheet, const gx_object_property_rec_t* property);

// The values of a kept property's text, decoded for a place in the hierarchy.
struct kv_scope_t;
void kv_decode_kept(kv_kept_t& kept, std::string_view text, const kv_scope_t& scope);
