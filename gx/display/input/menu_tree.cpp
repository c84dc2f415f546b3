// The menu records and their place in the tree.
#include "gx/display/input/menu_tree.h"

#include <algorithm>
#include <memory>
#include <ranges>

#include "gx/display/input/menu_state.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

using record_ptr = std::unique_ptr<gx_menu_rec_t>;
constexpr std::size_t max_display_length = 18;

// Entry (i1, i2, ...) of a level is at ((i1 - 1) * 12 + (i2 - 1)) * 12 + ...
std::span<record_ptr> level_records(std::size_t level) {
  switch (level) {
    case 1:
      return gx_vext.menu1_arofptr;
    case 2:
      return gx_vext.menu2_arofptr;
    case 3:
      return gx_vext.menu3_arofptr;
    case 4:
      return gx_vext.menu4_arofptr;
    default:
      return {};
  }
}

bool in_range(int i) { return i >= 1 && i <= gx_max_menu_lines; }

// The first index out of range, from 1; 0 when all are good.
int bad_index(std::span<const int> index) {
  const auto bad = std::ranges::find_if_not(index, in_range);
  return bad == index.end() ? 0 : static_cast<int>(bad - index.begin()) + 1;
}

record_ptr& record_at(std::span<const int> index) {
  std::size_t offset = 0;
  for (const int i : index) {
    offset = offset * std::size_t{gx_max_menu_lines} + static_cast<std::size_t>(i - 1);
  }
  return level_records(index.size())[offset];
}

int level_of(std::span<const int> index) { return static_cast<int>(index.size()); }

// The text as a record; one that no record holds is reported and replaced by nothing.
gx_string_record_t checked(std::string_view text, int level, const char* what) {
  if (text.size() < static_cast<std::size_t>(gx_max_string_length)) return gx_string(text);
  gx_trace(" !! size error : gx_def_menu", level, "_rec ");
  gx_trace("!! : ", what, "  : ", text);
  return {};
}

}  // namespace

void gx_def_menu_rec(std::span<const int> index, std::string_view str, bool cmd_on,
                     std::string_view cmd) {
  const int level = level_of(index);
  if (level < 1 || level > gx_max_menu_levels) gx_set_status(gx_code::invalid_level);
  if (const int bad = bad_index(index); bad != 0) {
    gx_debug(" !! error in gx_def_menu%d_rec : level %d : %d\n", level, bad, gx_at(index, bad - 1));
    gx_set_status(gx_code::invalid_level);
  }
  record_ptr& record = record_at(index);
  if (!record) record = std::make_unique<gx_menu_rec_t>();
  const gx_string_record_t display = checked(str, level, "str");
  record->cmd_on = cmd_on;
  record->str = gx_string(gx_view(display).substr(0, max_display_length));
  record->cmd = checked(cmd, level, "cmd");
}

gx_menu_rec_t gx_get_menu_rec(std::span<const int> index) {
  const int level = level_of(index);
  if (level < 1 || level > gx_max_menu_levels) return {};
  if (const int bad = bad_index(index); bad != 0) {
    gx_debug(" !! error in gx_get_menu%d_rec : level %d : %d  %d\n", level, bad,
             gx_at(index, bad - 1), gx_max_menu_lines);
    return {};
  }
  const record_ptr& record = record_at(index);
  return record ? *record : gx_menu_rec_t{};
}

gx_menu_rec_t* gx_ptrto_menu_rec(std::span<const int> index) {
  const int level = level_of(index);
  if (level < 1 || level > gx_max_menu_levels) gx_set_status(gx_code::invalid_level);
  if (const int bad = bad_index(index); bad != 0) {
    gx_debug(" !! error in gx_ptrto_menu%d_rec : level %d : %d  %d\n", level, bad,
             gx_at(index, bad - 1), gx_max_menu_lines);
    gx_set_status(gx_code::invalid_level);
  }
  return record_at(index).get();
}

void gx_clear_menus() {
  for (std::size_t level = 1; level <= gx_max_menu_levels; ++level) {
    for (record_ptr& record : level_records(level))
      if (record) record.reset();  // most are none: their pages are not written
  }
  gx_vext.menuline_lev.fill(0);
  gx_vext.prelinsel_lev.fill(0);
  gx_vext.menu_level = 0;
  gx_vext.menu_drawn = gx_vext.menu_hidden = false;
}
