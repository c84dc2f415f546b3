// The one description of every record of a GX file: its fields in the order of the file, how each
// is coded there and where it lies in the record in memory.
//
// The decoder, the encoder, the soundness check, the renumbering of a save, the object listing and
// the dump tool all walk these tables; a change of the format is a change of a table and of nothing
// else. The tables are constants: the decoder unrolls them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "gx/db/file/file_records.h"
#include "gx/text/at.h"

// How a field is coded in the file. Numbers are big-endian unless the name says otherwise.
enum class gx_kind : std::uint8_t {
  i16,
  i16_le,  // low byte first
  i32,
  u8,
  flag,      // U8 that holds 0 or 1
  real,      // 32-bit IEEE
  id,        // I16 that names an object of the same file, 0 = none
  point,     // 2 I32
  bounds,    // 4 I32
  string,    // I32 length, then that many characters, at most 199
  name,      // the same, at most 64
  value,     // the same, at most 96
  points5,   // 5 points, whatever the count says
  points16,  // 16 points, likewise
  zeros4,    // four bytes that the record in memory does not have
};

// What an id may name.
enum class gx_refers : std::uint8_t { any, instance, symbol, net, net_end, page, grid };

inline constexpr std::int16_t gx_max_line_style = 4;

struct gx_field_t {
  std::string_view name;
  gx_kind kind;
  std::uint16_t offset;  // in the record in memory
  gx_refers refers = gx_refers::any;
  std::int16_t limit = 0;  // a number outside 0..limit is refused; 0: any goes
  bool never_0 = false;    // 0 is refused
};

using gx_fields_t = std::span<const gx_field_t>;

// Bytes of a field in the file; of a text only its length word.
constexpr std::size_t gx_kind_size(gx_kind kind) {
  switch (kind) {
    case gx_kind::u8:
    case gx_kind::flag:
      return 1;
    case gx_kind::i16:
    case gx_kind::i16_le:
    case gx_kind::id:
      return 2;
    case gx_kind::i32:
    case gx_kind::real:
    case gx_kind::string:
    case gx_kind::name:
    case gx_kind::value:
    case gx_kind::zeros4:
      return 4;
    case gx_kind::point:
      return 8;
    case gx_kind::bounds:
      return 16;
    case gx_kind::points5:
      return 5 * 8;
    case gx_kind::points16:
      return 16 * 8;
  }
  return 0;
}

// Longest text of a kind; 0 for the kinds that are no text.
constexpr std::int32_t gx_kind_capacity(gx_kind kind) {
  switch (kind) {
    case gx_kind::string:
      return gx_max_string_length - 1;
    case gx_kind::name:
      return 64;
    case gx_kind::value:
      return 96;
    default:
      return 0;
  }
}

