// The lines of a file: its objects in the order of their ids, each under its father, with the
// fields that do not follow from the rest.
#include <algorithm>
#include <cstring>
#include <set>
#include <string_view>

#include "gx/text/at.h"
#include "gxmake/derived.h"
#include "gxmake/field_words.h"
#include "gxmake/object_file.h"
#include "gxmake/object_labels.h"

namespace {

bool same(const void* a, const void* b, const gx_field_t& field) {
  const auto number = [](int id) { return std::to_string(id); };
  return gxm_field_word(a, field, number) == gxm_field_word(b, field, number);
}

// The fields of an object of a type, the general ones first.
std::vector<const gx_field_t*> fields_of(gx_type type) {
  std::vector<const gx_field_t*> fields;
  for (const auto table : {gx_general_fields(), gx_tail_fields(type)})
    for (const auto& field : table)
      if (gxm_is_said(field)) fields.push_back(&field);
  return fields;
}

// Which fields of a file have to be said: those that are not as in a fresh object, and of those
// that follow from others the ones that come out other than the file has them.
class said_t {
 public:
  explicit said_t(const gx_file_gene_recf_t& file) : file_(file) {
    gx_file_gene_recf_t blank;
    for (const auto& field : gx_header_fields())
      if (gxm_is_said(field) && !gxm_is_derived(gx_type::nil, field) && !same(&file, &blank, field))
        header_.insert(field.name);
    for (const auto* object : file.ptr_to_ar_objindex) {
      const auto type = object->object_type;
      const auto& fresh = gx_new_object(blank, type);
      auto& fields = objects_.emplace_back();
      for (const auto* field : fields_of(type))
        if (!gxm_is_derived(type, *field) && !same(object, &fresh, *field))
          fields.insert(field->name);
      copy_.ptr_to_ar_objindex.push_back(&gx_new_object(copy_, type));
      fathers_.push_back(object->father < object->object_id ? object->father : 0);
    }
    restore();
    gxm_derive(copy_, fathers_, [this] {
      note_changes();
      restore();
    });
  }

  bool header(const gx_field_t& field) const { return header_.contains(field.name); }
  bool object(int id, const gx_field_t& field) const {
    return gx_at(objects_, id - 1).contains(field.name);
  }
  // The object that it is under in the text: one before it.
  int father(int id) const { return gx_at(fathers_, id - 1); }

 private:
  void note_changes() {
    for (const auto& field : gx_header_fields())
      if (gxm_is_derived(gx_type::nil, field) && !same(&file_, &copy_, field))
        header_.insert(field.name);
    for (std::size_t i = 0; i < objects_.size(); ++i) {
      const auto* object = file_.ptr_to_ar_objindex[i];
      for (const auto* field : fields_of(object->object_type))
        if (gxm_is_derived(object->object_type, *field) &&
            !same(object, copy_.ptr_to_ar_objindex[i], *field))
          objects_[i].insert(field->name);
    }
  }

  void restore() {
    copy_.primary_object = file_.primary_object;
    copy_.page_obj_id = file_.page_obj_id;
    copy_.grid_obj_id = file_.grid_obj_id;
    for (std::size_t i = 0; i < objects_.size(); ++i) {
      const auto* object = file_.ptr_to_ar_objindex[i];
      std::memcpy(static_cast<void*>(copy_.ptr_to_ar_objindex[i]), object,
                  gx_record_size(object->object_type));
    }
  }

  const gx_file_gene_recf_t& file_;
  gx_file_gene_recf_t copy_;
  std::vector<int> fathers_;
  std::set<std::string_view> header_;
  std::vector<std::set<std::string_view>> objects_;
};

class source_writer {
 public:
  explicit source_writer(const gx_file_gene_recf_t& file)
      : file_(file), said_(file), labels_(file) {
    for (const auto* object : file.ptr_to_ar_objindex) find_labels(*object);
    for (const auto& field : gx_header_fields())
      if (said_.header(field)) word(&file, field);
  }

  std::string text(std::string_view path) {
    std::string text = "file " + gxm_quoted(path);
    for (const auto& field : gx_header_fields())
      if (said_.header(field)) text += assignment(&file_, field);
    text += '\n';
    open_.clear();
    for (const auto* object : file_.ptr_to_ar_objindex) add_object(text, *object);
    return text;
  }

 private:
  // The label of what stands away from its father, and of what fields name.
  void find_labels(const gx_object_gene_rec_t& object) {
    if (reopens(object)) labels_.of(said_.father(object.object_id));
    open_.push_back(object.object_id);
    for (const auto* field : fields_of(object.object_type))
      if (said_.object(object.object_id, *field)) word(&object, *field);
  }

  // Leaves the father as the innermost open object, if it is open; true when it is not.
  bool reopens(const gx_object_gene_rec_t& object) {
    const int father = said_.father(object.object_id);
    const auto at = std::find(open_.begin(), open_.end(), father);
    const bool is_open = father == 0 || at != open_.end();
    open_.erase(father != 0 && is_open ? at + 1 : open_.begin(), open_.end());
    if (!is_open) open_.push_back(father);
    return !is_open;
  }

  std::string indent() const { return std::string(2 * (open_.size() + 1), ' '); }

  void add_object(std::string& text, const gx_object_gene_rec_t& object) {
    const int id = object.object_id;
    if (reopens(object)) text += "  in @" + labels_.of(said_.father(id)) + "\n";
    text += indent().append(gx_type_name(object.object_type));
    open_.push_back(id);
    if (labels_.has(id)) text += " @" + labels_.of(id);
    const auto* const origin = gxm_find_field(object.object_type, "origin");
    if (said_.object(id, *origin)) text += " " + word(&object, *origin);
    for (const auto* field : fields_of(object.object_type))
      if (field != origin && said_.object(id, *field)) text += assignment(&object, *field);
    text += '\n';
  }

  std::string word(const void* record, const gx_field_t& field) {
    return gxm_field_word(record, field, [this](int id) { return labels_.of(id); });
  }
  std::string assignment(const void* record, const gx_field_t& field) {
    return " " + std::string(field.name) + "=" + word(record, field);
  }

  const gx_file_gene_recf_t& file_;
  said_t said_;
  gxm_labels labels_;
  std::vector<int> open_;  // outermost first
};

}  // namespace

std::string gxm_source_text(const gx_file_gene_recf_t& file, std::string_view path) {
  return source_writer(file).text(path);
}
