#include "gxmake/object_file.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "gx/text/at.h"
#include "gxmake/derived.h"
#include "gxmake/field_words.h"
#include "gxmake/words.h"

namespace {

gx_type type_named(std::string_view name) {
  for (int code = 1; code <= gx_max_type; ++code)
    if (gx_type_name(static_cast<gx_type>(code)) == name) return static_cast<gx_type>(code);
  return gx_type::nil;
}

std::string in_quotes(std::string_view word) { return "\"" + std::string(word) + "\""; }

// The words FIELD=VALUE of a line.
std::string read_fields(std::span<const std::string> words, auto find,
                        std::vector<gxm_field_word_t>& fields) {
  for (const auto& word : words) {
    const auto assignment = gxm_assignment(word);
    if (!assignment) return "FIELD=VALUE expected, not " + in_quotes(word);
    if (!find(assignment->name)) return "there is no field " + in_quotes(assignment->name);
    fields.push_back({assignment->name, assignment->value});
  }
  return {};
}

// Puts the words into a record; false with a message at the first that is no value.
bool put_fields(void* record, const std::vector<gxm_field_word_t>& words, auto find,
                const gxm_object_file_t& described, const gxm_source_t& source,
                gxm_messages_t& messages) {
  const auto id_of = [&](std::string_view label) {
    const auto at = described.labels.find(label);
    return at == described.labels.end() ? 0 : at->second;
  };
  for (const auto& [name, value] : words) {
    if (gxm_put_word(record, *find(name), value, id_of)) continue;
    gxm_complain(messages, source, in_quotes(value) + " is no value of " + name);
    return false;
  }
  return true;
}

bool put_all(gx_file_gene_recf_t& file, const gxm_object_file_t& described,
             gxm_messages_t& messages) {
  const auto of_header = [](std::string_view name) {
    return gxm_find_field(gx_header_fields(), name);
  };
  bool all = put_fields(&file, described.fields, of_header, described, described.source, messages);
  for (std::size_t i = 0; i < described.objects.size(); ++i) {
    const auto& object = described.objects[i];
    const auto of_type = [&](std::string_view name) { return gxm_find_field(object.type, name); };
    all &= put_fields(file.ptr_to_ar_objindex[i], object.fields, of_type, described, object.source,
                      messages);
  }
  return all;
}

// The line that a fault of gx_reference_fault is about, which begins with "object ID".
const gxm_source_t& source_of(std::string_view fault, const gxm_object_file_t& described) {
  constexpr std::string_view word = "object ";
  std::size_t id = 0;
  if (fault.starts_with(word))
    std::from_chars(fault.data() + word.size(), fault.data() + fault.size(), id);
  return id >= 1 && id <= described.objects.size() ? described.objects[id - 1].source
                                                   : described.source;
}

}  // namespace

std::string gxm_read_file_line(std::span<const std::string> words, gxm_object_file_t& file) {
  if (words.empty()) return "the file is missing";
  const std::filesystem::path path = words[0];
  const auto plain = [](const auto& part) { return part != ".." && part != "." && part != ""; };
  const std::string name = path.filename().string();
  const auto suffix = name.rfind(".gx_");
  const auto version =
      suffix == std::string::npos ? std::nullopt : gxm_integer(name.substr(suffix + 4), 1, 32767);
  if (!version || suffix == 0 || path.is_absolute() || !path.has_parent_path() ||
      !std::all_of(path.begin(), path.end(), plain))
    return "a file DIRECTORY/BASE.gx_VERSION expected, not " + in_quotes(words[0]);
  file.name = path.parent_path().string();
  file.base = name.substr(0, suffix);
  file.version = static_cast<std::int16_t>(*version);
  return read_fields(
      words.subspan(1),
      [](std::string_view field) { return gxm_find_field(gx_header_fields(), field); },
      file.fields);
}

std::string gxm_read_object_line(std::span<const std::string> words, std::size_t indent,
                                 const gxm_source_t& source, gxm_object_file_t& file,
                                 gxm_open_objects_t& open) {
  while (!open.empty() && open.back().indent >= indent) open.pop_back();
  const int father = open.empty() ? 0 : open.back().object;
  const bool has_label = words.size() > 1 && words[1].starts_with('@');
  const std::string label = has_label ? words[1].substr(1) : "";

  if (words[0] == "in") {
    const auto at = file.labels.find(label);
    if (words.size() != 2 || at == file.labels.end())
      return "the label of an object before expected (in @LABEL)";
    open.push_back({indent, at->second});
    return {};
  }

  gxm_object_t object{.type = type_named(words[0]), .father = father, .source = source};
  if (object.type == gx_type::nil) return "there is no type of objects " + in_quotes(words[0]);
  if (file.objects.size() >= gx_max_object_id) return "more than 30000 objects";
  const int id = static_cast<int>(file.objects.size()) + 1;
  if (has_label && !file.labels.emplace(label, id).second)
    return "a second object is called " + in_quotes(words[1]);
  words = words.subspan(has_label ? 2 : 1);
  if (!words.empty() && gxm_place(words[0])) {
    object.fields.push_back({"origin", words[0]});
    words = words.subspan(1);
  }
  open.push_back({indent, id});
  const auto wrong = read_fields(
      words, [&](std::string_view field) { return gxm_find_field(object.type, field); },
      object.fields);
  file.objects.push_back(std::move(object));
  return wrong;
}

std::shared_ptr<gx_file_gene_recf_t> gxm_build_object_file(const gxm_object_file_t& described,
                                                           const gxm_options_t& options,
                                                           gxm_messages_t& messages) {
  auto file = std::make_shared<gx_file_gene_recf_t>();
  gx_set_file_date(*file, options.date);
  std::vector<int> fathers;
  for (const auto& object : described.objects) {
    auto& record = gx_new_object(*file, object.type);
    record.object_type = object.type;
    file->ptr_to_ar_objindex.push_back(&record);
    fathers.push_back(object.father);
  }
  if (!put_all(*file, described, messages)) return nullptr;
  const auto fault = gxm_derive(*file, fathers, [&] { put_all(*file, described, messages); });
  if (fault.empty()) return file;
  gxm_complain(messages, source_of(fault, described),
               "the objects do not fit each other: " + fault);
  return nullptr;
}
