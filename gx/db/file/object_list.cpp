// The listing of all objects of a file, written beside it for people who look for a fault in a
// design: links and place of every object, then the fields of its type.
#include "gx/db/file/object_list.h"

#include <cerrno>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "gx/db/file/file_state.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/object_access.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "platform/files.h"

namespace {

const char* truth(bool on) { return on ? "TRUE" : "FALSE"; }

int length_of(std::string_view text) { return static_cast<int>(text.size()); }

void list_text(std::FILE* out, const char* label, std::string_view text) {
  std::fprintf(out, " %s : \"%.*s\"\n", label, length_of(text), text.data());
}

void list_field(std::FILE* out, const void* record, const gx_field_t& field) {
  if (field.kind == gx_kind::name) return list_text(out, "name ", gx_field_text(record, field));
  if (field.kind == gx_kind::value) return list_text(out, "value", gx_field_text(record, field));
  if (field.kind == gx_kind::string) {
    const auto text = gx_field_text(record, field);
    std::fprintf(out, " %s  = \"%.*s\"\n", field.name.data(), length_of(text), text.data());
    return;
  }

  std::fprintf(out, " %-16s= ", field.name.data());
  switch (field.kind) {
    case gx_kind::flag:
      std::fputs(truth(gx_field_number(record, field) != 0), out);
      break;
    case gx_kind::point: {
      const auto& point = gx_member<gx_pointreal_t>(record, field);
      std::fprintf(out, "%d  %d", point.x, point.y);
      break;
    }
    case gx_kind::points5:
    case gx_kind::points16:
      for (const auto& point : gx_field_points(record, field)) {
        std::fprintf(out, "%d  %d  ", point.x, point.y);
      }
      break;
    default:
      std::fprintf(out, "%d", gx_field_number(record, field));
      break;
  }
  std::fputc('\n', out);
}

void list_object(std::FILE* out, gx_file_index_t file_index, const gx_object_gene_rec_t& object) {
  std::fputs("\n*********************\n\n", out);
  for (const int v : {int{file_index}, int{object.object_id}, int{object.father},
                      int{object.previous}, int{object.following}, int{object.child1}}) {
    std::fprintf(out, "%11d", v);
  }
  std::fprintf(out, "   : object_type : %15s", gx_type_name(object.object_type).data());
  if (gx_is_deleted(object)) std::fputs("   : !!! deleted  ", out);
  const auto& box = object.bounds;
  std::fprintf(out, "\n    bounds    = %d  %d  %d  %d  \n", box.xmin, box.ymin, box.xmax, box.ymax);
  std::fprintf(out, " origin.x : %d\n origin.y : %d\n", object.origin.x, object.origin.y);
  if (object.object_type == gx_type::nil) return;
  for (const auto& field : gx_tail_fields(object.object_type)) list_field(out, &object, field);
}

}  // namespace

std::string gx_object_list(gx_file_index_t file_index) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  gx_string_record_t path = gx_at(gx_files.filear, file_index).dirname;
  gx_concat_const("/list_obj_file", path);
  const auto refused = [&path] {
    return std::string("\"").append(gx_view(path)).append("\" : ").append(x_why_unwritten(errno));
  };
  x_file file_owner = x_create_file(std::string(gx_view(path)), false);
  std::FILE* const out = file_owner.get();
  if (out == nullptr) {
    std::printf("?? gx_object_list : impossible to open:'%s' (for W)\n", path.char_);
    return refused();
  }

  std::fputs("!!!! @@@@@@@@@@@@@@@@@@@@@@@@@@@@@\n", out);
  std::fputs("     ###########  list obj    #### \n", out);
  std::fputs(" list the structure of file and objects \n", out);
  std::fputs("        file     obj_id     father   previous  following     child1\n", out);
  for (const auto* object : file.ptr_to_ar_objindex) {
    const auto code = static_cast<int>(object->object_type);
    if (code < 0 || code > gx_max_type) gx_set_status(gx_code::object_type_invalid);
    list_object(out, file_index, *object);
  }
  if (std::fflush(out) != 0) return refused();
  return x_close(std::move(file_owner)) ? std::string() : refused();
}
