#include "gx/db/file/format_text.h"

#include <algorithm>
#include <vector>

#include "gx/db/file/record_tables.h"

namespace {

std::string text_of(std::int32_t capacity) {
  return "text of at most " + std::to_string(capacity) + " characters";
}

// How a field is written.
std::string coding(gx_kind kind) {
  switch (kind) {
    case gx_kind::i16:
    case gx_kind::id:
      return "int16";
    case gx_kind::i16_le:
      return "int16, low byte first";
    case gx_kind::i32:
      return "int32";
    case gx_kind::u8:
    case gx_kind::flag:
      return "uint8";
    case gx_kind::real:
      return "float32";
    case gx_kind::point:
      return "point";
    case gx_kind::bounds:
      return "box";
    case gx_kind::string:
    case gx_kind::name:
    case gx_kind::value:
      return text_of(gx_kind_capacity(kind));
    case gx_kind::points5:
      return "5 points";
    case gx_kind::points16:
      return "16 points";
    case gx_kind::zeros4:
      return "4 bytes, written as 0";
  }
  return {};
}

std::string_view named(gx_refers refers) {
  switch (refers) {
    case gx_refers::any:
      return "any object";
    case gx_refers::instance:
      return "an instance";
    case gx_refers::symbol:
      return "a symbol";
    case gx_refers::net:
      return "a net";
    case gx_refers::net_end:
      return "a vertex or a pin of an instance";
    case gx_refers::page:
      return "a page";
    case gx_refers::grid:
      return "a grid";
  }
  return {};
}

// What the reader asks of the value; "" where anything goes.
std::string value_rule(const gx_field_t& field) {
  if (field.kind == gx_kind::id)
    return "id of " + std::string(named(field.refers)) + (field.never_0 ? "" : ", 0: none");
  if (field.kind == gx_kind::flag) return "0 or 1";
  if (field.limit > 0) return "0.." + std::to_string(field.limit);
  return field.never_0 ? "not 0" : "";
}

// Offsets after a text count from its end.
std::string table(gx_fields_t fields) {
  std::string text = "| offset | bytes | field | type | holds |\n|---|---|---|---|---|\n";
  std::size_t offset = 0;
  std::string behind;
  for (const auto& field : fields) {
    const bool is_text = gx_kind_capacity(field.kind) > 0;
    const auto bytes = std::to_string(gx_kind_size(field.kind)) + (is_text ? " + length" : "");
    text += "| " + std::to_string(offset) + behind + " | " + bytes + " | `" +
            std::string(field.name) + "` | " + coding(field.kind) + " | " + value_rule(field) +
            " |\n";
    offset += gx_kind_size(field.kind);
    if (is_text) behind += " + length of " + std::string(field.name);
  }
  return text;
}

bool is_plain(gx_type type) {
  return gx_tail_fields(type).data() == static_cast<const gx_field_t*>(gx_tables::plain_fields);
}

}  // namespace

std::string gx_format_text() {
  std::string text = "### Header\n\n" + table(gx_header_fields()) +
                     "\n### Every object begins with\n\n" + table(gx_general_fields()) +
                     "\n### Types\n\n| code | type | behind the general record |\n|---|---|---|\n";
  std::vector<gx_type> with_tail;
  for (int code = 1; code <= gx_max_type; ++code) {
    const auto type = static_cast<gx_type>(code);
    const std::string name(gx_type_name(type));
    text += "| " + std::to_string(code) + " | " + name + " | " +
            (is_plain(type) ? "`fin`, an int16" : "see " + name) + " |\n";
    if (!is_plain(type)) with_tail.push_back(type);
  }
  for (const auto type : with_tail)
    text += "\n### " + std::string(gx_type_name(type)) + "\n\n" + table(gx_tail_fields(type));
  return text;
}