// --- the tables
namespace gx_tables {

// offsetof is used on these; the object records are plain by construction.
static_assert(std::is_standard_layout_v<gx_file_gene_recf_t>);

using header_t = gx_file_gene_recf_t;
inline constexpr gx_field_t header_fields[] = {
    {"software_revision", gx_kind::real, offsetof(header_t, software_revision)},
    {"day", gx_kind::i16, offsetof(header_t, day)},
    {"month", gx_kind::i16, offsetof(header_t, month)},
    {"year", gx_kind::i16, offsetof(header_t, year)},
    {"hour", gx_kind::i16, offsetof(header_t, hour)},
    {"minute", gx_kind::i16, offsetof(header_t, minute)},
    {"object_id_max", gx_kind::i16, offsetof(header_t, object_id_max)},
    {"primary_object", gx_kind::id, offsetof(header_t, primary_object)},
    {"page_obj_id", gx_kind::id, offsetof(header_t, page_obj_id), gx_refers::page},
    {"grid_obj_id", gx_kind::id, offsetof(header_t, grid_obj_id), gx_refers::grid},
    {"check_data_done", gx_kind::i16, offsetof(header_t, check_data_done)},
    {"num_errors", gx_kind::i16, offsetof(header_t, num_errors)},
    {"dot_width", gx_kind::i32, offsetof(header_t, dot_width)},
    {"displayed", gx_kind::u8, offsetof(header_t, displayed)},
    {"reserved_4", gx_kind::zeros4, 0},
    {"reserved", gx_kind::u8, offsetof(header_t, reserved)},
    {"fin", gx_kind::i16, offsetof(header_t, fin)},
};

using general_t = gx_object_gene_rec_t;
inline constexpr gx_field_t general_fields[] = {
    {"object_id", gx_kind::id, offsetof(general_t, object_id)},
    {"father", gx_kind::id, offsetof(general_t, father)},
    {"previous", gx_kind::id, offsetof(general_t, previous)},
    {"following", gx_kind::id, offsetof(general_t, following)},
    {"child1", gx_kind::id, offsetof(general_t, child1)},
    {"id_tmp", gx_kind::i16, offsetof(general_t, id_tmp)},
    {"object_type", gx_kind::i16, offsetof(general_t, object_type)},
    {"status", gx_kind::i16, offsetof(general_t, status)},
    {"origin", gx_kind::point, offsetof(general_t, origin)},
    {"bounds", gx_kind::bounds, offsetof(general_t, bounds)},
};

using plain_t = gx_object_plain_rec_t;
inline constexpr gx_field_t plain_fields[] = {
    {"fin", gx_kind::i16, offsetof(plain_t, fin)},
};

using instance_t = gx_object_instance_rec_t;
inline constexpr gx_field_t instance_fields[] = {
    {"rotate", gx_kind::u8, offsetof(instance_t, rotate), gx_refers::any, 3},
    {"fliph", gx_kind::flag, offsetof(instance_t, fliph)},
    {"symbol", gx_kind::id, offsetof(instance_t, symbol), gx_refers::symbol},
    {"n0_version", gx_kind::i16, offsetof(instance_t, n0_version)},
    {"previous_inst", gx_kind::id, offsetof(instance_t, previous_inst), gx_refers::instance},
    {"following_inst", gx_kind::id, offsetof(instance_t, following_inst), gx_refers::instance},
    {"fin", gx_kind::i16, offsetof(instance_t, fin)},
};

using symbol_t = gx_object_symbol_rec_t;
inline constexpr gx_field_t symbol_fields[] = {
    {"instance", gx_kind::id, offsetof(symbol_t, instance), gx_refers::instance},
    {"path", gx_kind::string, offsetof(symbol_t, path)},
    {"fin", gx_kind::i16, offsetof(symbol_t, fin)},
};

using pinpropfam_t = gx_object_pinpropfam_rec_t;
inline constexpr gx_field_t pinpropfam_fields[] = {
    {"dotted", gx_kind::flag, offsetof(pinpropfam_t, dotted)},
    {"reserved", gx_kind::u8, offsetof(pinpropfam_t, reserved)},
    {"net", gx_kind::id, offsetof(pinpropfam_t, net), gx_refers::net},
    {"pin_start", gx_kind::i16_le, offsetof(pinpropfam_t, pin_start)},
    {"pin_end", gx_kind::i16, offsetof(pinpropfam_t, pin_end)},
    {"pin_net_start", gx_kind::i16, offsetof(pinpropfam_t, pin_net_start)},
    {"fin", gx_kind::i16, offsetof(pinpropfam_t, fin)},
};

// The end marker of a net is not stored.
using net_t = gx_object_net_rec_t;
inline constexpr gx_field_t net_fields[] = {
    {"net_index", gx_kind::i32, offsetof(net_t, net_index)},
    {"is_bus", gx_kind::flag, offsetof(net_t, is_bus)},
    {"reserved", gx_kind::flag, offsetof(net_t, reserved)},
    {"bus_start", gx_kind::i16, offsetof(net_t, bus_start)},
    {"bus_end", gx_kind::i16, offsetof(net_t, bus_end)},
};

using segment_t = gx_object_segment_rec_t;
inline constexpr gx_field_t segment_fields[] = {
    {"reserved", gx_kind::i16, offsetof(segment_t, reserved)},
    {"line_color", gx_kind::u8, offsetof(segment_t, line_color)},
    {"line_width", gx_kind::u8, offsetof(segment_t, line_width), gx_refers::any, 0, true},
    {"vertex1", gx_kind::id, offsetof(segment_t, vertex1), gx_refers::net_end, 0, true},
    {"vertex2", gx_kind::id, offsetof(segment_t, vertex2), gx_refers::net_end, 0, true},
    {"line_style", gx_kind::i16, offsetof(segment_t, line_style), gx_refers::any,
     gx_max_line_style},
    {"fin", gx_kind::i16, offsetof(segment_t, fin)},
};

using tag_t = gx_object_tag_rec_t;
inline constexpr gx_field_t tag_fields[] = {
    {"name", gx_kind::name, offsetof(tag_t, name)},
    {"nvalue", gx_kind::value, offsetof(tag_t, nvalue)},
    {"reserved", gx_kind::i16, offsetof(tag_t, reserved)},
    {"fin", gx_kind::i16, offsetof(tag_t, fin)},
};

using vertex_t = gx_object_vertex_rec_t;
inline constexpr gx_field_t vertex_fields[] = {
    {"dotted", gx_kind::flag, offsetof(vertex_t, dotted)},
    {"reserved", gx_kind::flag, offsetof(vertex_t, reserved)},
    {"net", gx_kind::id, offsetof(vertex_t, net), gx_refers::net},
    {"fin", gx_kind::i16, offsetof(vertex_t, fin)},
};

// On disk border_style is before c_reserved, unlike in memory.
using arc_t = gx_object_arc_rec_t;
inline constexpr gx_field_t arc_fields[] = {
    {"pt2", gx_kind::point, offsetof(arc_t, pt2)},
    {"pt3", gx_kind::point, offsetof(arc_t, pt3)},
    {"center", gx_kind::point, offsetof(arc_t, center)},
    {"rad", gx_kind::i32, offsetof(arc_t, rad)},
    {"angle1", gx_kind::i32, offsetof(arc_t, angle1)},
    {"angle2", gx_kind::i32, offsetof(arc_t, angle2)},
    {"border_color", gx_kind::u8, offsetof(arc_t, border_color)},
    {"border_style", gx_kind::i16_le, offsetof(arc_t, border_style), gx_refers::any,
     gx_max_line_style},
    {"c_reserved", gx_kind::u8, offsetof(arc_t, c_reserved)},
    {"i_reserved", gx_kind::i16, offsetof(arc_t, i_reserved)},
    {"fin", gx_kind::i16, offsetof(arc_t, fin)},
};

using circle_t = gx_object_circle_rec_t;
inline constexpr gx_field_t circle_fields[] = {
    {"reserved", gx_kind::u8, offsetof(circle_t, reserved)},
    {"border_color", gx_kind::u8, offsetof(circle_t, border_color)},
    {"filled", gx_kind::flag, offsetof(circle_t, filled)},
    {"fill_color", gx_kind::u8, offsetof(circle_t, fill_color)},
    {"rad", gx_kind::i32, offsetof(circle_t, rad)},
    {"border_style", gx_kind::i16, offsetof(circle_t, border_style), gx_refers::any,
     gx_max_line_style},
    {"fin", gx_kind::i16, offsetof(circle_t, fin)},
};

using grid_t = gx_object_grid_rec_t;
inline constexpr gx_field_t grid_fields[] = {
    {"opposite_pt", gx_kind::point, offsetof(grid_t, opposite_pt)},
    {"step_point", gx_kind::i32, offsetof(grid_t, step_point), gx_refers::any, 0, true},
    {"step_pin", gx_kind::i32, offsetof(grid_t, step_pin)},
    {"grid_on", gx_kind::flag, offsetof(grid_t, grid_on)},
    {"snap_on", gx_kind::flag, offsetof(grid_t, snap_on)},
    {"fin", gx_kind::i16, offsetof(grid_t, fin)},
};

using line_t = gx_object_line_rec_t;
inline constexpr gx_field_t line_fields[] = {
    {"reserved", gx_kind::i16, offsetof(line_t, reserved)},
    {"line_color", gx_kind::u8, offsetof(line_t, line_color)},
    {"line_width", gx_kind::u8, offsetof(line_t, line_width), gx_refers::any, 0, true},
    {"pt2", gx_kind::point, offsetof(line_t, pt2)},
    {"line_style", gx_kind::i16, offsetof(line_t, line_style), gx_refers::any, gx_max_line_style},
    {"fin", gx_kind::i16, offsetof(line_t, fin)},
};

// Both polylines differ in the number of their points only.
template <typename Rec>
constexpr std::array<gx_field_t, 6> polyline_fields_of(gx_kind points) {
  constexpr std::int16_t most = Rec::max_points;
  return {{
      {"line_style", gx_kind::i16, offsetof(Rec, line_style), gx_refers::any, gx_max_line_style},
      {"n_points", gx_kind::i16, offsetof(Rec, n_points), gx_refers::any, most},
      {"points", points, offsetof(Rec, points)},
      {"line_color", gx_kind::u8, offsetof(Rec, line_color)},
      {"reserved", gx_kind::u8, offsetof(Rec, reserved)},
      {"fin", gx_kind::i16, offsetof(Rec, fin)},
  }};
}
inline constexpr auto polyline5_fields =
    polyline_fields_of<gx_object_polyline5_rec_t>(gx_kind::points5);
inline constexpr auto polyline_fields =
    polyline_fields_of<gx_object_polyline_rec_t>(gx_kind::points16);

using rectangle_t = gx_object_rectangle_rec_t;
inline constexpr gx_field_t rectangle_fields[] = {
    {"reserved", gx_kind::u8, offsetof(rectangle_t, reserved)},
    {"line_color", gx_kind::u8, offsetof(rectangle_t, line_color)},
    {"filled", gx_kind::flag, offsetof(rectangle_t, filled)},
    {"fill_color", gx_kind::u8, offsetof(rectangle_t, fill_color)},
    {"pt2", gx_kind::point, offsetof(rectangle_t, pt2)},
    {"line_style", gx_kind::i16, offsetof(rectangle_t, line_style), gx_refers::any,
     gx_max_line_style},
    {"fin", gx_kind::i16, offsetof(rectangle_t, fin)},
};

using property_t = gx_object_property_rec_t;
inline constexpr gx_field_t property_fields[] = {
    {"fixed", gx_kind::flag, offsetof(property_t, fixed)},
    {"visible", gx_kind::flag, offsetof(property_t, visible)},
    {"line_color", gx_kind::u8, offsetof(property_t, line_color)},
    {"rotate", gx_kind::u8, offsetof(property_t, rotate)},
    {"name", gx_kind::name, offsetof(property_t, name)},
    {"nvalue", gx_kind::value, offsetof(property_t, nvalue)},
    {"height", gx_kind::i32, offsetof(property_t, height)},
    {"reserved", gx_kind::i16, offsetof(property_t, reserved)},
    {"fin", gx_kind::i16, offsetof(property_t, fin)},
};

// Bytes of a record in the file, without the characters of its texts. The sizes of the format:
// a slip in a table shows here.
constexpr std::size_t disk_size(gx_fields_t fields) {
  std::size_t size = 0;
  for (const auto& field : fields) size += gx_kind_size(field.kind);
  return size;
}
static_assert(disk_size(header_fields) == 38);
static_assert(disk_size(general_fields) == 40);
static_assert(disk_size(plain_fields) == 2);
static_assert(disk_size(instance_fields) == 12);
static_assert(disk_size(symbol_fields) == 4 + 4);
static_assert(disk_size(pinpropfam_fields) == 12);
static_assert(disk_size(net_fields) == 10);
static_assert(disk_size(segment_fields) == 12);
static_assert(disk_size(tag_fields) == 4 + 4 + 4);
static_assert(disk_size(vertex_fields) == 6);
static_assert(disk_size(arc_fields) == 44);
static_assert(disk_size(circle_fields) == 12);
static_assert(disk_size(grid_fields) == 20);
static_assert(disk_size(line_fields) == 16);
static_assert(disk_size(polyline5_fields) == 48);
static_assert(disk_size(polyline_fields) == 136);
static_assert(disk_size(rectangle_fields) == 16);
static_assert(disk_size(property_fields) == 12 + 4 + 4);

struct record_type_t {
  gx_fields_t tail = plain_fields;
  std::size_t size = sizeof(gx_object_plain_rec_t);  // in memory
  gx_object_gene_rec_t& (*make)(gx_file_gene_recf_t&) = nullptr;
};

template <typename Rec>
gx_object_gene_rec_t& make_record(gx_file_gene_recf_t& file) {
  return gx_new_record<Rec>(file).gene;
}

template <typename Rec>
constexpr void enter(std::array<record_type_t, gx_max_type + 1>& types, gx_fields_t tail) {
  gx_at(types, Rec::type) = {tail, sizeof(Rec), make_record<Rec>};
}

// By type code; the types that no line enters hold nothing of their own.
inline constexpr auto record_types = [] {
  std::array<record_type_t, gx_max_type + 1> types{};
  for (auto& type : types) type.make = make_record<gx_object_plain_rec_t>;
  enter<instance_t>(types, instance_fields);
  enter<symbol_t>(types, symbol_fields);
  enter<pinpropfam_t>(types, pinpropfam_fields);
  enter<net_t>(types, net_fields);
  enter<segment_t>(types, segment_fields);
  enter<tag_t>(types, tag_fields);
  enter<vertex_t>(types, vertex_fields);
  enter<arc_t>(types, arc_fields);
  enter<circle_t>(types, circle_fields);
  enter<grid_t>(types, grid_fields);
  enter<line_t>(types, line_fields);
  enter<gx_object_polyline5_rec_t>(types, polyline5_fields);
  enter<gx_object_polyline_rec_t>(types, polyline_fields);
  enter<rectangle_t>(types, rectangle_fields);
  enter<property_t>(types, property_fields);
  return types;
}();

// The tail of one type as a constant of its own.
template <std::size_t Type>
inline constexpr gx_fields_t tail_of = record_types[Type].tail;

}  // namespace gx_tables

