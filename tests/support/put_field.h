// A field of a record of a GX file by its name, from text.
#pragma once

#include <string>
#include <string_view>

#include "gx/db/file/record_tables.h"
#include "gx/text/strings.h"

// Numbers, flags, ids and texts; nothing where the table has no such field.
inline void put_field(void* record, gx_fields_t fields, std::string_view name,
                      const std::string& value) {
  for (const auto& field : fields) {
    if (field.name != name) continue;
    const bool is_text = gx_kind_capacity(field.kind) > 0;
    const int number = is_text ? 0 : std::stoi(value);
    if (field.kind == gx_kind::string)
      gx_member<gx_string_record_t>(record, field) = gx_string(value);
    if (field.kind == gx_kind::name) gx_member<gx_name_record_t>(record, field) = gx_name(value);
    if (field.kind == gx_kind::value) gx_member<gx_value_record_t>(record, field) = gx_value(value);
    if (is_text) continue;
    if (gx_kind_size(field.kind) == 1)
      gx_put_number(record, field, static_cast<std::uint8_t>(number));
    else if (gx_kind_size(field.kind) == 2)
      gx_put_number(record, field, static_cast<std::int16_t>(number));
    else
      gx_put_number(record, field, std::int32_t{number});
  }
}
