// The surviving objects are copied to a target file, renumbered densely in their order, and
// written.
#include "gx/edit/file_save.h"

#include <unistd.h>

#include <cstring>
#include <utility>
#include <vector>

#include "gx/db/file/file_slots.h"
#include "gx/db/file/file_state.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/object_access.h"
#include "gx/text/at.h"
#include "gx/text/date.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/strings.h"
#include "platform/files.h"

namespace {

// New id by old id; 0 for a deleted object. Entry 0 stays 0, so that "none" maps to "none".
using source_to_target_t = std::vector<gx_object_id_t>;

gx_object_id_t mapped(const source_to_target_t& map, gx_object_id_t id) {
  const auto at = static_cast<std::size_t>(id);
  return id > 0 && at < map.size() ? map[at] : gx_object_id_t{0};
}

void map_ids(void* record, gx_fields_t fields, const source_to_target_t& map) {
  for (const auto& field : fields) {
    if (field.kind != gx_kind::id) continue;
    gx_put_number(record, field, mapped(map, gx_number<gx_object_id_t>(record, field)));
  }
}

// Copies an object, links as they are, under the next free id of the target; gives that id.
gx_object_id_t gx_object_copy_bye(const gx_object_gene_rec_t& source, gx_file_gene_recf_t& target) {
  auto& copy = gx_new_object(target, source.object_type);
  std::memcpy(static_cast<void*>(&copy), &source, gx_record_size(source.object_type));
  target.ptr_to_ar_objindex.push_back(&copy);
  return ++target.object_id_max;
}

// References that a sound file must keep.
void check_kept_references(const gx_object_gene_rec_t& source, const source_to_target_t& map) {
  if (source.object_type == gx_type::instance) {
    const auto& instance = reinterpret_cast<const gx_object_instance_rec_t&>(source);
    if (mapped(map, instance.symbol) == 0) {
      gx_debug(" instance with  symbol link invalid : symbol : %12d\n", instance.symbol);
      gx_set_status(gx_code::object_id_invalid);
    }
    if (mapped(map, source.father) == 0) {
      gx_debug("  father of instance invalid : sobj_id  : %d\n", source.object_id);
      gx_set_status(gx_code::object_id_invalid);
    }
  } else if (source.object_type == gx_type::vertex_2d) {
    const auto net = reinterpret_cast<const gx_object_vertex_rec_t&>(source).net;
    // A vertex that no editor has connected yet has no net.
    if (net != 0 && mapped(map, net) == 0) {
      gx_debug(" vertex with  net link invalid : net : %12d\n", net);
      gx_set_status(gx_code::object_id_invalid);
    }
  } else if (source.object_type == gx_type::segment) {
    const auto& segment = reinterpret_cast<const gx_object_segment_rec_t&>(source);
    for (const auto end : {segment.vertex1, segment.vertex2}) {
      if (mapped(map, end) != 0) continue;
      gx_debug(" segment with  vertex link invalid : vertex : %12d\n", end);
      gx_set_status(gx_code::object_id_invalid);
    }
  }
}

// Rewrites every id of the copy of `source`.
void gx_object_copy_bye_link(const gx_object_gene_rec_t& source, gx_file_gene_recf_t& target,
                             const source_to_target_t& map) {
  check_kept_references(source, map);
  auto& copy = gx_object_id_ptr(target, mapped(map, source.object_id));
  map_ids(&copy, gx_general_fields(), map);
  map_ids(&copy, gx_tail_fields(copy.object_type), map);
}

// The copy of a file without its deleted objects.
std::shared_ptr<gx_file_gene_recf_t> compacted(const gx_file_gene_recf_t& source) {
  auto result = std::make_shared<gx_file_gene_recf_t>();
  auto& target = *result;
  gx_set_file_date(target, gx_get_date());
  target.dot_width = source.dot_width;
  target.check_data_done = gx_files.check_data_done;
  target.num_errors = gx_session.num_errors;

  source_to_target_t map(source.ptr_to_ar_objindex.size() + 1, 0);
  for (const auto* object : source.ptr_to_ar_objindex) {
    if (gx_is_deleted(*object)) continue;
    gx_at(map, object->object_id) = gx_object_copy_bye(*object, target);
  }
  for (const auto* object : source.ptr_to_ar_objindex) {
    if (!gx_is_deleted(*object)) gx_object_copy_bye_link(*object, target, map);
  }
  target.primary_object = mapped(map, source.primary_object);
  target.page_obj_id = mapped(map, source.page_obj_id);
  target.grid_obj_id = mapped(map, source.grid_obj_id);
  return result;
}

// Writes the target to the disk; false when that refuses.
bool write_target(gx_file_io_rec_t& slot) {
  const auto& target = *slot.start_buf_ptr;
  for (const auto* object : target.ptr_to_ar_objindex) {
    if (gx_is_deleted(*object)) {
      gx_debug(" gx_file_close : object invalid:w_11:  tobj_id:%d   status:%d  deleted:%d \n",
               object->object_id, object->status, gx_flag_deleted);
      gx_set_status(gx_code::file_close_invalid);
    }
  }
  x_file file = std::move(slot.file_io_id);
  const std::string bytes = gx_encode_file(target);
  return std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
         std::fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0 && x_close(std::move(file));
}

// The names of the version that a save writes.
gx_file_version_t next_version(const gx_file_io_rec_t& slot) {
  if (!slot.version_found) {
    gx_file_version_t names;
    names.found = names.valid = true;
    names.version = 1;
    names.link_pathname = slot.link_pathname;
    names.link_value = gx_string("_1");
    names.file_pathname = slot.file_pathname;
    return names;
  }
  return gx_file_new_file_version(gx_view(slot.dirname), gx_view(slot.filetype), slot.version);
}

[[noreturn]] void refuse_link(const gx_file_io_rec_t& slot, std::string_view link) {
  const std::string_view quote = slot.version_found ? "\"" : "'";
  gx_trace(" ## error in close file in = ", quote, link, quote);
  if (!slot.version_found) {
    std::printf(" !! error in close file (link not ok) in = '%.*s'\n",
                static_cast<int>(link.size()), link.data());
  }
  gx_set_status(gx_code::file_close_invalid);
}

// The data of the new version reach the disk before the link names them, so that whatever breaks
// the save off leaves the version before current.
void save(gx_file_index_t file_index) {
  const auto& source = gx_ptrto_gene_file_buf(file_index);
  const auto& slot = gx_at(gx_files.filear, file_index);
  auto target = compacted(source);
  const auto names = next_version(slot);
  const auto link = gx_view(names.link_pathname);
  if (!names.valid) refuse_link(slot, link);

  const auto path = gx_view(names.file_pathname);
  const auto target_index = gx_file_create_bye(path);
  auto& target_slot = gx_at(gx_files.filear, target_index);
  target_slot.dirname = slot.dirname;
  target_slot.filetype = slot.filetype;
  target_slot.version = names.version;
  target_slot.link_value = names.link_value;
  target_slot.link_pathname = names.link_pathname;
  std::printf(" -- saving file :\"%.*s\" --\n", static_cast<int>(path.size()), path.data());

  target->file_index = target_index;
  target_slot.start_buf_ptr = std::move(target);
  if (!write_target(target_slot)) {
    std::remove(std::string(path).c_str());
    ++gx_session.num_errors;
    gx_trace("!!! file_close  file target not opened : \"", path, "\" ");
    gx_set_status(gx_code::file_open_invalid);
  }
  if (!gx_add_gx_link(link, gx_view(names.link_value))) {
    std::remove(std::string(path).c_str());
    refuse_link(slot, link);
  }
}

}  // namespace

void gx_file_close(gx_file_index_t file_index, bool save_it) {
  if (!save_it) return gx_file_close(file_index);
  gx_check_file_to_close(file_index);
  save(file_index);
}
