// The viewport, sheet and point that a command means.
#include "app/sheet/command_viewport.h"

#include "app/language/answers.h"
#include "app/sheet/views.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

bool kv_view_t::is_symbol() const {
  return kv_pext.act_symb_done && file_index == kv_pext.file_id_act;
}

gx_file_gene_recf_t& kv_view_t::file() const { return gx_ptrto_gene_file_buf(file_index); }

kv_view_t kv_edit_view() { return {gx_vext.viewport_edit, kv_pext.file_id_cur}; }
kv_view_t kv_context_view() { return {gx_vext.viewport_context, kv_pext.file_id_context}; }

std::optional<kv_view_t> kv_view_named(std::string_view word) {
  if (gx_equal("E", word)) return kv_edit_view();
  if (gx_equal("C", word)) return kv_context_view();
  return std::nullopt;
}

std::optional<kv_view_t> kv_view_at_pointer() {
  if (gx_vext.viewport_id == gx_vext.viewport_edit) return kv_edit_view();
  if (gx_vext.viewport_id == gx_vext.viewport_context) return kv_context_view();
  return std::nullopt;
}

std::optional<kv_view_t> kv_wanted_view(std::string_view keyword, const kv_command_t& command,
                                        int n, const kv_view_answers_t& answers, int first) {
  const bool named = command.count() >= n;
  const auto view = named ? kv_view_named(command.word(n)) : kv_view_at_pointer();
  const auto refuse = [&](std::string_view why) {
    kv_refuse(keyword, command, why, first);
    return std::nullopt;
  };
  if (!view) return refuse(named ? answers.bad_word : answers.no_viewport);
  if (!view->has_sheet()) return refuse(kv_no_sheet);
  if (!answers.symbol.empty() && view->is_symbol()) return refuse(answers.symbol);
  return view;
}

std::optional<gx_pointreal_t> kv_typed_point(const kv_command_t& command, int n) {
  const auto x = gx_string_to_real(command.word(n)), y = gx_string_to_real(command.word(n + 1));
  if (x.error || y.error || command.word(n + 1).empty()) return std::nullopt;
  return gx_pointreal_t{x.value, y.value};
}

std::optional<gx_pointreal_t> kv_typed_point_in_page(const kv_command_t& command, int n,
                                                     const gx_file_gene_recf_t& file) {
  const auto p = kv_typed_point(command, n);
  return p && gx_check_point_inpage(file, p->x, p->y) ? p : std::nullopt;
}

std::optional<kv_area_t> kv_wanted_area(std::string_view keyword, const kv_command_t& command,
                                        int n, const gx_file_gene_recf_t& file) {
  kv_pext.mark_rect_done = false;
  if (command.count() >= n) {
    const auto p1 = kv_typed_point_in_page(command, n, file);
    const auto p2 = kv_typed_point_in_page(command, n + 2, file);
    if (!p1 || !p2) {
      kv_refuse(keyword, command, kv_outside_page, 3);
      return std::nullopt;
    }
    kv_pext.obj_ptr1 = *p1;
    gx_vext.obj_pos = *p2;
  }
  return kv_area_t{kv_pext.obj_ptr1, gx_vext.obj_pos};
}

gx_string_record_t kv_point_text(gx_pointreal_t p) {
  gx_string_record_t text, number;
  for (const std::int32_t v : {p.x, p.y}) {
    gx_real_to_string(v, number);
    gx_concat_all(text, gx_view(number), " ");
  }
  return text;
}

void kv_redraw_views() {
  kv_update_viewport_edit();
  kv_update_viewport_context();
}
