// Bytes of a GX file to records and back, driven by the record tables.
//
// Reading never stops the program: what is wrong with a file is an outcome for the caller. Reading
// past the end yields bytes of all ones, as the format has it, so that a short file fails at the
// next check like any other damage; what no check would notice is refused for its length.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <initializer_list>

#include "gx/db/files.h"
#include "gx/db/record_tables.h"
#include "gx/text/text_files.h"

namespace {

// Above the size of any sound file: 30000 objects of the longest record.
constexpr std::size_t max_file_size = 64 + std::size_t{gx_max_object_id} * 256;

// --- reading

struct reader_t {
  const unsigned char* at;
  const unsigned char* end;
  bool is_short = false;
  std::int32_t bad_text = -1;  // length of the first text that its record cannot hold
  bool bad_character = false;

  bool room(std::size_t size) {
    if (static_cast<std::size_t>(end - at) >= size) return true;
    is_short = true;
    at = end;
    return false;
  }
};

std::uint8_t read_u8(reader_t& in) { return in.room(1) ? *in.at++ : std::uint8_t{0xff}; }

std::uint16_t read_u16(reader_t& in) {
  if (!in.room(2)) return 0xffff;
  std::uint16_t v;
  std::memcpy(&v, in.at, 2);
  in.at += 2;
  if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap16(v);
  return v;
}

std::uint32_t read_u32(reader_t& in) {
  if (!in.room(4)) return 0xffffffff;
  std::uint32_t v;
  std::memcpy(&v, in.at, 4);
  in.at += 4;
  if constexpr (std::endian::native == std::endian::little) v = __builtin_bswap32(v);
  return v;
}

std::int16_t read_i16(reader_t& in) { return static_cast<std::int16_t>(read_u16(in)); }
std::int32_t read_i32(reader_t& in) { return static_cast<std::int32_t>(read_u32(in)); }

void read_point(reader_t& in, gx_pointreal_t& point) {
  point.x = read_i32(in);
  point.y = read_i32(in);
}

template <std::size_t Count>
void read_points(reader_t& in, std::array<gx_pointreal_t, Count>& points) {
  for (auto& point : points) read_point(in, point);
}

// A text that does not fit or is not printable is noted, left empty and not looked at further: its
// file is refused.
template <typename Text>
void read_text(reader_t& in, Text& text, std::int32_t capacity) {
  const std::int32_t length = read_i32(in);
  if (length <= 0) return;
  if (length > capacity) {
    if (in.bad_text < 0) in.bad_text = length;
    return;
  }
  const auto size = static_cast<std::size_t>(length);
  if (!in.room(size)) return;
  std::memcpy(text.char_, in.at, size);
  text.len = length;
  unsigned outside = 0;
  for (std::size_t i = 0; i < size; ++i) {
    outside |= static_cast<unsigned char>(in.at[i] - 32) > 126 - 32 ? 1U : 0U;
  }
  if (outside != 0) in.bad_character = true;
  in.at += size;
}

void read_fields(reader_t& in, void* record, gx_fields_t fields) {
  for (const auto& field : fields) {
    switch (field.kind) {
      case gx_kind::i16:
      case gx_kind::id: gx_member<std::int16_t>(record, field) = read_i16(in); break;
      case gx_kind::i16_le:
        gx_member<std::int16_t>(record, field) =
            static_cast<std::int16_t>(__builtin_bswap16(read_u16(in)));
        break;
      case gx_kind::i32: gx_member<std::int32_t>(record, field) = read_i32(in); break;
      case gx_kind::u8:
      case gx_kind::flag: gx_member<std::uint8_t>(record, field) = read_u8(in); break;
      case gx_kind::real: gx_member<float>(record, field) = std::bit_cast<float>(read_u32(in)); break;
      case gx_kind::point: read_point(in, gx_member<gx_pointreal_t>(record, field)); break;
      case gx_kind::bounds: {
        auto& box = gx_member<gx_boundsreal_t>(record, field);
        for (auto* side : {&box.xmin, &box.ymin, &box.xmax, &box.ymax}) *side = read_i32(in);
        break;
      }
      case gx_kind::string:
        read_text(in, gx_member<gx_string_record_t>(record, field), gx_kind_capacity(field.kind));
        break;
      case gx_kind::name:
        read_text(in, gx_member<gx_name_record_t>(record, field), gx_kind_capacity(field.kind));
        break;
      case gx_kind::value:
        read_text(in, gx_member<gx_value_record_t>(record, field), gx_kind_capacity(field.kind));
        break;
      case gx_kind::points5:
        read_points(in, gx_member<std::array<gx_pointreal_t, 5>>(record, field));
        break;
      case gx_kind::points16:
        read_points(in, gx_member<std::array<gx_pointreal_t, 16>>(record, field));
        break;
      case gx_kind::zeros4: read_u32(in); break;
    }
  }
}

gx_load_t refused(gx_code code, gx_load_fault fault, std::string message) {
  gx_load_t load;
  load.code = code;
  load.fault = fault;
  load.message = std::move(message);
  return load;
}

std::string object_fault(std::string_view name, int id, std::string_view what) {
  return std::string(name) + ": object " + std::to_string(id) + ": " + std::string(what);
}

gx_load_t refused_data(std::string message) {
  return refused(gx_code::file_data_invalid, gx_load_fault::other, std::move(message));
}

gx_load_t refused_kind(std::string_view name, int id, std::int16_t type, std::string_view what) {
  auto load = refused(gx_code::object_structure_invalid, gx_load_fault::record_kind,
                      object_fault(name, id, what));
  load.object_id = id;
  load.value = type;
  return load;
}

// Reads object `id`; an outcome other than all_is_ok says why the file ends there.
gx_load_t read_object(reader_t& in, gx_file_gene_recf_t& file, int id, std::string_view name) {
  gx_object_gene_rec_t general;
  read_fields(in, &general, gx_general_fields());
  const auto type = static_cast<std::int16_t>(general.object_type);
  if (!gx_type_ok(type)) {
    return refused_kind(name, id, type,
                        in.is_short ? "the file ends early"
                                    : "record type " + std::to_string(type) + " does not exist");
  }
  auto& object = gx_new_object(file, general.object_type);
  object = general;
  read_fields(in, &object, gx_tail_fields(general.object_type));
  if (in.bad_text >= 0) {
    return refused_data(object_fault(
        name, id, "a text of " + std::to_string(in.bad_text) + " characters is too long"));
  }
  if (in.is_short) return refused_kind(name, id, -1, "the file ends early");
  if (in.bad_character) {
    return refused_data(object_fault(name, id, "a text holds unprintable characters"));
  }
  file.ptr_to_ar_objindex.push_back(&object);
  return {};
}

std::string revision_text(float revision) {
  char text[64];
  std::snprintf(text, sizeof text, "%f", static_cast<double>(revision));
  return text;
}

// Reads a whole stream by its descriptor; false for what is no regular file or cannot be read.
bool read_all(int descriptor, std::string& bytes) {
  struct stat info {};
  if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) return false;
  bytes.resize(std::min(static_cast<std::size_t>(info.st_size), max_file_size));
  std::size_t got = 0;
  while (got < bytes.size()) {
    const ssize_t n = pread(descriptor, bytes.data() + got, bytes.size() - got,
                            static_cast<off_t>(got));
    if (n < 0) return false;
    if (n == 0) break;
    got += static_cast<std::size_t>(n);
  }
  bytes.resize(got);
  return true;
}

