// The menu tree of a fresh session, shared with the sibling editors: some lines run commands that
// only those know.
#include <array>
#include <span>
#include <string_view>

#include "app/session/input/event_loop.h"
#include "gx/display/input/menu_tree.h"

namespace {

// A line at index[0], index[1], ... up to the first 0. Without a command it opens a menu.
struct menu_line_t {
  std::array<int, 3> index;
  std::string_view label, command = {};

  constexpr std::size_t level() const { return index[1] == 0 ? 1 : index[2] == 0 ? 2 : 3; }
};

constexpr menu_line_t menu_lines[] = {
    {{1}, "INTRODUCTION ", "SHOW FILE  $VELMORAN/kivo/introduction "},

    {{2}, "EDIT"},
    {{2, 1}, "SELECT AREA "},
    {{2, 1, 1}, "All ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area all\" "},
    {{2, 1, 2}, "INSTANCE ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area inst\" "},
    {{2, 1, 3}, "NET ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area net\" "},
    {{2, 1, 4}, "VERTEX ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area vertex\" "},
    {{2, 1, 5}, "FRAME ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area frame\" "},
    {{2, 1, 6}, "PROPERTY ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area property\" "},
    {{2, 1, 7}, "FIRST ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"sel area first\" "},
    {{2, 2}, "MOVE ", " MOVE "},
    {{2, 3}, "COPY ", " COPY "},
    {{2, 4}, "DRAW NET ", " DEF KEY B1 \"line continue\" ; DEF KEY B1U \" \" "},
    {{2, 5}, "DELETE ", " delete "},
    {{2, 6}, "UNDO ", " undo "},
    {{2, 7}, "UNSELECT AREA "},
    {{2, 7, 1}, "ALL ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area all\" "},
    {{2, 7, 2}, "INSTANCE ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area instance\" "},
    {{2, 7, 3}, "NET ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area net\" "},
    {{2, 7, 4}, "VERTEX ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area vertex\" "},
    {{2, 7, 5}, "FRAME ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area frame\" "},
    {{2, 7, 6}, "PROPERTY ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area property\" "},
    {{2, 7, 7}, "FIRST ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"unsel area first\" "},

    {{3}, "BASIC"},
    {{3, 1}, "CHECK "},
    {{3, 1, 1}, "SHEET ", " check sheet "},
    {{3, 1, 2}, "USER_CHECK ", " DO $VELMORAN/kivo/user_check_file  "},
    {{3, 2}, "ROTATE "},
    {{3, 2, 1}, "-90 ", " rotate -90  "},
    {{3, 2, 2}, " 90 ", " rotate 90  "},
    {{3, 2, 3}, "180 ", " rotate 180  "},
    {{3, 3}, "NET STYLE "},
    {{3, 3, 1}, "WIDTH 1 ", " template net width 1 "},
    {{3, 3, 2}, "WIDTH 2 ", " template net width 2 "},
    {{3, 3, 3}, "WIDTH 3 ", " template net width 3 "},
    {{3, 4}, "BASEPOINT ", " basepoint "},
    {{3, 5}, "SWITCHES "},
    {{3, 5, 1}, "VISIBLE ", " change prop switch  visible "},
    {{3, 5, 2}, "NOVISIBLE ", " change prop switch  novisible "},
    {{3, 6}, "VIEW ALL ", "view all "},
    {{3, 7}, "VIEW AREA ", " DEF KEY B1 \"mark rect\" ; DEF KEY B1U \"view area \" "},

    {{4}, "ADVANCE"},
    {{4, 1}, "REPLACE PART "},
    {{4, 1, 1}, "CLEAR ", " replace clear "},
    {{4, 1, 2}, "INSTANCE ", " replace instance "},
    {{4, 2}, "UPDATE PART "},
    {{4, 2, 1}, "CLEAR ", " update clear "},
    {{4, 2, 2}, "SYMBOL ", " update instance "},
    {{4, 3}, "GRID "},
    {{4, 3, 1}, "0.05 ", " grid step 0.05 "},
    {{4, 3, 2}, "0.10 ", " grid step 0.10 "},
    {{4, 3, 3}, "0.20 ", " grid step 0.20 "},
    {{4, 4}, "SNAP "},
    {{4, 4, 1}, "ON ", " snap on "},
    {{4, 4, 2}, "OFF ", " snap off "},
    {{4, 5}, "PAGE "},
    {{4, 5, 1}, "5 * 3 ", " template page 5 3 "},
    {{4, 5, 2}, "10 * 6 ", " template page 10 6 "},
    {{4, 5, 3}, "20 * 12 ", " template page 20 12 "},
    {{4, 5, 4}, "40 * 24 ", " template page 40 24 "},
};

}  // namespace

void kv_set_default_menus() {
  for (const menu_line_t& line : menu_lines) {
    gx_def_menu_rec(std::span(line.index).first(line.level()), line.label, !line.command.empty(),
                    line.command);
  }
}
