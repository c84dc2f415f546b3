#include "app/find/highlights.h"

#include <algorithm>

#include "app/sheet/walk.h"
#include "app/state.h"
#include "expand/explain.h"
#include "gx/db/file/file_state.h"
#include "gx/display/sheet/highlight.h"
#include "gx/display/sheet/theme.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

// The visits of the sheets from the top to the one in view, by level; empty when the view is not
// where the expansion has been.
std::vector<std::int32_t> visits_in_view(const kv_expanded_t& expanded) {
  std::vector<std::int32_t> visits;
  for (auto visit = kv_visit_at(expanded, gx_view(kv_pext.cur_sim_path)); visit >= 0;
       visit = expanded.visit(visit).above)
    visits.push_back(visit);
  std::ranges::reverse(visits);
  if (visits.size() != static_cast<std::size_t>(kv_pext.file_level_cur)) visits.clear();
  return visits;
}

// Whether a slot holds a sheet as the run saw it.
bool holds(gx_file_index_t slot, const kv_sheet_t& sheet) {
  return slot >= 1 && gx_view(gx_at(gx_files.filear, slot).file_pathname) == sheet.file_path;
}

// The sheet of VIEw SHEet, when the expansion has it: it stands for all its visits. Else null.
const kv_sheet_t* viewed_sheet(const kv_expanded_t& expanded) {
  if (!kv_pext.view_sheet_done) return nullptr;
  const auto& visits = expanded.origins.visits;
  const auto at = std::ranges::find_if(
      visits, [](const auto& visit) { return holds(kv_pext.file_id_views, *visit.sheet); });
  return at == visits.end() ? nullptr : at->sheet;
}

// The slot in which the sheet of a visit is, when it is one of those from the top to the view; else
// 0.
gx_file_index_t slot_of(const kv_expanded_t& expanded, const std::vector<std::int32_t>& visits,
                        std::int32_t visit) {
  const auto at = std::ranges::lower_bound(visits, visit);
  if (at == visits.end() || *at != visit) return 0;
  const auto level = static_cast<int>(at - visits.begin()) + 1;
  const auto slot = kv_at_level(level).file_index;
  return holds(slot, *expanded.visit(visit).sheet) ? slot : gx_file_index_t{0};
}

// Marks the net on the sheets in view; its name occurs once on each.
void mark(const kv_expanded_t& expanded, const std::vector<std::int32_t>& visits,
          const kv_sheet_t* viewed, std::int32_t net, int color) {
  const auto name = expanded.netlist.path({kv_named::net, net});
  const kv_explainer_t explainer(expanded.netlist, expanded.origins);
  std::vector<gx_file_index_t> named;
  bool is_viewed_named = false;
  for (const auto& drawn : explainer.drawn(net)) {
    const kv_sheet_t& sheet = explainer.sheet(drawn.visit);
    const auto view = kv_pext.file_id_views;
    if (&sheet == viewed && gx_highlight_of(view, drawn.object_id) == nullptr) {
      gx_highlight_net(view, drawn.object_id, is_viewed_named ? std::string_view{} : name, 0,
                       color);
      is_viewed_named = true;
    }
    const auto slot = slot_of(expanded, visits, drawn.visit);
    if (slot == 0) continue;
    const bool is_named = std::ranges::find(named, slot) != named.end();
    gx_highlight_net(slot, drawn.object_id, is_named ? std::string_view{} : name, 0, color);
    if (!is_named) named.push_back(slot);
  }
}

constexpr int changed_color = 2;

// Marks an instance or a block on its sheet, and the blocks that it is in on theirs.
void mark_instance(const kv_expanded_t& expanded, const std::vector<std::int32_t>& visits,
                   const kv_sheet_t* viewed, kv_object_t object) {
  for (auto [visit, id] = kv_place_of(expanded.netlist, expanded.origins, object); visit >= 0;) {
    const kv_visit_t& here = expanded.visit(visit);
    if (const auto slot = slot_of(expanded, visits, visit); slot != 0)
      gx_highlight_instance(slot, id, changed_color);
    if (here.sheet == viewed) gx_highlight_instance(kv_pext.file_id_views, id, changed_color);
    if (here.macro == 0) return;
    id = expanded.netlist.object_id({kv_named::macro, here.macro});
    visit = here.above;
  }
}

void mark_changed(const kv_expanded_t& expanded, const std::vector<std::int32_t>& visits,
                  const kv_sheet_t* viewed) {
  for (const auto& [what, path] : kv_pext.changed) {
    const auto object = kv_object_at(expanded, what, path);
    if (!object) continue;
    if (what == kv_named::net)
      mark(expanded, visits, viewed, object->index, changed_color);
    else
      mark_instance(expanded, visits, viewed, *object);
  }
}

void mark_all() {
  gx_highlight_clear_all();
  const auto expanded = kv_expanded();
  if (!expanded) return;
  const auto visits = visits_in_view(*expanded);
  const kv_sheet_t* viewed = viewed_sheet(*expanded);
  mark_changed(*expanded, visits, viewed);
  for (const auto& [path, color] : kv_pext.highlighted) {
    const std::string key = kv_path_key(path);
    for (const auto hit : expanded->paths.find({&key, 1}, SIZE_MAX))
      if (hit.what == kv_named::net) mark(*expanded, visits, viewed, hit.index, color);
  }
}

// One that no net has yet, or in turn.
int free_color(const std::vector<kv_highlighted_t>& marked) {
  if (!gx_theme().has_roles) return 1;
  for (int color = 1; color <= gx_nb_of_highlights; ++color)
    if (std::ranges::find(marked, color, &kv_highlighted_t::color) == marked.end()) return color;
  return static_cast<int>(marked.size()) % gx_nb_of_highlights + 1;
}

}  // namespace

void kv_highlight(const kv_expanded_t& expanded, std::int32_t net, int color) {
  const auto path = expanded.netlist.path({kv_named::net, net});
  auto& marked = kv_pext.highlighted;
  const auto at = std::ranges::find(marked, path, &kv_highlighted_t::path);
  if (at == marked.end()) {
    marked.push_back({std::string(path), color != 0 ? color : free_color(marked)});
  } else if (color != 0) {
    at->color = color;
  }
  kv_set_level_follower(mark_all);
  mark_all();
}

void kv_highlight_changed(std::vector<kv_changed_object_t> changed) {
  kv_pext.changed = std::move(changed);
  kv_set_level_follower(mark_all);
  mark_all();
}

void kv_highlight_off() {
  kv_pext.highlighted.clear();
  kv_pext.changed.clear();
  kv_set_level_follower(nullptr);
  gx_highlight_clear_all();
}
