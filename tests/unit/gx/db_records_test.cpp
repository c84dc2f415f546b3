// The bytes of every record of a GX file, and what is refused on reading.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <sstream>

#include "gx/db/file/record_codec.h"
#include "gx/text/messages/status.h"
#include "tests/support/db_builder.h"
#include "tests/support/put_field.h"
#include "tests/support/session_case.h"

namespace {

std::string from_hex(std::string_view hex) {
  std::string bytes, digits;
  for (const char c : hex) {
    if (c == ' ') continue;
    digits += c;
    if (digits.size() < 2) continue;
    bytes += static_cast<char>(std::stoi(digits, nullptr, 16));
    digits.clear();
  }
  return bytes;
}

std::string to_hex(std::string_view bytes) {
  std::string hex;
  for (const char c : bytes) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned char>(c));
    hex += text;
  }
  return hex;
}

// What a file holds behind the general record of its first object, up to the second, a vertex.
std::string tail_bytes(const gx_builder& built) {
  const auto bytes = built.bytes();
  return bytes.substr(38 + 40, bytes.size() - 38 - 40 - 46 - 2);
}

gx_load_t decode(std::string_view bytes) { return gx_decode_file(bytes, "d/sheet.gx_3"); }

std::string patched(std::string bytes, std::size_t at, std::string_view hex) {
  const auto by = from_hex(hex);
  return bytes.replace(at, by.size(), by);
}

TEST(db_records, header_bytes) {
  gx_builder built;
  auto& f = built.file;
  f.day = 31;
  f.month = 12;
  f.year = 1996;
  f.hour = 23;
  f.minute = 59;
  f.check_data_done = 1;
  f.num_errors = 2;
  f.dot_width = 0x01020304;
  f.displayed = 5;
  f.reserved = 6;
  EXPECT_EQ(to_hex(built.bytes()),
            "40000000"
            "001F"
            "000C"
            "07CC"
            "0017"
            "003B"
            "0000"
            "0000"
            "0000"
            "0000"
            "0001"
            "0002"
            "01020304"
            "05"
            "00000000"
            "06"
            "FFEC"
            "0000");
}

TEST(db_records, general_record_bytes) {
  gx_builder built;
  built.add(gx_type::main);
  auto& child = gx_object_id_ptr(built.file, built.add(gx_type::body, 1));
  child.id_tmp = -2;
  child.origin = {1, -1};
  child.bounds = {-2, 3, 4, 0x05060708};
  EXPECT_EQ(to_hex(built.bytes().substr(38 + 42, 42)),
            "0002"
            "0001"
            "0000"
            "0000"
            "0000"
            "FFFE"
            "000F"
            "0000"
            "00000001"
            "FFFFFFFF"
            "FFFFFFFE"
            "00000003"
            "00000004"
            "05060708"
            "FFF6");
}

struct tail_case {
  gx_type type;
  std::function<void(gx_object_gene_rec_t&)> fill;
  std::string_view hex;
};

template <typename Rec>
tail_case tail_of(void (*fill)(Rec&), std::string_view hex) {
  return {Rec::type, [fill](gx_object_gene_rec_t& o) { fill(reinterpret_cast<Rec&>(o)); }, hex};
}