// --- reading the tables
inline gx_fields_t gx_header_fields() { return gx_tables::header_fields; }
inline gx_fields_t gx_general_fields() { return gx_tables::general_fields; }

// What follows the general record of an object of this type; the type must be 1..32.
inline gx_fields_t gx_tail_fields(gx_type type) {
  return gx_at(gx_tables::record_types, type).tail;
}
// Bytes in memory of the whole record of this type, and a new one in the file's storage.
inline std::size_t gx_record_size(gx_type type) {
  return gx_at(gx_tables::record_types, type).size;
}
inline gx_object_gene_rec_t& gx_new_object(gx_file_gene_recf_t& file, gx_type type) {
  return gx_at(gx_tables::record_types, type).make(file);
}

constexpr bool gx_type_ok(std::int16_t code) { return code >= 1 && code <= gx_max_type; }

// Calls visit(index) for every field of a constant table, the index as a constant: the loop and
// what depends on the field alone are gone when the program runs.
template <const auto& Fields, typename Visit>
constexpr void gx_unroll_fields(Visit&& visit) {
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    (visit(std::integral_constant<std::size_t, I>{}), ...);
  }
  (std::make_index_sequence<std::size(Fields)>{});
}

// One function for each type code, from a template over the code.
template <typename Function, template <std::size_t> typename For>
inline constexpr auto gx_by_type = []<std::size_t... Type>(std::index_sequence<Type...>) {
  return std::array<Function, sizeof...(Type)>{For<Type>::call...};
}
(std::make_index_sequence<gx_max_type + 1>{});

