// Bytes of a GX file to records and back, driven by the record tables.
//
// Reading never stops the program: what is wrong with a file is an outcome for the caller. A file
// that ends early is refused like one whose next record has no valid type.
#include "gx/db/file/record_codec.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <initializer_list>

#include "gx/db/file/record_tables.h"
#include "gx/db/file/reference_check.h"
#include "gx/text/at.h"
#include "gx/text/text_files.h"
#include "platform/files.h"

namespace {

// Above the size of any sound file: 30000 objects of the longest record.
constexpr std::size_t max_file_size = 64 + std::size_t{gx_max_object_id} * 256;

// --- reading

struct reader_t {
  const unsigned char* at;
  const unsigned char* end;
  bool is_short = false;
  std::int32_t bad_text = 0;  // length of the first text that its record cannot hold
  bool bad_character = false;

  bool has(std::size_t size) const { return static_cast<std::size_t>(end - at) >= size; }
};

// The next number of a record whose bytes are known to be there.
template <typename Number>
Number read_number(reader_t& in) {
  Number v;
  std::memcpy(&v, in.at, sizeof v);
  in.at += sizeof v;
  if constexpr (std::endian::native == std::endian::big) return v;
  if constexpr (sizeof v == 2) return static_cast<Number>(__builtin_bswap16(v));
  return static_cast<Number>(__builtin_bswap32(v));
}

std::int16_t read_i16(reader_t& in) {
  return static_cast<std::int16_t>(read_number<std::uint16_t>(in));
}
std::int32_t read_i32(reader_t& in) {
  return static_cast<std::int32_t>(read_number<std::uint32_t>(in));
}

void read_point(reader_t& in, gx_pointreal_t& point) {
  point.x = read_i32(in);
  point.y = read_i32(in);
}

// A text is read when it fits its record and the file holds it and the `after` bytes of the fields
// after it. A text that is refused is noted and left empty.
template <typename Text>
bool read_text(reader_t& in, Text& text, std::int32_t capacity, std::size_t after) {
  const std::int32_t length = read_i32(in);
  if (length <= 0) return true;
  if (length > capacity) {
    in.bad_text = length;
    return false;
  }
  const auto size = static_cast<std::size_t>(length);
  if (!in.has(size + after)) {
    in.is_short = true;
    return false;
  }
  std::memcpy(text.char_, in.at, size);
  text.len = length;
  bool outside = false;
  for (std::size_t i = 0; i < size; ++i) outside |= in.at[i] < 32 || in.at[i] > 126;
  in.bad_character |= outside;
  in.at += size;
  return true;
}

// Reads one field; `After` is the size of the fields after it. False when the record ends here.
template <gx_kind Kind, std::size_t After>
bool read_field(reader_t& in, void* record, const gx_field_t& field) {
  using enum gx_kind;
  if constexpr (Kind == i16 || Kind == id) {
    gx_put_number<std::int16_t>(record, field, read_i16(in));
  } else if constexpr (Kind == i16_le) {
    const auto v = __builtin_bswap16(read_number<std::uint16_t>(in));
    gx_put_number<std::int16_t>(record, field, static_cast<std::int16_t>(v));
  } else if constexpr (Kind == i32) {
    gx_put_number<std::int32_t>(record, field, read_i32(in));
  } else if constexpr (Kind == u8 || Kind == flag) {
    gx_put_number<std::uint8_t>(record, field, *in.at++);
  } else if constexpr (Kind == real) {
    gx_put_number<float>(record, field, std::bit_cast<float>(read_number<std::uint32_t>(in)));
  } else if constexpr (Kind == point) {
    read_point(in, gx_member<gx_pointreal_t>(record, field));
  } else if constexpr (Kind == bounds) {
    auto& box = gx_member<gx_boundsreal_t>(record, field);
    for (auto* side : {&box.xmin, &box.ymin, &box.xmax, &box.ymax}) *side = read_i32(in);
  } else if constexpr (Kind == string) {
    return read_text(in, gx_member<gx_string_record_t>(record, field), gx_kind_capacity(Kind),
                     After);
  } else if constexpr (Kind == name) {
    return read_text(in, gx_member<gx_name_record_t>(record, field), gx_kind_capacity(Kind), After);
  } else if constexpr (Kind == value) {
    return read_text(in, gx_member<gx_value_record_t>(record, field), gx_kind_capacity(Kind),
                     After);
  } else if constexpr (Kind == points5) {
    for (auto& p : gx_member<std::array<gx_pointreal_t, 5>>(record, field)) read_point(in, p);
  } else if constexpr (Kind == points16) {
    for (auto& p : gx_member<std::array<gx_pointreal_t, 16>>(record, field)) read_point(in, p);
  } else {
    static_assert(Kind == zeros4);
    in.at += 4;
  }
  return true;
}

// Reads the fields of a constant table. The bytes are asked for once, and again after each text.
template <const auto& Fields>
void read_fields(reader_t& in, void* record) {
  constexpr gx_fields_t fields = Fields;
  if (!in.has(gx_tables::disk_size(fields))) {
    in.is_short = true;
    return;
  }
  bool goes_on = true;
  gx_unroll_fields<Fields>([&](auto index) {
    constexpr auto after = gx_tables::disk_size(fields.subspan(index + 1));
    goes_on = goes_on && read_field<fields[index].kind, after>(in, record, fields[index]);
  });
}

template <std::size_t Type>
struct read_tail_of {
  static void call(reader_t& in, void* record) {
    read_fields<gx_tables::tail_of<Type>>(in, record);
  }
};
constexpr auto& read_tail = gx_by_type<void (*)(reader_t&, void*), read_tail_of>;

gx_load_t refused(gx_code code, gx_load_fault fault, std::string message) {
  gx_load_t load;
  load.code = code;
  load.fault = fault;
  load.message = std::move(message);
  return load;
}

std::string fault_text(std::string_view name, int id, std::string_view what) {
  return std::string(name) + ": object " + std::to_string(id) + ": " + std::string(what);
}

gx_load_t refused_data(std::string message) {
  return refused(gx_code::file_data_invalid, gx_load_fault::other, std::move(message));
}

gx_load_t refused_kind(std::string_view name, int id, std::int16_t type, std::string_view what) {
  auto load = refused(gx_code::object_structure_invalid, gx_load_fault::record_kind,
                      fault_text(name, id, what));
  load.object_id = id;
  load.value = type;
  return load;
}

// Reads object `id`; an outcome other than all_is_ok says why the file ends there.
gx_load_t read_object(reader_t& in, gx_file_gene_recf_t& file, int id, std::string_view name) {
  gx_object_gene_rec_t general;
  read_fields<gx_tables::general_fields>(in, &general);
  if (in.is_short) return refused_kind(name, id, -1, "the file ends early");
  const auto type = static_cast<std::int16_t>(general.object_type);
  if (!gx_type_ok(type)) {
    return refused_kind(name, id, type, "record type " + std::to_string(type) + " does not exist");
  }
  auto& object = gx_new_object(file, general.object_type);
  object = general;
  gx_at(read_tail, type)(in, &object);
  if (in.bad_text != 0) {
    return refused_data(fault_text(
        name, id, "a text of " + std::to_string(in.bad_text) + " characters is too long"));
  }
  if (in.is_short) return refused_kind(name, id, -1, "the file ends early");
  if (in.bad_character) {
    return refused_data(fault_text(name, id, "a text holds unprintable characters"));
  }
  file.ptr_to_ar_objindex.push_back(&object);
  return {};
}

constexpr std::size_t header_size = gx_tables::disk_size(gx_tables::header_fields);

// Reads the header; where the bytes end, the rest of it reads as all ones and fails its checks.
void read_header(reader_t& in, gx_file_gene_recf_t& file) {
  std::array<unsigned char, header_size> bytes;
  bytes.fill(0xff);
  const auto size = std::min(bytes.size(), static_cast<std::size_t>(in.end - in.at));
  std::copy_n(in.at, size, bytes.begin());
  reader_t header{bytes.data(), bytes.data() + bytes.size()};
  read_fields<gx_tables::header_fields>(header, &file);
  in.at += size;
}

std::string revision_text(float revision) {
  char text[64];
  std::snprintf(text, sizeof text, "%f", static_cast<double>(revision));
  return text;
}

gx_load_t unreadable(std::string_view name, int error) {
  return refused(gx_code::file_open_invalid, gx_load_fault::unreadable,
                 std::string(name) + ": cannot be read: " + x_why(error));
}

// --- writing

void write_bytes(std::string& out, std::uint32_t v, std::size_t size) {
  if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap32(v);
  out.append(reinterpret_cast<const char*>(&v) + sizeof v - size, size);
}
void write_i16(std::string& out, std::int16_t v) {
  write_bytes(out, static_cast<std::uint16_t>(v), 2);
}
void write_i32(std::string& out, std::int32_t v) {
  write_bytes(out, static_cast<std::uint32_t>(v), 4);
}

void write_point(std::string& out, const gx_pointreal_t& point) {
  write_i32(out, point.x);
  write_i32(out, point.y);
}

void write_fields(std::string& out, const void* record, gx_fields_t fields) {
  for (const auto& field : fields) {
    switch (field.kind) {
      case gx_kind::i16:
      case gx_kind::id:
        write_i16(out, gx_number<std::int16_t>(record, field));
        break;
      case gx_kind::i16_le: {
        const auto v = static_cast<std::uint16_t>(gx_number<std::int16_t>(record, field));
        write_bytes(out, __builtin_bswap16(v), 2);
        break;
      }
      case gx_kind::i32:
        write_i32(out, gx_number<std::int32_t>(record, field));
        break;
      case gx_kind::u8:
      case gx_kind::flag:
        write_bytes(out, gx_number<std::uint8_t>(record, field), 1);
        break;
      case gx_kind::real:
        write_bytes(out, std::bit_cast<std::uint32_t>(gx_number<float>(record, field)), 4);
        break;
      case gx_kind::point:
        write_point(out, gx_member<gx_pointreal_t>(record, field));
        break;
      case gx_kind::bounds: {
        const auto& box = gx_member<gx_boundsreal_t>(record, field);
        for (const auto side : {box.xmin, box.ymin, box.xmax, box.ymax}) write_i32(out, side);
        break;
      }
      case gx_kind::string:
      case gx_kind::name:
      case gx_kind::value: {
        const auto text = gx_field_text(record, field);
        write_i32(out, static_cast<std::int32_t>(text.size()));
        out += text;
        break;
      }
      case gx_kind::points5:
      case gx_kind::points16:
        for (const auto& point : gx_field_points(record, field)) write_point(out, point);
        break;
      case gx_kind::zeros4:
        write_i32(out, 0);
        break;
    }
  }
}

}  // namespace

