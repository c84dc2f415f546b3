// Selecting by area and by handle: SELect AREa, UNSelect AREa, SELect OBJect, UNSelect ALL.
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/select_area.h"
#include "gx/db/owners.h"
#include "gx/db/undo.h"
#include "gx/display/sheet/draw.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

// The two first letters of each kind of area.
struct kind_word_t {
  std::string_view head;
  kv_area_kind kind;
};
constexpr kind_word_t kind_words[] = {
    {"AL", kv_area_kind::all},    {"IN", kv_area_kind::instances},
    {"NE", kv_area_kind::nets},   {"VE", kv_area_kind::vertices},
    {"FR", kv_area_kind::frames}, {"PR", kv_area_kind::properties},
    {"FI", kv_area_kind::first},
};

std::optional<kv_area_kind> area_kind(std::string_view word) {
  for (const auto& [head, kind] : kind_words) {
    if (gx_equal(head, word)) return kind;
  }
  return std::nullopt;
}

// What differs between SELect AREa and UNSelect AREa.
struct area_command_t {
  std::string_view done, refused, kind_refused, symbol, nothing;
  bool (*scan)(kv_area_kind kind, gx_file_index_t file_index, gx_pointreal_t p1, gx_pointreal_t p2);
};
constexpr area_command_t select_area = {
    " SELect AREa ",
    "# SELect AREa ",
    "# SELect AREa ",
    "# !! You Cannot SELECT the activate symbol ?  ",
    "# !! Warning : Nothing Selected  ? ",
    kv_select_area,
};
constexpr area_command_t unselect_area = {
    " UNSelect AREa ",
    "# UNSelect AREa ",
    "# UNSELect AREa ",
    "# !! You Cannot UNSELECT the activate symbol ?  ",
    "# !! Warning : Nothing UNSELected  ? ",
    kv_unselect_area,
};

// SELect AREa kind, or SELect AREa kind Edit x1 y1 x2 y2.
void run_area(const area_command_t& what, const kv_command_t& command) {
  kv_pext.mark_rect_done = false;
  const auto kind = area_kind(command.word(3));
  if (!kind) {
    return kv_refuse(what.kind_refused, command, "# !! Error :  3 rd parameter incorrect ? ", 3);
  }
  const auto view =
      kv_wanted_view(what.refused, command, 4,
                     {.bad_word = "# !! Error : Invalid Viewport name ( should be Edit/Context) ? ",
                      .symbol = what.symbol});
  if (!view) return;
  const auto area = kv_wanted_area(what.refused, command, 5, view->file());
  if (!area) return;
  gx_undo_define_new_step();
  if (!what.scan(*kind, view->file_index, area->p1, area->p2)) {
    return kv_warn(what.refused, command, what.nothing, 3);
  }
  kv_redraw_views();
  kv_echo(std::string(what.done) + std::string(view->name()), command, 3);
}

// --- handles

struct handle_t {
  std::string_view head;
  gx_type type;
  void (*select)(gx_file_index_t file_index, int id);
};
constexpr handle_t handles[] = {
    {"I_", gx_type::instance, kv_select_instance},
    {"F_", gx_type::frame, lb_select_frame_prim},
    {"N_", gx_type::net, lb_select_net},
};

const handle_t* handle_of(std::string_view word) {
  for (const auto& handle : handles) {
    if (gx_equal(handle.head, word)) return &handle;
  }
  return nullptr;
}

void kv_select_area_cmd(const kv_command_t& command) { run_area(select_area, command); }
void kv_unselect_area_cmd(const kv_command_t& command) { run_area(unselect_area, command); }

void kv_select_object_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SELect OBJect ";
  const auto refuse = [&](std::string_view error) { kv_refuse(refused, command, error, 3); };
  const auto view = kv_wanted_view(
      refused, command, 3,
      {.bad_word = "# !! Error : 3rd parameter incorrect (should be Edit/Context) ? ",
       .symbol = "# !! You Cannot SELECT the activate symbol ?  "});
  if (!view) return;
  const auto word = command.word(4);
  const auto* handle = handle_of(word);
  if (handle == nullptr) return refuse("# !! Error : 4th parameter incorrect (I_ , F_ or N_) ? ");
  const auto id = gx_string_to_int16(word.substr(handle->head.size()));
  if (id.error || word.size() == handle->head.size()) {
    return refuse("# !! Error : 4th parameter incorrect ? (invalid number)");
  }
  const auto& file = view->file();
  if (!gx_object_id_ok(file, id.value) || gx_inq_object_deleted(file, id.value)) {
    return refuse("# !! Error : 4th parameter incorrect ( handle Invalid) ? ");
  }
  if (gx_object_id_ptr(file, id.value).object_type != handle->type) {
    return refuse("# !! Error : 4th parameter incorrect (type/handle Invalid) ? ");
  }
  gx_undo_define_new_step();
  handle->select(view->file_index, id.value);
  kv_redraw_views();
  kv_echo(" SELect OBJect ", command, 3);
}

void kv_unselect_all_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# UNSelect ALL ";
  const auto view = command.count() == 3 ? kv_view_named(command.word(3)) : kv_edit_view();
  if (!view) return kv_refuse(refused, command, kv_3rd_not_edit_context, 3);
  if (!view->has_sheet()) return kv_refuse(refused, command, kv_no_sheet, 3);
  kv_unselect_all(view->file_index);
  kv_redraw_views();
  gx_tell(" UNSelect ALL ");
}

constexpr kv_command_row_t select_rows[] = {
    // clang-format off
    {.keywords = {"SEL", "ARE"}, .syntax = "SELect AREa kind [Edit x1 y1 x2 y2]", .handler = kv_select_area_cmd, .refusal = select_area.refused, .first_echoed = 3, .ends_rectangle = true},
    {.keywords = {"UNS", "AR"}, .syntax = "UNSelect AREa kind [Edit x1 y1 x2 y2]", .handler = kv_unselect_area_cmd, .refusal = unselect_area.refused, .first_echoed = 3, .ends_rectangle = true},
    {{"SEL", "OBJ"}, "SELect OBJect Edit handle", kv_select_object_cmd, "# SELect OBJect ", 3},
    {{"UNS", "AL"}, "UNSelect ALL [Edit or Context]", kv_unselect_all_cmd, "# UNSelect ALL ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_select_commands() { return select_rows; }