// The member of `record` that `field` describes: a point, a box or a text.
template <typename Member>
const Member& gx_member(const void* record, const gx_field_t& field) {
  return *reinterpret_cast<const Member*>(static_cast<const std::byte*>(record) + field.offset);
}
template <typename Member>
Member& gx_member(void* record, const gx_field_t& field) {
  return *reinterpret_cast<Member*>(static_cast<std::byte*>(record) + field.offset);
}
// The same for numbers, by value: the member may be an enumeration of that width.
template <typename Number>
Number gx_number(const void* record, const gx_field_t& field) {
  Number v;
  std::memcpy(&v, static_cast<const std::byte*>(record) + field.offset, sizeof v);
  return v;
}
template <typename Number>
void gx_put_number(void* record, const gx_field_t& field, Number v) {
  std::memcpy(static_cast<std::byte*>(record) + field.offset, &v, sizeof v);
}

// The points of a polyline field; empty for the other kinds.
std::span<const gx_pointreal_t> gx_field_points(const void* record, const gx_field_t& field);
// The characters of a text field; empty for the other kinds.
std::string_view gx_field_text(const void* record, const gx_field_t& field);
// The value of a number, flag or id field; 0 for the other kinds.
std::int32_t gx_field_number(const void* record, const gx_field_t& field);
