#include "app/sheet/last_views.h"

#include "app/state.h"
#include "gx/display/viewports.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
constexpr std::size_t most_views = 20;

kv_last_view_t present() {
  const auto vpid = gx_vext.viewport_edit;
  return {kv_pext.cur_sim_path, gx_viewport_ok(vpid) ? gx_viewport_shown(vpid) : gx_shown_t{}};
}

// RUN puts a "/" before the path of the sheet in view.
std::string_view names(const gx_string_record_t& path) {
  std::string_view text = gx_view(path);
  if (text.starts_with('/')) text.remove_prefix(1);
  return text;
}

bool is_same(const kv_last_view_t& a, const kv_last_view_t& b) {
  return gx_iden(names(a.path), names(b.path)) && a.shown == b.shown;
}
}  // namespace

void kv_remember_view() {
  auto& views = kv_pext.last_views;
  views.push_back(present());
  if (views.size() > most_views) views.erase(views.begin());
}

std::optional<kv_last_view_t> kv_take_last_view() {
  auto& views = kv_pext.last_views;
  const auto now = present();
  while (!views.empty()) {
    const auto view = views.back();
    views.pop_back();
    if (!is_same(view, now)) return view;
  }
  return std::nullopt;
}