gx_load_t load_descriptor(int descriptor, std::string_view name) {
  std::string bytes;
  if (descriptor < 0 || !read_all(descriptor, bytes)) {
    return refused(gx_code::file_open_invalid, gx_load_fault::unreadable,
                   std::string(name) + ": cannot be read");
  }
  return gx_decode_file(bytes, name);
}

// --- writing

void write_bytes(std::string& out, std::uint32_t v, int size) {
  for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
    out.push_back(static_cast<char>(v >> shift & 0xff));
  }
}
void write_i16(std::string& out, std::int16_t v) { write_bytes(out, static_cast<std::uint16_t>(v), 2); }
void write_i32(std::string& out, std::int32_t v) { write_bytes(out, static_cast<std::uint32_t>(v), 4); }

void write_point(std::string& out, const gx_pointreal_t& point) {
  write_i32(out, point.x);
  write_i32(out, point.y);
}

void write_fields(std::string& out, const void* record, gx_fields_t fields) {
  for (const auto& field : fields) {
    switch (field.kind) {
      case gx_kind::i16:
      case gx_kind::id: write_i16(out, gx_member<std::int16_t>(record, field)); break;
      case gx_kind::i16_le: {
        const auto v = static_cast<std::uint16_t>(gx_member<std::int16_t>(record, field));
        write_bytes(out, __builtin_bswap16(v), 2);
        break;
      }
      case gx_kind::i32: write_i32(out, gx_member<std::int32_t>(record, field)); break;
      case gx_kind::u8:
      case gx_kind::flag: write_bytes(out, gx_member<std::uint8_t>(record, field), 1); break;
      case gx_kind::real:
        write_bytes(out, std::bit_cast<std::uint32_t>(gx_member<float>(record, field)), 4);
        break;
      case gx_kind::point: write_point(out, gx_member<gx_pointreal_t>(record, field)); break;
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
      case gx_kind::zeros4: write_i32(out, 0); break;
    }
  }
}

}  // namespace

gx_load_t gx_decode_file(std::string_view bytes, std::string_view name) {
  const auto* first = reinterpret_cast<const unsigned char*>(bytes.data());
  reader_t in{first, first + bytes.size()};

  auto storage = std::make_shared<gx_file_gene_recf_t>();
  auto& file = *storage;
  read_fields(in, &file, gx_header_fields());
  if (!(file.software_revision == 2.0F)) {
    auto load = refused(gx_code::file_open_invalid, gx_load_fault::revision,
                        std::string(name) + ": software revision " +
                            revision_text(file.software_revision) + " instead of 2.0");
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
    auto& object = *file.ptr_to_ar_objindex[static_cast<std::size_t>(id - 1)];
    if ((object.status & gx_flag_deleted) != 0) {
      auto load = refused(gx_code::file_close_invalid, gx_load_fault::deleted,
                          object_fault(name, id, "stored although deleted"));
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
  const std::string path = data_path.starts_with("$VELMORAN")
                               ? std::string(gx_view(gx_resolve_path(data_path)))
                               : std::string(data_path);
  // Without O_NONBLOCK a FIFO of that name would hold the program.
  const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  auto load = load_descriptor(descriptor, data_path);
  if (descriptor >= 0) close(descriptor);
  return load;
}

gx_load_t gx_load_stream(std::FILE* stream, std::string_view name) {
  return load_descriptor(stream == nullptr ? -1 : fileno(stream), name);
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
