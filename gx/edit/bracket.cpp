#include "gx/edit/bracket.h"

#include <algorithm>
#include <array>

#include "gx/db/file/file_state.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/object_access.h"
#include "gx/db/undo.h"
#include "gx/edit/edit_state.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"

namespace {

constexpr std::int16_t max_level = 32;
constexpr std::int16_t under_construction = gx_flag_create | gx_flag_open;

template <typename Value>
Value& at_level(std::array<Value, max_level + 1>& values, std::int16_t level) {
  return gx_at(values, level);
}

// The father of an object about to be created at `level`; nullptr at the top.
gx_object_gene_rec_t* father_at(const gx_file_gene_recf_t& file, std::int16_t level) {
  if (level < 2) return nullptr;
  const int id = at_level(gx_edit.current_family, static_cast<std::int16_t>(level - 1));
  if (!gx_object_id_ok(file, id)) {
    gx_debug_line(" ## error in gx_create_obj ( invalid father id )");
    gx_set_status(gx_code::object_id_invalid);
  }
  auto& father = gx_object_id_ptr(file, id);
  if ((father.status & under_construction) == 0) {
    gx_debug_line(" ## error in gx_create_obj (father pb )");
    gx_set_status(gx_code::object_create_invalid);
  }
  return &father;
}

gx_object_id_t& newest_child(int father) {
  auto& newest = gx_edit.newest_child;
  const auto at = static_cast<std::size_t>(father);
  if (newest.size() <= at) newest.resize(at + 1);
  return newest[at];
}

// The last child of a father: as a rule the one created last, else the last of the chain.
gx_object_gene_rec_t* last_child(const gx_file_gene_recf_t& file,
                                 const gx_object_gene_rec_t& father) {
  if (const int newest = newest_child(father.object_id); gx_object_id_ok(file, newest)) {
    auto& object = gx_object_id_ptr(file, newest);
    if (object.father == father.object_id && object.following == 0) return &object;
  }
  int id = father.child1;
  while (id > 0 && gx_object_id_ptr(file, id).following > 0) {
    id = gx_object_id_ptr(file, id).following;
  }
  return id > 0 ? &gx_object_id_ptr(file, id) : nullptr;
}

void link(const gx_file_gene_recf_t& file, gx_object_gene_rec_t& object,
          gx_object_gene_rec_t* father) {
  gx_object_gene_rec_t* before = nullptr;
  if (father != nullptr) {
    object.father = father->object_id;
    before = last_child(file, *father);
    if (before == nullptr) father->child1 = object.object_id;
    newest_child(father->object_id) = object.object_id;
  } else {
    if (gx_object_id_ok(file, gx_edit.previous_obj_atlevel0)) {
      before = &gx_object_id_ptr(file, gx_edit.previous_obj_atlevel0);
    }
    gx_edit.previous_obj_atlevel0 = object.object_id;
  }
  if (before != nullptr) {
    before->following = object.object_id;
    object.previous = before->object_id;
  }
}

void name_in_header(gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object) {
  if (object.object_type == gx_type::main) file.primary_object = object.object_id;
  if (object.object_type == gx_type::page && file.page_obj_id == 0) {
    file.page_obj_id = object.object_id;
  }
  if (object.object_type == gx_type::grid_2d && file.grid_obj_id == 0) {
    file.grid_obj_id = object.object_id;
  }
}

}  // namespace