// clang-format off
const tail_case tails[] = {
    {gx_type::main, [](gx_object_gene_rec_t&) {}, "FFF6"},
    {gx_type::property_family, [](gx_object_gene_rec_t&) {}, "FFF6"},
    tail_of<gx_object_instance_rec_t>(
        [](auto& r) { r.rotate = 3; r.fliph = 1; r.n0_version = 258; },
        "03 01 0000 0102 0000 0000 FFF6"),
    tail_of<gx_object_symbol_rec_t>([](auto& r) { r.path = gx_string("a/S.gx_1"); },
                                    "0000 00000008 612F532E67785F31 FFF6"),
    tail_of<gx_object_pinpropfam_rec_t>(
        [](auto& r) { r.dotted = 1; r.reserved = 2; r.pin_start = 1;
                       r.pin_end = 2; r.pin_net_start = 3; },
        "01 02 0000 0100 0002 0003 FFF6"),
    tail_of<gx_object_net_rec_t>(
        [](auto& r) { r.net_index = -2; r.is_bus = 1; r.bus_start = 1; r.bus_end = 16; },
        "FFFFFFFE 01 00 0001 0010"),
    tail_of<gx_object_segment_rec_t>(
        [](auto& r) { r.reserved = 1; r.line_color = 2; r.line_width = 3; r.line_style = 4;
                       r.vertex1 = r.vertex2 = 2; },
        "0001 02 03 0002 0002 0004 FFF6"),
    tail_of<gx_object_tag_rec_t>(
        [](auto& r) { r.name = gx_name("AB"); r.nvalue = gx_value("C"); r.reserved = 1; },
        "00000002 4142 00000001 43 0001 FFF6"),
    tail_of<gx_object_vertex_rec_t>([](auto& r) { r.dotted = 1; }, "01 00 0000 FFF6"),
    tail_of<gx_object_arc_rec_t>(
        [](auto& r) {
          r.pt2 = {1, 2}; r.pt3 = {3, 4}; r.center = {5, 6}; r.rad = 7; r.angle1 = 8; r.angle2 = 9;
          r.border_color = 10; r.border_style = 1; r.c_reserved = 11; r.i_reserved = 12;
        },
        "00000001 00000002 00000003 00000004 00000005 00000006 00000007 00000008 00000009"
        "0A 0100 0B 000C FFF6"),
    tail_of<gx_object_circle_rec_t>(
        [](auto& r) { r.reserved = 1; r.border_color = 2; r.filled = 1; r.fill_color = 4;
                       r.rad = 5; r.border_style = 4; },
        "01 02 01 04 00000005 0004 FFF6"),
    tail_of<gx_object_grid_rec_t>(
        [](auto& r) { r.opposite_pt = {1, 2}; r.step_point = 3; r.step_pin = 4; r.snap_on = 1; },
        "00000001 00000002 00000003 00000004 00 01 FFF6"),
    tail_of<gx_object_line_rec_t>(
        [](auto& r) { r.line_color = 1; r.line_width = 2; r.pt2 = {3, -4}; r.line_style = 3; },
        "0000 01 02 00000003 FFFFFFFC 0003 FFF6"),
    tail_of<gx_object_polyline5_rec_t>(
        [](auto& r) { r.line_style = 1; r.n_points = 2; r.points[4] = {3, 4};
                       r.line_color = 5; r.reserved = 6; },
        "0001 0002"
        "0000000000000000 0000000000000000 0000000000000000 0000000000000000 0000000300000004"
        "05 06 FFF6"),
    tail_of<gx_object_rectangle_rec_t>(
        [](auto& r) { r.line_color = 1; r.filled = 1; r.fill_color = 2;
                       r.pt2 = {3, 4}; r.line_style = 4; },
        "00 01 01 02 00000003 00000004 0004 FFF6"),
    tail_of<gx_object_property_rec_t>(
        [](auto& r) { r.fixed = 1; r.line_color = 2; r.rotate = 3;
                       r.name = gx_name("CLASS"); r.height = 4; },
        "01 00 02 03 00000005 434C415353 00000000 00000004 0000 FFF6"),
};
// clang-format on

TEST(db_records, tails_byte_for_byte_and_back) {
  for (const auto& c : tails) {
    SCOPED_TRACE(gx_type_name(c.type));
    gx_builder built;
    const int id = built.add(c.type);
    built.add(gx_type::vertex_2d);
    c.fill(gx_object_id_ptr(built.file, id));
    EXPECT_EQ(to_hex(tail_bytes(built)), to_hex(from_hex(c.hex)));
    const auto load = decode(built.bytes());
    ASSERT_EQ(load.message, "");
    EXPECT_EQ(to_hex(gx_encode_file(*load.file)), to_hex(built.bytes()));
  }
}

TEST(db_records, flags_are_cleared_and_a_negative_text_length_is_an_empty_text) {
  gx_builder built;
  built.add_property(0, "", "V");
  const auto bytes = patched(patched(built.bytes(), 38 + 14, "00DF"), 38 + 44, "80000000");
  const auto load = decode(bytes);
  ASSERT_EQ(load.message, "");
  const auto& property = gx_property_info_ptr(*load.file, 1);
  EXPECT_EQ(property.gene.status, 0);
  EXPECT_EQ(gx_view(property.name), "");
  EXPECT_EQ(gx_view(property.nvalue), "V");
}

// What a file says that was damaged as the line tells.
class damage_session {
 public:
  explicit damage_session(std::string_view) {}
  static lines_t answer(const std::string& line) {
    std::istringstream words(line);
    std::string verb, what, field, value;
    words >> verb >> what >> field;
    if (verb == "patch") {
      gx_builder built;
      built.add_property(0, "CLASS", "");
      return told(decode(patched(built.bytes(), std::stoul(what), field)));
    }
    auto sheet = small_sheet();
    if (verb == "add") {
      what = std::to_string(sheet.add(type_named(what), object(sheet, field)));
      words >> field;
    }
    while (words >> value) {
      auto& record = gx_object_id_ptr(sheet.file, object(sheet, what));
      if (std::isalpha(value.front()) != 0) value = std::to_string(object(sheet, value));
      put_field(&record, gx_general_fields(), field, value);
      put_field(&record, gx_tail_fields(record.object_type), field, value);
      words >> what >> field;
    }
    return told(decode(sheet.bytes()));
  }