gx_load_t gx_decode_file(std::string_view bytes, std::string_view name) {
  const auto* first = reinterpret_cast<const unsigned char*>(bytes.data());
  reader_t in{first, first + bytes.size()};

  auto storage = std::make_shared<gx_file_gene_recf_t>();
  auto& file = *storage;
  read_header(in, file);
  if (!(file.software_revision == 2.0F)) {
    auto load = refused(
        gx_code::file_open_invalid, gx_load_fault::revision,
        std::string(name) + (bytes.size() < header_size
                                 ? ": the file ends early"
                                 : ": software revision " + revision_text(file.software_revision) +
                                       " instead of 2.0"));
    load.revision = file.software_revision;
    return load;
  }

  const bool count_ok = file.object_id_max >= 0 && file.object_id_max <= gx_max_object_id;
  if (count_ok) file.ptr_to_ar_objindex.reserve(static_cast<std::size_t>(file.object_id_max) + 12);
  for (int id = 1; count_ok && id <= file.object_id_max; ++id) {
    if (auto load = read_object(in, file, id, name); load.code != gx_code::all_is_ok) return load;
  }

  if (file.fin != gx_file_fin) {
    return refused(gx_code::file_open_invalid, gx_load_fault::end_marker,
                   std::string(name) + ": the header's end marker is missing");
  }
  if (!count_ok) {
    return refused_data(std::string(name) + ": number of objects " +
                        std::to_string(file.object_id_max) + " outside 0..30000");
  }

  for (int id = 1; id <= file.object_id_max; ++id) {
    auto& object = *gx_at(file.ptr_to_ar_objindex, id - 1);
    if (gx_is_deleted(object)) {
      auto load = refused(gx_code::file_close_invalid, gx_load_fault::deleted,
                          fault_text(name, id, "stored although deleted"));
      load.object_id = id;
      load.value = object.status;
      return load;
    }
    object.status = 0;
  }
  if (auto fault = gx_reference_fault(file); !fault.empty()) {
    return refused_data(std::string(name) + ": " + fault);
  }

  gx_load_t load;
  load.file = std::move(storage);
  return load;
}

gx_load_t gx_load_file(std::string_view data_path) {
  // Only a path under the product directory is rewritten, and with that cut in length.
  const std::string path = data_path.starts_with(gx_product_word)
                               ? std::string(gx_view(gx_resolve_path(data_path)))
                               : std::string(data_path);
  const x_descriptor file = x_open_regular(path);
  std::string bytes;
  if (!file || !x_read_whole(file.get(), bytes, max_file_size)) return unreadable(data_path, errno);
  return gx_decode_file(bytes, data_path);
}

gx_load_t gx_load_stream(std::FILE* stream, std::string_view name) {
  std::string bytes;
  if (stream == nullptr || !x_read_whole(fileno(stream), bytes, max_file_size)) {
    return unreadable(name, errno);
  }
  return gx_decode_file(bytes, name);
}

std::string gx_encode_file(const gx_file_gene_recf_t& file) {
  std::string out;
  out.reserve(64 + file.ptr_to_ar_objindex.size() * 96);
  write_fields(out, &file, gx_header_fields());
  for (const auto* object : file.ptr_to_ar_objindex) {
    write_fields(out, object, gx_general_fields());
    write_fields(out, object, gx_tail_fields(object->object_type));
  }
  out.append(2, '\0');
  return out;
}
