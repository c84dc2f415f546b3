#include "app/tree/tree_view.h"

#include <X11/keysym.h>

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>

#include "app/sheet/views.h"
#include "app/sheet/walk.h"
#include "app/state.h"
#include "app/tree/block_tree.h"
#include "expand/store.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "netlist/path_key.h"

// What is shown of the tree.
struct kv_shown_tree_t {
  kv_block_tree_t blocks{};
  int first_row = 0;        // at the top of the viewport
  std::int32_t chosen = 0;  // node that keys and searching move from
  std::int32_t here = -1;   // node of the sheet in view; -1: none
  std::string searched{};   // what was typed
  bool is_found = true;     // there is such a name
  bool is_pressed = false;  // button 1 went down here,
  int pressed_row = -1;     // on this row; -1: on none
  // By path key: the worst finding of the sheet (`own`), and whether there is one on it or below.
  struct marks_t {
    int own = 0, all = 0;  // findings
    bool is_error = false;
  };
  std::unordered_map<std::string, marks_t> marks{};
  // What all this was made for.
  struct made_for_t {
    std::string path{};
    std::size_t primitives = 0, findings = 0, waived = 0;
    const void* list = nullptr;
    friend bool operator==(const made_for_t&, const made_for_t&) = default;
  };
  made_for_t made_for{};
};