 private:
  static lines_t told(const gx_load_t& load) {
    EXPECT_EQ(load.file, nullptr);
    return {load.message, std::string(gx_error_name(static_cast<int>(load.code)))};
  }
  // "7", "instance", "instance:2"
  static int object(const gx_builder& sheet, const std::string& name) {
    if (std::isalpha(name.front()) == 0) return std::stoi(name);
    const auto colon = name.find(':');
    return nth_object(sheet.file, type_named(name.substr(0, colon)),
                      colon == name.npos ? 1 : std::stoi(name.substr(colon + 1)));
  }
};

TEST(db_records, damaged_files_are_refused) {
  expect_sessions<damage_session>("design/refused.txt");
}

// Every id field of every record, by its place in the field table of the sheet's objects.
TEST(db_records, ids_outside_the_file_are_refused_in_every_field) {
  auto sheet = small_sheet();
  const gx_object_id_t beyond = static_cast<gx_object_id_t>(sheet.file.object_id_max + 1);
  int fields = 0;
  for (auto* object : sheet.file.ptr_to_ar_objindex) {
    for (const auto& table : {gx_general_fields(), gx_tail_fields(object->object_type)}) {
      for (const auto& field : table) {
        if (field.kind != gx_kind::id) continue;
        auto& id = gx_member<gx_object_id_t>(object, field);
        const auto kept = id;
        for (const gx_object_id_t bad : {beyond, gx_object_id_t{-1}}) {
          id = bad;
          EXPECT_EQ(decode(sheet.bytes()).code, gx_code::file_data_invalid)
              << object->object_id << " " << field.name;
        }
        id = kept;
        ++fields;
      }
    }
  }
  EXPECT_EQ(fields, 5 * sheet.file.object_id_max + 2 * 3 + 1 + 2 + 2 + 2 * 2);
  EXPECT_EQ(decode(sheet.bytes()).message, "");
}

TEST(db_records, references_to_the_wrong_type_are_refused) {
  auto sheet = small_sheet();
  for (auto* object : sheet.file.ptr_to_ar_objindex) {
    for (const auto& field : gx_tail_fields(object->object_type)) {
      if (field.kind != gx_kind::id) continue;
      auto& id = gx_member<gx_object_id_t>(object, field);
      const auto kept = id;
      id = 1;  // the main object is never referred to
      EXPECT_NE(decode(sheet.bytes()).message.find("has the wrong type"), std::string::npos);
      id = kept;
    }
  }
}

TEST(db_records, a_tree_that_is_too_deep_is_refused) {
  auto sheet = small_sheet();
  for (int depth = 0, at = 1; depth < 32; ++depth) at = sheet.add(gx_type::graphics, at);
  EXPECT_NE(decode(sheet.bytes()).message.find("its fathers loop or lie too deep"),
            std::string::npos);
}

// Walks everything that later rooms walk; the count bounds a walk that would not end.
int walk(const gx_file_gene_recf_t& file, int id, int& budget) {
  int met = 1;
  for (int child = gx_object_id_ptr(file, id).child1; child != 0 && --budget > 0;
       child = gx_object_id_ptr(file, child).following) {
    met += walk(file, child, budget);
  }
  return met;
}

TEST(db_records, short_and_flipped_files_are_refused_or_sound) {
  const auto sheet = small_sheet();
  const auto whole = sheet.bytes();
  for (std::size_t size = 0; size < whole.size() - 2; ++size) {
    const auto load = decode(std::string_view(whole).substr(0, size));
    EXPECT_NE(load.code, gx_code::all_is_ok) << size;
    EXPECT_EQ(load.message.find("d/sheet.gx_3: "), 0U);
  }
  int refused = 0;
  for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
    auto bytes = whole;
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
    const auto load = decode(bytes);
    if (load.code != gx_code::all_is_ok) {
      ++refused;
      continue;
    }
    const int count = load.file->object_id_max;
    int budget = count + 1;
    EXPECT_LE(walk(*load.file, 1, budget), count) << "bit " << bit;
    EXPECT_EQ(decode(gx_encode_file(*load.file)).message, "") << "bit " << bit;
  }
  EXPECT_GT(refused, 1000);
}

}  // namespace
