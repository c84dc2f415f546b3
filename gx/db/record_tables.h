// The one description of every record of a GX file: its fields in the order of the file, how each
// is coded there and where it lies in the record in memory.
//
// The decoder, the encoder, the soundness check, the renumbering of a save, the object listing and
// the dump tool all walk these tables; a change of the format is a change of record_tables.cpp and
// of nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "gx/db/file_records.h"

// How a field is coded in the file. Numbers are big-endian unless the name says otherwise.
enum class gx_kind : std::uint8_t {
  i16,
  i16_le,    // low byte first
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

struct gx_field_t {
  std::string_view name;
  gx_kind kind;
  std::uint16_t offset;  // in the record in memory
  gx_refers refers = gx_refers::any;
};

using gx_fields_t = std::span<const gx_field_t>;

// Bytes of a field in the file; of a text only its length word.
constexpr std::size_t gx_kind_size(gx_kind kind) {
  switch (kind) {
    case gx_kind::u8:
    case gx_kind::flag: return 1;
    case gx_kind::i16:
    case gx_kind::i16_le:
    case gx_kind::id: return 2;
    case gx_kind::i32:
    case gx_kind::real:
    case gx_kind::string:
    case gx_kind::name:
    case gx_kind::value:
    case gx_kind::zeros4: return 4;
    case gx_kind::point: return 8;
    case gx_kind::bounds: return 16;
    case gx_kind::points5: return 5 * 8;
    case gx_kind::points16: return 16 * 8;
  }
  return 0;
}

// Longest text of a kind; 0 for the kinds that are no text.
constexpr std::int32_t gx_kind_capacity(gx_kind kind) {
  switch (kind) {
    case gx_kind::string: return gx_max_string_length - 1;
    case gx_kind::name: return 64;
    case gx_kind::value: return 96;
    default: return 0;
  }
}

// The file header (offsets into gx_file_gene_recf_t) and the general record of every object.
gx_fields_t gx_header_fields();
gx_fields_t gx_general_fields();

// What follows the general record of an object of this type; the type must be 1..32.
gx_fields_t gx_tail_fields(gx_type type);

// Bytes in memory of the whole record of this type, and a new one in the file's storage.
std::size_t gx_record_size(gx_type type);
gx_object_gene_rec_t& gx_new_object(gx_file_gene_recf_t& file, gx_type type);

constexpr bool gx_type_ok(std::int16_t code) { return code >= 1 && code <= gx_max_type; }

// The member of `record` that `field` describes.
template <typename Member>
const Member& gx_member(const void* record, const gx_field_t& field) {
  return *reinterpret_cast<const Member*>(static_cast<const std::byte*>(record) + field.offset);
}
template <typename Member>
Member& gx_member(void* record, const gx_field_t& field) {
  return *reinterpret_cast<Member*>(static_cast<std::byte*>(record) + field.offset);
}

// The points of a polyline field; empty for the other kinds.
std::span<const gx_pointreal_t> gx_field_points(const void* record, const gx_field_t& field);
// The characters of a text field; empty for the other kinds.
std::string_view gx_field_text(const void* record, const gx_field_t& field);
// The value of a number, flag or id field; 0 for the other kinds.
std::int32_t gx_field_number(const void* record, const gx_field_t& field);