namespace {
constexpr int red = 1, yellow = 5, cyan = 4, white = 7;  // colours of files
constexpr int margin = 6;                                // pixels
constexpr std::uint32_t shift = 1, control_or_alt = 4 | 8;
constexpr int wheel_rows = 3;
// Parts of the window, in 1/100000: the left quarter, and what is left of the sheet.
constexpr gx_boundsreal_t tree_place = {400, 500, 24900, 74900};
constexpr std::int32_t edit_left_beside_tree = 25300;

// Sizes in pixels that follow the height of the window.
struct sizes_t {
  int text, pitch, advance, top, rows;  // height of letters, from row to row, ..., whole rows
};

sizes_t sizes() {
  const gx_bounds16_t& box = gx_viewport_rec(gx_vext.viewport_tree).pixel_bounds;
  const int text = std::clamp(gx_vext.bitmap_size.y / 110, 7, 24);
  const int pitch = 2 * text + 2;
  const int height = box.ymax - box.ymin - 2 * margin - pitch;  // the last line: what is searched
  return {text, pitch, text * gx_glyph_advance / gx_glyph_height, box.ymin + margin,
          std::max(height / pitch, 1)};
}

kv_shown_tree_t::made_for_t made_for_now() {
  const auto& findings = kv_pext.findings;
  return {std::string(gx_view(kv_pext.cur_sim_path)),
          static_cast<std::size_t>(kv_sext.primitive.count), findings.size(),
          static_cast<std::size_t>(std::ranges::count_if(findings, &kv_finding_t::waived)),
          findings.data()};
}

// Counts each finding at its sheet and at those above it.
void mark_findings(kv_shown_tree_t& tree) {
  tree.marks.clear();
  for (const kv_finding_t& finding : kv_pext.findings) {
    if (finding.waived) continue;
    std::string key = finding.at.empty() || finding.at == "/" ? "" : kv_path_key(finding.at);
    while (key.ends_with('/')) key.pop_back();
    ++tree.marks[key].own;
    for (;;) {
      auto& marks = tree.marks[key];
      ++marks.all;
      marks.is_error = marks.is_error || finding.severity == kv_severity::error;
      if (key.empty()) break;
      key.resize(std::min(key.rfind('/'), key.size()));
    }
  }
}

void keep_first_row(kv_shown_tree_t& tree) {
  const int rows = static_cast<int>(tree.blocks.rows.size());
  tree.first_row = std::clamp(tree.first_row, 0, std::max(rows - sizes().rows, 0));
}

// Chooses a node; the viewport scrolls to it when it is out of sight.
void choose(kv_shown_tree_t& tree, std::int32_t node) {
  tree.chosen = node;
  kv_tree_reveal(tree.blocks, node);
  const int row = kv_tree_row(tree.blocks, node), shown = sizes().rows;
  if (row < tree.first_row || row >= tree.first_row + shown) tree.first_row = row - shown / 3;
  keep_first_row(tree);
}

void follow_sheet(kv_shown_tree_t& tree) {
  tree.here = kv_tree_find(tree.blocks, gx_view(kv_pext.cur_sim_path));
  if (tree.here < 0) return;
  kv_tree_open(tree.blocks, tree.here, true);
  choose(tree, tree.here);
}

// --- drawing

int text_color() { return gx_color_of(gx_role::text, white); }

void draw_box(int x0, int y0, int x1, int y1, int color) {
  const auto point = [](int x, int y) {
    return gx_point16_t{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
  };
  const gx_point16_t corners[] = {point(x0, y0), point(x1, y0), point(x1, y1), point(x0, y1),
                                  point(x0, y0)};
  gx_draw_polyline(gx_vext.viewport_tree, color, 0, corners);
}

// "-" in a box of what is open, "+" of what could be.
void draw_knob(int x, int y, int size, bool is_open, int color) {
  const int half = size / 2;
  draw_box(x, y, x + 2 * half, y + 2 * half, color);
  gx_pen_box(color, x + 2, y + half, 2 * half - 3, 1);
  if (!is_open) gx_pen_box(color, x + half, y + 2, 1, 2 * half - 3);
}

// The cell of a node: the last name of its directory; of the top that of the design.
std::string_view cell_of(const kv_tree_node_t& node) {
  std::string_view directory = node.above < 0 ? gx_view(kv_at_level(1).file_path)
                                              : std::string_view(node.component->directory);
  while (directory.ends_with('/')) directory.remove_suffix(1);
  return directory.substr(directory.rfind('/') + 1);
}

class row_drawing {
 public:
  explicit row_drawing(kv_shown_tree_t& tree)
      : tree_(tree),
        size_(sizes()),
        box_(gx_viewport_rec(gx_vext.viewport_tree).pixel_bounds),
        quiet_(gx_color_of(gx_role::pin, cyan)) {}

  void draw(int row) {
    const std::int32_t node = gx_at(tree_.blocks.rows, row);
    const kv_tree_node_t& record = gx_at(tree_.blocks.nodes, node);
    const int y = size_.top + (row - tree_.first_row) * size_.pitch;
    const int x = box_.xmin + margin + kv_tree_depth(tree_.blocks, node) * size_.advance;
    const bool is_here = node == tree_.here;
    if (kv_tree_has_blocks(tree_.blocks, node))
      draw_knob(x, y + 1, size_.text, record.is_open, quiet_);
    const int color =
        is_here ? gx_color_of(gx_role::selection, gx_vext.color_obj_selected) : text_color();
    const std::string_view name = kv_tree_name(tree_.blocks, node);
    const int end = draw_marks(node, record.is_open, y);
    int at = x + 2 * size_.advance;
    at = write(name.empty() ? "/" : name, at, y, end, color);
    write(cell_of(record), at + size_.advance, y, end, quiet_);
    if (is_here || node == tree_.chosen)
      draw_box(box_.xmin + 2, y - size_.text / 2, box_.xmax - 5, y + size_.text * 3 / 2,
               is_here ? color : quiet_);
  }

  // What is searched for, on the last line.
  void draw_search() {
    if (tree_.searched.empty()) return;
    const int y = box_.ymax - margin - size_.text;
    write("search: " + tree_.searched + (tree_.is_found ? "" : "  not found"), box_.xmin + margin,
          y, box_.xmax - margin, tree_.is_found ? text_color() : red);
  }

  // Where the rows in view are among all.
  void draw_bar() {
    const int rows = static_cast<int>(tree_.blocks.rows.size());
    if (rows <= size_.rows) return;
    const int height = size_.rows * size_.pitch;
    const int length = std::max(height * size_.rows / rows, 6);
    const int way = (height - length) * tree_.first_row / std::max(rows - size_.rows, 1);
    gx_pen_box(quiet_, box_.xmax - 4, size_.top + way, 2, length);
  }

 private:
  // The text up to the right edge, cut where it ends; where it ended.
  int write(std::string_view text, int x, int y, int end, int color) {
    const auto room = static_cast<std::size_t>(std::max((end - x) / size_.advance, 0));
    text = text.substr(0, room);
    if (!text.empty())
      gx_text(gx_vext.viewport_tree, text, x, y + size_.text, size_.text, 0, color);
    return x + static_cast<int>(text.size()) * size_.advance;
  }

  // How many findings the sheet has; of a closed block with all below it. Where they begin.
  int draw_marks(std::int32_t node, bool is_open, int y) {
    const int end = box_.xmax - margin;
    if (tree_.marks.empty()) return end;
    const std::string path = kv_tree_path(tree_.blocks, node);
    const auto found = tree_.marks.find(path.empty() ? "" : kv_path_key(path));
    if (found == tree_.marks.end()) return end;
    const int count = is_open ? found->second.own : found->second.all;
    if (count == 0) return end;
    const std::string text = std::to_string(count);
    const int color = found->second.is_error ? red : yellow;
    const int x = end - static_cast<int>(text.size()) * size_.advance;
    write(text, x, y, end, color);
    const int side = size_.text - 2;
    gx_pen_box(color, x - side - size_.advance / 2, y + 1, side, side);
    return x - side - size_.advance;
  }

  kv_shown_tree_t& tree_;
  sizes_t size_;
  gx_bounds16_t box_;
  int quiet_;
};

// --- the mouse and the keys

int row_at(const kv_shown_tree_t& tree, gx_point16_t pixel) {
  const sizes_t size = sizes();
  const int down = pixel.y - size.top + size.text / 2;
  const int row = down / size.pitch;
  if (down < 0 || row >= size.rows) return -1;
  const int wanted = tree.first_row + row;
  return wanted < static_cast<int>(tree.blocks.rows.size()) ? wanted : -1;
}

void scroll(kv_shown_tree_t& tree, int rows) {
  tree.first_row += rows;
  keep_first_row(tree);
}

void click_row(kv_shown_tree_t& tree, int row, bool all) {
  const std::int32_t node = gx_at(tree.blocks.rows, row);
  tree.chosen = node;
  const bool open = !gx_at(tree.blocks.nodes, node).is_open;
  if (all && !kv_tree_open_all(tree.blocks, node, open))
    gx_tell_as(gx_line_kind::warning, "# !! Warning : VIEw TREe shows ",
               std::to_string(kv_most_tree_nodes), " blocks at most ");
  if (!all && kv_tree_has_blocks(tree.blocks, node)) kv_tree_open(tree.blocks, node, open);
  keep_first_row(tree);
}

void go_to(const kv_shown_tree_t& tree, std::int32_t node, const kv_run_t& run) {
  const std::string path = kv_tree_path(tree.blocks, node);
  run("VIEW TREE " + (path.empty() ? "/" : path) + " ");
}

void search(kv_shown_tree_t& tree, bool with_itself) {
  const auto found = kv_tree_search(tree.blocks, tree.chosen, tree.searched, with_itself);
  tree.is_found = found >= 0 || tree.searched.empty();
  if (found >= 0) choose(tree, found);
}

void move_choice(kv_shown_tree_t& tree, int rows) {
  const int last = static_cast<int>(tree.blocks.rows.size()) - 1;
  const int row = std::clamp(kv_tree_row(tree.blocks, tree.chosen) + rows, 0, std::max(last, 0));
  if (last >= 0) choose(tree, gx_at(tree.blocks.rows, row));
}

// False for a key that means nothing here.
bool press_key(kv_shown_tree_t& tree, std::uint32_t keysym, const kv_run_t& run) {
  constexpr std::size_t longest = 40;
  const int page = std::max(sizes().rows - 1, 1);
  if (keysym >= ' ' && keysym <= '~') {
    if (tree.searched.size() < longest) tree.searched += static_cast<char>(keysym);
    search(tree, true);
    return true;
  }
  switch (keysym) {
    case XK_BackSpace:
      if (tree.searched.empty()) return false;
      tree.searched.pop_back();
      search(tree, true);
      return true;
    case XK_Escape:
      if (tree.searched.empty()) return false;
      tree.searched.clear();
      tree.is_found = true;
      return true;
    case XK_Return:
      go_to(tree, tree.chosen, run);
      return true;
    case XK_Tab:
      search(tree, false);
      return true;
    case XK_Up:
      move_choice(tree, -1);
      return true;
    case XK_Down:
      move_choice(tree, 1);
      return true;
    case XK_Left:
    case XK_Right:
      kv_tree_open(tree.blocks, tree.chosen, keysym == XK_Right);
      keep_first_row(tree);
      return true;
    case XK_Prior:
      scroll(tree, -page);
      return true;
    case XK_Next:
      scroll(tree, page);
      return true;
    default:
      return false;
  }
}

void release_button(kv_shown_tree_t& tree, const gx_event_t& event, const kv_run_t& run) {
  const int pressed = tree.pressed_row;
  const bool is_here = gx_vext.viewport_id == gx_vext.viewport_tree;
  if (!is_here || pressed < 0 || row_at(tree, event.pixel) != pressed) return;
  if (event.clicks == 2) return go_to(tree, tree.chosen, run);
  click_row(tree, pressed, (event.modifiers & shift) != 0);
}

// --- its place

// Nothing remembers the viewport that is gone.
void forget_viewport(gx_vpid_t vpid) {
  for (gx_vpid_t* const id : {&gx_vext.viewport_id, &gx_vext.last_viewport_id,
                              &gx_vext.viewport_current, &kv_pext.prev_viewport_id})
    if (*id == vpid) *id = gx_vext.viewport_edit;
}

void set_place(bool on) {
  const bool is_there = gx_vext.viewport_tree != 0;
  if (on == is_there || !gx_viewport_ok(gx_vext.viewport_edit)) return;
  auto& edit = gx_viewport_rec(gx_vext.viewport_edit);
  const gx_viewport_init_rec_t whole = set_viewports().front();
  edit.bounds_vp.xmin = on ? edit_left_beside_tree : whole.bounds.xmin;
  if (on) {
    gx_boundsreal_t place = tree_place;
    place.ymax = edit.bounds_vp.ymax;  // a longer list takes some of it
    gx_viewport_create(place, whole.border);
    gx_vext.viewport_tree = gx_vext.viewport_id_max;
    kv_frame_quiet(gx_vext.viewport_tree);
  } else {
    const gx_vpid_t vpid = std::exchange(gx_vext.viewport_tree, gx_vpid_t{0});
    gx_viewport_delete(vpid);
    forget_viewport(vpid);
  }
  gx_viewports_update();
}
}  // namespace

void kv_show_tree(bool on) {
  if (gx_vext.screen == nullptr) return;
  kv_pext.tree = nullptr;
  set_place(on);
  if (!on) return;
  auto tree = std::make_shared<kv_shown_tree_t>();
  kv_make_tree(tree->blocks);
  if (tree->blocks.nodes.empty()) return set_place(false);
  tree->made_for = made_for_now();
  mark_findings(*tree);
  kv_pext.tree = std::move(tree);
  follow_sheet(*kv_pext.tree);
}

bool kv_tree_is_shown() { return kv_pext.tree != nullptr; }

void kv_draw_tree() {
  const gx_vpid_t vpid = gx_vext.viewport_tree;
  if (!kv_tree_is_shown() || !gx_is_seen() || !gx_viewport_ok(vpid)) return;
  kv_shown_tree_t& tree = *kv_pext.tree;
  keep_first_row(tree);
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_clear_viewport(vpid);
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  row_drawing drawing(tree);
  const int rows = static_cast<int>(tree.blocks.rows.size());
  const int end = std::min(tree.first_row + sizes().rows, rows);
  for (int row = tree.first_row; row < end; ++row) drawing.draw(row);
  drawing.draw_search();
  drawing.draw_bar();
}

void kv_follow_tree() {
  if (!kv_tree_is_shown()) return;
  kv_shown_tree_t& tree = *kv_pext.tree;
  auto now = made_for_now();
  if (now == tree.made_for) return;
  const auto before = std::exchange(tree.made_for, std::move(now));
  if (before.primitives != tree.made_for.primitives) {  // other blocks
    tree.blocks = {};
    kv_make_tree(tree.blocks);
    tree.chosen = 0;
  }
  mark_findings(tree);
  follow_sheet(tree);
  kv_draw_tree();
}

bool kv_tree_gesture(const gx_event_t& event, const kv_run_t& run) {
  if (!kv_tree_is_shown() || gx_vext.menu_drawn) return false;
  const auto held = kv_pext.tree;  // a command may end it
  kv_shown_tree_t& tree = *held;
  const bool is_here = gx_vext.viewport_id == gx_vext.viewport_tree;
  switch (event.kind) {
    case gx_event_kind::button1_down:
      tree.is_pressed = is_here;
      tree.pressed_row = is_here ? row_at(tree, event.pixel) : -1;
      return is_here;
    case gx_event_kind::button1_up:
      if (!std::exchange(tree.is_pressed, false)) return false;
      release_button(tree, event, run);
      break;
    case gx_event_kind::pointer_moved:
      if (!is_here || event.wheel == 0) return false;
      scroll(tree, event.wheel > 0 ? -wheel_rows : wheel_rows);
      break;
    case gx_event_kind::key_press:
      if (!is_here || (event.modifiers & control_or_alt) != 0 || gx_vext.str_cmd.len > 0 ||
          !press_key(tree, event.code, run))
        return false;
      break;
    default:
      return false;
  }
  kv_draw_tree();
  return true;
}
