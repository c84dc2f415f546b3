// Fields read by their description, for those who print them.
#include "gx/db/file/record_tables.h"

std::span<const gx_pointreal_t> gx_field_points(const void* record, const gx_field_t& field) {
  switch (field.kind) {
    case gx_kind::points5:
      return gx_member<std::array<gx_pointreal_t, 5>>(record, field);
    case gx_kind::points16:
      return gx_member<std::array<gx_pointreal_t, 16>>(record, field);
    default:
      return {};
  }
}

std::string_view gx_field_text(const void* record, const gx_field_t& field) {
  switch (field.kind) {
    case gx_kind::string:
      return gx_view(gx_member<gx_string_record_t>(record, field));
    case gx_kind::name:
      return gx_view(gx_member<gx_name_record_t>(record, field));
    case gx_kind::value:
      return gx_view(gx_member<gx_value_record_t>(record, field));
    default:
      return {};
  }
}

std::int32_t gx_field_number(const void* record, const gx_field_t& field) {
  switch (field.kind) {
    case gx_kind::u8:
    case gx_kind::flag:
      return gx_number<std::uint8_t>(record, field);
    case gx_kind::i16:
    case gx_kind::i16_le:
    case gx_kind::id:
      return gx_number<std::int16_t>(record, field);
    case gx_kind::i32:
      return gx_number<std::int32_t>(record, field);
    default:
      return 0;
  }
}