gx_object_id_t gx_object_create(gx_file_index_t file_index, gx_type type, std::int32_t x,
                                std::int32_t y) {
  auto& file = gx_ptrto_gene_file_buf(file_index);
  if (file_index != gx_files.cur_file) gx_set_status(gx_code::file_id_invalid);
  if (gx_edit.cur_obj_level >= max_level) gx_set_status(gx_code::invalid_level);
  const auto level = ++gx_edit.cur_obj_level;
  if (level == 1 && file.object_id_max == 0) gx_edit.previous_obj_atlevel0 = 0;
  auto* father = father_at(file, level);
  if (file.object_id_max >= gx_max_object_id) gx_set_status(gx_code::too_many_objects);
  if (!gx_type_ok(static_cast<std::int16_t>(type))) gx_set_status(gx_code::object_type_invalid);

  auto& object = gx_new_object(file, type);
  object.object_type = type;
  object.status = gx_flag_create;
  object.origin = {x, y};
  file.ptr_to_ar_objindex.push_back(&object);
  object.object_id = ++file.object_id_max;
  link(file, object, father);
  name_in_header(file, object);
  gx_edit.open_obj_id = object.object_id;
  at_level(gx_edit.current_family, level) = object.object_id;
  gx_files.pick_ap_new = true;
  gx_undo_put_object(file_index, object.object_id, gx_undo_op::created);
  return object.object_id;
}

gx_type gx_object_open(gx_file_index_t file_index, int id) {
  if (gx_edit.open_obj_id > 0) {
    gx_debug(" gx_open_object : object_id : %12d\n", gx_edit.open_obj_id);
    gx_set_status(gx_code::object_already_open);
  }
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  auto& object = gx_object_id_ptr(file, id);
  const auto type_name = gx_type_name(object.object_type);
  if (gx_is_deleted(object)) {
    gx_debug(" gx_open_object : object deleted : %d     object_type : %15s\n", id,
             type_name.data());
    gx_set_status(gx_code::object_open_invalid);
  }
  if ((object.status & under_construction) != 0) {
    const auto truth = [&object](gx_flag flag) {
      return (object.status & flag) != 0 ? "TRUE" : "FALSE";
    };
    gx_debug(" gx_open_object : create_done or open_done : %d     object_type : %15s\n", id,
             type_name.data());
    gx_debug(" gx_open_object : create_done  : %s\n", truth(gx_flag_create));
    gx_debug(" gx_open_object : open_done    : %s\n", truth(gx_flag_open));
    gx_set_status(gx_code::object_open_invalid);
  }
  std::int16_t level = 1;
  for (int father = object.father; father > 0; father = gx_object_id_ptr(file, father).father) {
    if (level == max_level) gx_set_status(gx_code::invalid_level);
    ++level;
  }
  object.status |= gx_flag_open;
  gx_edit.cur_obj_level = level;
  at_level(gx_edit.current_family, level) = object.object_id;
  gx_edit.open_obj_id = object.object_id;
  gx_files.cur_file = file_index;
  gx_files.pick_ap_new = true;
  return object.object_type;
}

void gx_object_close(gx_file_index_t file_index, int id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  gx_files.cur_file = file_index;
  auto& object = gx_object_id_ptr(file, id);
  const auto construction = object.status & under_construction;
  // Exactly one of the two flags may be set.
  if (construction == 0 || construction == under_construction) {
    gx_set_status(gx_code::object_close_invalid);
  }
  object.status = static_cast<std::int16_t>(object.status & ~under_construction);
  gx_edit.open_obj_id = 0;
  gx_edit.cur_obj_level =
      std::max<std::int16_t>(0, static_cast<std::int16_t>(gx_edit.cur_obj_level - 1));
  gx_files.pick_ap_new = true;
}

// --- for the constructors

gx_file_gene_recf_t& gx_construction_file() {
  if (!gx_session.init_done && gx_files.num_file_open == 0) {
    gx_set_status(gx_code::init_or_open_file_not_done);
  }
  return gx_ptrto_gene_file_buf(gx_files.cur_file);
}

gx_object_gene_rec_t& gx_object_to_fill(const gx_file_gene_recf_t& file, gx_type type,
                                        std::string_view name, gx_code misfit) {
  if (gx_object_id_ok(file, gx_edit.open_obj_id)) {
    auto& object = gx_object_id_ptr(file, gx_edit.open_obj_id);
    if (object.object_type == type && (object.status & under_construction) != under_construction) {
      gx_at(gx_files.filear, gx_files.cur_file).file_updated = true;
      return object;
    }
  }
  gx_trace(" gx_", name, " : object_create_invalid ");
  gx_set_status(misfit);
}
