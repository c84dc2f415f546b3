// A file's text reads back as the same file, whatever a sound file holds.
#include <algorithm>
#include <cstring>
#include <random>

#include "gx/db/file/record_codec.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/file/reference_check.h"
#include "gx/text/strings.h"
#include "gxmake/object_file.h"
#include "tests/support/make_design.h"

namespace {

std::string read_back(const std::string& text, const gxm_file_t& original) {
  gxm_input_t input;
  gxm_parse_text(text, "text", input);
  no_messages(input.messages);
  gxm_messages_t messages;
  const auto& file = *original.file;
  const auto files = gxm_build(
      input.design, {{file.day, file.month, file.year, file.hour, file.minute}, ""}, messages);
  no_messages(messages);
  if (files.size() != 1) return "not one file";
  EXPECT_EQ(files[0].directory + "/" + files[0].data_name(),
            original.directory + "/" + original.data_name());
  return gx_encode_file(*files[0].file);
}

void expect_comes_back(const gxm_file_t& file) {
  const auto text = gxm_source_text(*file.file, file.directory + "/" + file.data_name());
  EXPECT_TRUE(read_back(text, file) == gx_encode_file(*file.file)) << text;
}

std::vector<gxm_file_t> files_of(std::string_view example) {
  gxm_input_t input;
  gxm_parse_file(std::filesystem::path(KIVO_SOURCE_DIR) / "examples" / example /
                     (std::string(example) + ".gxt"),
                 input);
  gxm_messages_t messages;
  auto files = gxm_build(input.design, {}, messages);
  no_messages(messages);
  return files;
}

template <typename Text>
void put_text(void* record, const gx_field_t& field, std::string_view text) {
  auto& member = gx_member<Text>(record, field);
  member = {};
  std::memcpy(member.char_, text.data(), text.size());
  member.len = static_cast<std::int32_t>(text.size());
}

// Values of no rule in all fields that are no links.
void disturb(void* record, gx_fields_t fields, std::mt19937& random) {
  using enum gx_kind;
  for (const auto& field : fields) {
    const auto any = static_cast<std::int32_t>(random());
    const auto small = static_cast<std::int32_t>(random() % (unsigned(field.limit) + 1));
    const std::string text = std::string(random() % 3, '"') + "'a =b #c@" + std::string(40, 'z');
    if (field.name == "object_type" || field.name == "status" || random() % 2 == 0) continue;
    if (field.kind == i16 || field.kind == i16_le)
      gx_put_number(record, field, static_cast<std::int16_t>(field.limit > 0 ? small : any));
    if (field.kind == i32) gx_put_number(record, field, any);
    if (field.kind == u8 || field.kind == flag)
      gx_put_number(record, field, static_cast<std::uint8_t>(field.limit > 0 ? small : any & 255));
    if (field.kind == point) gx_member<gx_pointreal_t>(record, field) = {any, -small};
    if (field.kind == bounds) gx_member<gx_boundsreal_t>(record, field) = {any, 0, -5, any};
    if (field.kind == string) put_text<gx_string_record_t>(record, field, text);
    if (field.kind == name) put_text<gx_name_record_t>(record, field, text);
    if (field.kind == value) put_text<gx_value_record_t>(record, field, text);
    if (field.kind == points5 || field.kind == points16)
      gx_member<gx_pointreal_t>(record, field) = {0, any};
  }
}

// The same objects with their ids in the opposite order, so that children stand before fathers.
void reverse_ids(gx_file_gene_recf_t& file) {
  auto& objects = file.ptr_to_ar_objindex;
  const auto map = [&](void* record, gx_fields_t fields) {
    for (const auto& field : fields) {
      if (field.kind != gx_kind::id) continue;
      const int id = gx_number<gx_object_id_t>(record, field);
      const int other = id == 0 ? 0 : file.object_id_max + 1 - id;
      gx_put_number(record, field, static_cast<gx_object_id_t>(other));
    }
  };
  map(&file, gx_header_fields());
  for (auto* object : objects) {
    map(object, gx_general_fields());
    map(object, gx_tail_fields(object->object_type));
  }
  std::reverse(objects.begin(), objects.end());
}

TEST(SourceText, TheExamplesComeBackToTheByte) {
  for (const auto* example : {"register", "filter"})
    for (const auto& file : files_of(example)) expect_comes_back(file);
}

TEST(SourceText, WhateverASoundFileHoldsComesBack) {
  std::mt19937 random(7);
  for (const bool reversed : {false, true})
    for (auto& file : files_of("filter")) {
      disturb(file.file.get(), gx_header_fields().subspan(10), random);
      for (auto* object : file.file->ptr_to_ar_objindex) {
        disturb(object, gx_general_fields().subspan(1), random);
        disturb(object, gx_tail_fields(object->object_type), random);
      }
      file.file->fin = gx_file_fin;
      file.version = 3;
      if (reversed) reverse_ids(*file.file);
      ASSERT_EQ(gx_reference_fault(*file.file), "");
      expect_comes_back(file);
    }
}

TEST(SourceText, AChangeOfOneObjectIsAChangeOfItsLines) {
  const char devices[] = "symbol two\n pin 1 0,0 IXO\n pin 2 0,4 IXO\nsheet t\n part R1 two 5,5\n";
  const char nets[] = " net A\n wire R1.1 9,9\n net B\n wire R1.2 20,20\n";
  const auto text = [&](const std::string& between) {
    return gxm_source_text(*build_design(devices + between + nets).back().file, "t/sheet.gx_1");
  };
  const auto before = text(""), after = text(" part R0 two 30,30\n");
  std::multiset<std::string> lines;
  const auto count = [&](const std::string& of, auto each) {
    for (std::size_t at = 0, end; (end = of.find('\n', at)) != std::string::npos; at = end + 1)
      each(of.substr(at, end - at));
  };
  count(after, [&](const std::string& line) { lines.insert(line); });
  count(before, [&](const std::string& line) {
    const auto same = lines.find(line);
    ASSERT_NE(same, lines.end()) << line;
    lines.erase(same);
  });
  EXPECT_EQ(lines.size(), 6U) << "instance, its two families, INST, two pins";
}

TEST(SourceText, MistakesAreToldWithTheirLine) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"file t", "text:1: a file DIRECTORY/BASE.gx_VERSION expected, not \"t\""},
      {"file ../t/sheet.gx_1", "text:1: a file DIRECTORY/BASE.gx_VERSION expected"},
      {"file /t/sheet.gx_1", "text:1: a file DIRECTORY/BASE.gx_VERSION expected"},
      {"file t/sheet.gx_1 hour=3", "text:1: there is no field \"hour\""},
      {"file t/sheet.gx_1\n blob", "text:2: there is no type of objects \"blob\""},
      {"file t/sheet.gx_1\n main 1,2 3", "text:2: FIELD=VALUE expected, not \"3\""},
      {"file t/sheet.gx_1\n main rad=3", "text:2: there is no field \"rad\""},
      {"file t/sheet.gx_1\n main @a\n page @a", "text:3: a second object is called \"@a\""},
      {"file t/sheet.gx_1\n in @a", "text:2: the label of an object before expected (in @LABEL)"},
      {"file t/sheet.gx_1\n main id_tmp=99999", "text:2: \"99999\" is no value of id_tmp"},
      {"file t/sheet.gx_1\n main\n  net bus_end=1,2", "text:3: \"1,2\" is no value of bus_end"},
      {"file t/sheet.gx_1\n instance symbol=@m", "text:2: \"@m\" is no value of symbol"},
      {"file t/sheet.gx_1\n main @m\n  instance symbol=@m",
       "text:3: the objects do not fit each other: object 2: symbol 1 has the wrong type"},
      {"file t/sheet.gx_1\n main @m father=@m",
       "text:2: the objects do not fit each other: object 1: its fathers loop or lie too deep"},
      {"file t/sheet.gx_1\n main\nline 0,0 1,1", "text:3: \"line\" cannot stand here"},
  };
  for (const auto& c : cases) {
    gxm_input_t input;
    gxm_parse_text(c.text, "text", input);
    auto messages = input.messages;
    if (messages.empty()) gxm_build(input.design, {}, messages);
    ASSERT_EQ(messages.size(), 1U) << c.text;
    EXPECT_EQ(messages[0].substr(0, std::strlen(c.message)), c.message);
  }
}

}  // namespace
