// The tree of blocks, without its picture, and what a hint says.
#include "app/tree/block_tree.h"

#include <X11/keysym.h>

#include <map>
#include <tuple>

#include "app/find/go_to.h"
#include "app/hint/hint.h"
#include "app/hint/hint_text.h"
#include "app/sheet/pan.h"
#include "app/tree/tree_view.h"
#include "gx/db/place/geometry.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "tests/support/counting_screen.h"
#include "tests/support/design_session.h"
#include "tests/support/raw_results.h"

namespace {
// Ten instances of the level below in each sheet, `levels` of them.
std::string ten_of_each(int levels) {
  std::string text = "symbol leaf\n pin A 0,0 IN\n prop CLASS=R\n";
  for (int level = 0; level <= levels; ++level) {
    const std::string name = level == 0 ? "top" : "l" + std::to_string(level);
    const std::string below = level == levels ? "leaf" : "l" + std::to_string(level + 1);
    if (level > 0) text += "symbol " + name + "\n pin A 0,0 IN\n";
    text += "sheet " + name + "\n page 60,20\n";
    for (int i = 0; i < 10; ++i)
      text +=
          " part X" + std::to_string(i) + " " + below + " " + std::to_string(4 * i + 4) + ",5\n";
  }
  return text;
}

std::vector<std::string> paths_shown(const kv_block_tree_t& tree) {
  std::vector<std::string> paths;
  for (const auto node : tree.rows) paths.push_back(kv_tree_path(tree, node));
  return paths;
}

// A sheet that contains itself ends at the deepest level that can be shown.
TEST(BlockTree, HoldsAHundredThousandOpenBlocksAndASheetInsideItself) {
  {
    design_session s(ten_of_each(5));
    kv_block_tree_t tree;
    kv_make_tree(tree);
    EXPECT_TRUE(kv_tree_open_all(tree, 0, true));
    EXPECT_EQ(tree.rows.size(), 111111U);
    EXPECT_EQ(kv_tree_path(tree, tree.rows.back()), "/X9/X9/X9/X9/X9");
    EXPECT_LE(sizeof(kv_tree_node_t), 24U);
  }
  design_session s(
      "symbol a\n pin A 0,0 IN\nsheet a\n part X1 a 5,5\n part X2 a 9,5\n"
      "sheet top\n part X1 a 5,5\n");
  kv_block_tree_t tree;
  kv_make_tree(tree);
  EXPECT_FALSE(kv_tree_open_all(tree, 0, true)) << "too many";
  EXPECT_LE(tree.nodes.size(), kv_most_tree_nodes);
  EXPECT_EQ(kv_tree_search(tree, 0, "none", true), -1);
}

TEST(BlockTree, OpensWhatIsAskedForAndFindsNamesInClosedBlocks) {
  design_session s(R"(
symbol leaf
  pin A 0,0 IN
symbol mid
  pin A 0,0 IN
symbol low
  pin A 0,0 IN
sheet top
  part M1 mid 5,5
  part R1 leaf 7,5
  part M12 mid 9,5
  part N1 low 15,5
  part GONE low 19,5
sheet mid
  part C1 low 5,5
  part C2 low 9,5
sheet low
  part R1 leaf 5,5
)");
  gx_set_object_deleted(s.file(), s.inst("GONE"), true);
  kv_block_tree_t tree;
  kv_make_tree(tree);
  EXPECT_EQ(paths_shown(tree), (lines_t{"", "/M1", "/M12", "/N1"}));
  const auto at = [&](const char* path) { return kv_tree_find(tree, path); };
  for (const char* path : {"/M12", "/M1/C2", "/M12/C1"})
    EXPECT_EQ(kv_tree_path(tree, at(path)), path);
  for (const char* path : {"/M", "/M123", "/M1/C", "/R1", "/N1/R1", "/M1/C1/R1"})
    EXPECT_EQ(at(path), -1) << path;
  EXPECT_EQ(at("/"), 0);
  EXPECT_EQ(at("m12/c1/"), at("/M12/C1"));
  EXPECT_EQ(kv_tree_depth(tree, 0), 0);
  EXPECT_EQ(kv_tree_depth(tree, at("/M12/C1")), 2);
  EXPECT_EQ(kv_tree_row(tree, at("/M12/C1")), -1) << "under a closed one";
  EXPECT_TRUE(kv_tree_has_blocks(tree, at("/M12")));
  EXPECT_FALSE(kv_tree_has_blocks(tree, at("/N1")));
  const auto next = [&](const char* from, const char* text, bool with_itself = false) {
    const auto found = kv_tree_search(tree, at(from), text, with_itself);
    return found < 0 ? "none" : kv_tree_path(tree, found);
  };
  EXPECT_EQ(next("/M1/C1", "c"), "/M1/C2");
  EXPECT_EQ(next("/M1/C2", "c"), "/M12/C1");
  EXPECT_EQ(next("/M12/C2", "1"), "/N1");
  EXPECT_EQ(next("/N1", "2"), "/M1/C2");
  EXPECT_EQ(next("/N1", "n1"), "/N1") << "round to itself";
  EXPECT_EQ(next("/M1", "m1", true), "/M1");
  EXPECT_EQ(next("/M1", "m1"), "/M12");
  EXPECT_EQ(next("/M1", "", true) + next("/M1", "r1", true), "nonenone") << "no device";
  EXPECT_TRUE(kv_tree_open_all(tree, at("/M12"), true));
  EXPECT_EQ(paths_shown(tree), (lines_t{"", "/M1", "/M12", "/M12/C1", "/M12/C2", "/N1"}));
  EXPECT_TRUE(kv_tree_open_all(tree, at("/M12"), false));
  kv_tree_open(tree, 0, false);
  kv_tree_reveal(tree, at("/M12/C2"));
  EXPECT_EQ(paths_shown(tree).size(), 6U);
  EXPECT_EQ(kv_tree_row(tree, at("/M12/C2")), 4);
  kv_tree_open_all(tree, 0, false);
  EXPECT_EQ(paths_shown(tree), lines_t{""});
}

constexpr char named[] = R"(
symbol mos
  line 0,0 0,4
  pin D 0,0 IN
  pin G 0,4 OUT
  prop CLASS=M
  prop MODEL=nch
symbol cell
  pin A 0,0 IN
symbol in
  pin A 0,0 OUT
  prop CLASS=PORTIN
sheet top
  page 40,20
  part XR cell 5,5
  net A
    wire XR.A 5,3 15,3
sheet cell
  page 40,20
  port A in 2,5
  part M1 mos 8,8
  net IN1
    wire A 8,5 M1.D
)";

TEST(Hints, SayTheFlatNameTheKindAndTheValueOfWhatIsThere) {
  design_session s(named);
  s.directory().write("a.raw",
                      raw_header("Transient Analysis", "real", "1",
                                 {"time\ttime", "v(a)\tvoltage", "@m.xr.m1[id]\tcurrent"}) +
                          double_bytes({0, 1.8, 2e-3}));
  const auto hint = [&](gx_pointreal_t at) { return kv_hint_lines(s.file(), at, 2000); };
  const auto middle_of = [&](int id) {
    const auto box = gx_object_abs_origin_bounds(s.file(), id, 0).bounds;
    return gx_pointreal_t{box.xmin / 2 + box.xmax / 2, box.ymin / 2 + box.ymax / 2};
  };
  const auto on_net = [&](const char* name) {
    const auto box = gx_object_abs_origin_bounds(s.file(), s.net(name), 0).bounds;
    return gx_pointreal_t{box.xmin / 2 + box.xmax / 2, box.ymin};
  };
  EXPECT_EQ(hint(on_net("A")), (lines_t{"/A", "net"}));
  EXPECT_EQ(hint({0, 0}), lines_t{});
  s.run("primitive class");
  s.run("view down XR");
  const auto pin = s.pin(s.inst("M1"), 1);
  const gx_pointreal_t at_pin = gx_pin_abs_origin(s.file(), pin.pinpropfam);
  EXPECT_EQ(hint(at_pin), (lines_t{"/XR/M1/D", "pin"}));
  EXPECT_EQ(hint(middle_of(s.inst("M1"))), (lines_t{"/XR/M1", "device mos  nch"}));
  EXPECT_EQ(hint(on_net("IN1")), (lines_t{"/XR/IN1", "net"}));
  for (const char* command : {"property instance s inst", "property pin s pin",
                              "property net s net", "run", "values file a.raw"})
    s.run(command);
  EXPECT_EQ(hint(on_net("IN1")), (lines_t{"/A", "net, here IN1", "1.8 V at 0"}));
  EXPECT_EQ(hint(at_pin), (lines_t{"/XR/M1/D", "pin on /A", "1.8 V at 0"}));
  EXPECT_EQ(hint(middle_of(s.inst("M1"))), (lines_t{"/XR/M1", "device mos  nch", "id 2 mA"}));
}

TEST(Hints, LieBesideThePointerWhereThereIsRoom) {
  std::string wires = "sheet top\n page 60,40\n";
  for (const auto& [name, x, y] : {std::tuple{"MIDDLE", 30, 20},
                                   {"RIGHT", 56, 20},
                                   {"LOW", 30, 39},
                                   {"ALONG_NAME_THAT_IS_CUT_AT_ITS_START", 2, 2}})
    wires += " net " + std::string(name) + "\n  wire " + std::to_string(x) + "," +
             std::to_string(y) + " " + std::to_string(x + 2) + "," + std::to_string(y) + "\n";
  design_session s(wires);
  gx_vext.bitmap_size = {1100, 880};  // letters 8 high
  for (const auto& viewport : set_viewports()) gx_viewport_create(viewport.bounds, viewport.border);
  kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
  const counting_screen screen;
  kv_show_hints(true);
  const int letter = 8 * gx_glyph_advance / gx_glyph_height;
  const auto& within = gx_viewport_rec(gx_vext.viewport_edit).clip_wind;
  const auto pixel_of = [&](const char* name) {
    const auto box = gx_object_abs_origin_bounds(s.file(), s.net(name), 0).bounds;
    return gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit,
                                        {box.xmin / 2 + box.xmax / 2, box.ymin});
  };
  const auto hint = [&](const char* name) {
    const auto pixel = pixel_of(name);
    counting_screen::areas.clear();
    kv_show_hint(pixel);
    EXPECT_TRUE(kv_pext.is_hint_shown) << name;
    const auto& shown = kv_pext.hint_box;
    EXPECT_EQ(counting_screen::areas, "+1 " + std::to_string(shown.xmin) + "," +
                                          std::to_string(shown.ymin) + " " +
                                          std::to_string(shown.xmax - shown.xmin + 1) + "x" +
                                          std::to_string(shown.ymax - shown.ymin + 1) + " ");
    const auto kept = counting_screen::areas.substr(1);
    kv_hide_hint();
    EXPECT_EQ(counting_screen::areas, "+" + kept + "-" + kept);
    return gx_bounds16_t{static_cast<std::int16_t>(shown.xmin - pixel.x),
                         static_cast<std::int16_t>(shown.ymin - pixel.y),
                         static_cast<std::int16_t>(shown.xmax - shown.xmin),
                         static_cast<std::int16_t>(shown.ymax - shown.ymin)};
  };
  const auto width = [&](int letters) { return static_cast<std::int16_t>(letters * letter + 10); };
  constexpr std::int16_t height = 3 * 8 + 10;
  EXPECT_EQ(hint("MIDDLE"), (gx_bounds16_t{14, 14, width(7), height}));
  kv_pan_by(gx_vext.viewport_edit, within.xmax - 60 - pixel_of("RIGHT").x, 0);
  EXPECT_EQ(hint("RIGHT"),
            (gx_bounds16_t{static_cast<std::int16_t>(-14 - width(6)), 14, width(6), height}));
  kv_pan_by(gx_vext.viewport_edit, 200, within.ymax - 20 - pixel_of("LOW").y);
  EXPECT_EQ(hint("LOW"),
            (gx_bounds16_t{14, static_cast<std::int16_t>(-14 - height), width(4), height}));
  const auto at = pixel_of("ALONG_NAME_THAT_IS_CUT_AT_ITS_START");
  kv_pan_by(gx_vext.viewport_edit, within.xmin + 100 - at.x, within.ymin + 100 - at.y);
  const int most = std::clamp((within.xmax - within.xmin) / 2 / letter - 4, 8, 58);
  EXPECT_EQ(hint("ALONG_NAME_THAT_IS_CUT_AT_ITS_START").xmax, width(std::min(most, 36)));
  kv_show_hints(false);
  kv_show_hint({500, 400});
  EXPECT_FALSE(kv_pext.is_hint_shown);
}

// The tree in a window of 1100 by 880 pixels: letters 8 high and 9 wide, rows of 18 pixels.
class ShownTree {
 public:
  explicit ShownTree(std::string_view description) : s(description) {
    gx_vext.bitmap_size = {1100, 880};
    for (const auto& viewport : set_viewports())
      gx_viewport_create(viewport.bounds, viewport.border);
    show();
  }
  void show() {
    kv_show_tree(true);
    gx_vext.viewport_id = gx_vext.viewport_tree;
    box = gx_viewport_rec(gx_vext.viewport_tree).pixel_bounds;
  }
  ~ShownTree() { kv_show_tree(false); }
  ShownTree(const ShownTree&) = delete;
  ShownTree& operator=(const ShownTree&) = delete;

  bool gesture(const gx_event_t& event) {
    return kv_tree_gesture(event, [&](std::string_view line) { command = line; });
  }
  bool key(std::uint32_t keysym, std::uint32_t modifiers = 0) {
    gx_event_t event;
    event.kind = gx_event_kind::key_press;
    event.code = keysym;
    event.modifiers = modifiers;
    return gesture(event);
  }
  bool button(gx_event_kind kind, int row, int clicks = 1, std::uint32_t modifiers = 0,
              int below = 0) {
    gx_event_t event;
    event.kind = kind;
    event.clicks = clicks;
    event.modifiers = modifiers;
    event.pixel = {static_cast<std::int16_t>(box.xmin + 20),
                   static_cast<std::int16_t>(box.ymin + 6 + 18 * row + below)};
    return gesture(event);
  }
  // On the row, or so many pixels below its beginning.
  void click(int row, int clicks = 1, std::uint32_t modifiers = 0, int below = 0) {
    EXPECT_TRUE(button(gx_event_kind::button1_down, row, clicks, modifiers, below));
    EXPECT_TRUE(button(gx_event_kind::button1_up, row, clicks, modifiers, below));
  }
  std::string chosen() {
    EXPECT_TRUE(key(XK_Return));
    return command;
  }
  void draw() {
    gx_pen_flush();
    counting_screen::forget();
    kv_draw_tree();
    gx_pen_flush();
  }
  int y_of(int row) const { return box.ymin + 6 + 18 * row; }
  // A text of a row, at that depth and so many letters after the knob.
  bool text(int row, int depth, int letters, std::string_view text, int color) const {
    return counting_screen::has_text(gx_vext.viewport_tree, text,
                                     box.xmin + 6 + 9 * (depth + 2 + letters), y_of(row) + 8, 8,
                                     color);
  }
  // "-", "+" or "" for the knob of a row.
  std::string knob(int row, int depth) const {
    const int x = box.xmin + 6 + 9 * depth, y = y_of(row) + 1;
    if (!counting_screen::has_box(4, x + 2, y + 4, 5, 1)) return "";
    EXPECT_TRUE(is_framed(4, x, y, x + 8, y + 8)) << row;
    return counting_screen::has_box(4, x + 4, y + 2, 1, 5) ? "+" : "-";
  }
  static bool is_framed(int color, int x0, int y0, int x1, int y1) {
    const auto has = [&](int xa, int ya, int xb, int yb) {
      return counting_screen::has_line(
          color, {static_cast<std::int16_t>(xa), static_cast<std::int16_t>(ya),
                  static_cast<std::int16_t>(xb), static_cast<std::int16_t>(yb)});
    };
    return has(x0, y0, x1, y0) && has(x1, y0, x1, y1) && has(x1, y1, x0, y1) && has(x0, y1, x0, y0);
  }
  // The frame of the row that is chosen or in view.
  bool is_marked(int row, int color) const {
    return is_framed(color, box.xmin + 2, y_of(row) - 4, box.xmax - 5, y_of(row) + 12);
  }

  design_session s;
  counting_screen screen;
  gx_bounds16_t box;
  std::string command;
};

constexpr char three_rows[] =
    "symbol leaf\n pin A 0,0 IN\n prop CLASS=R\nsymbol low\n pin A 0,0 IN\n"
    "sheet low\n part R leaf 4,4\nsymbol high\n pin A 0,0 IN\nsheet high\n part B low 4,4\n"
    "sheet top\n part A high 4,4\n part C low 4,9\n";

// Ninety blocks below the top; 34 rows of 18 pixels are shown.
TEST(TreeView, KeysWheelAndClicksMoveInTheRows) {
  std::string text =
      "symbol leaf\n pin A 0,0 IN\n prop CLASS=R\nsymbol sub\n pin A 0,0 IN\n"
      "sheet sub\n part R leaf 4,4\nsheet top\n page 60,120\n";
  for (int i = 10; i < 100; ++i)
    text += " part B" + std::to_string(i) + " sub 4," + std::to_string(i) + "\n";
  ShownTree tree(text);
  const auto key = [&](std::uint32_t keysym) { return tree.key(keysym); };
  const auto gesture = [&](const gx_event_t& event) { return tree.gesture(event); };
  // Where Return leads after these keys.
  const auto after = [&](std::initializer_list<std::uint32_t> keys) {
    for (const auto keysym : keys) EXPECT_TRUE(key(keysym));
    return tree.chosen();
  };
  const auto click = [&](int y) {
    tree.click(0, 1, 0, y);
    return tree.chosen();
  };
  EXPECT_EQ(after({}), "VIEW TREE / ");
  EXPECT_EQ(after({XK_Down, XK_Down}), "VIEW TREE /B11 ");
  EXPECT_EQ(after({XK_Up, XK_Up, XK_Up}), "VIEW TREE / ");
  EXPECT_EQ(click(18), "VIEW TREE /B10 ");
  EXPECT_EQ(click(18 - 4), "VIEW TREE /B10 ");  // from half a letter above it
  EXPECT_EQ(click(36 - 5), "VIEW TREE /B10 ");
  EXPECT_EQ(click(36 - 4), "VIEW TREE /B11 ");
  EXPECT_EQ(click(33 * 18), "VIEW TREE /B42 ");
  EXPECT_EQ(click(34 * 18), "VIEW TREE /B42 ");  // no row
  EXPECT_EQ(click(-5), "VIEW TREE /B42 ");
  EXPECT_EQ((key(XK_Next), click(0)), "VIEW TREE /B42 ");                // a page less a row
  EXPECT_EQ((key(XK_Next), key(XK_Next), click(0)), "VIEW TREE /B66 ");  // the last page
  EXPECT_EQ((key(XK_Prior), click(0)), "VIEW TREE /B33 ");
  EXPECT_EQ((key(XK_Prior), click(18)), "VIEW TREE /B10 ");
  gx_event_t wheel;
  wheel.kind = gx_event_kind::pointer_moved;
  wheel.wheel = -1;
  EXPECT_TRUE(gesture(wheel));
  EXPECT_EQ(click(0), "VIEW TREE /B12 ");
  wheel.wheel = 1;
  EXPECT_TRUE(gesture(wheel));
  EXPECT_EQ(click(18), "VIEW TREE /B10 ");
  wheel.wheel = 0;
  EXPECT_FALSE(gesture(wheel));
  // A search goes on from where it is, and round.
  EXPECT_EQ(after({'b', '4'}), "VIEW TREE /B40 ");
  EXPECT_EQ(after({XK_Tab}), "VIEW TREE /B41 ");
  EXPECT_EQ(after({XK_BackSpace, XK_BackSpace, '9'}), "VIEW TREE /B49 ");
  EXPECT_EQ(click(0), "VIEW TREE /B38 ");  // scrolled to a third of what is shown
  EXPECT_EQ(after({XK_Tab}), "VIEW TREE /B39 ");
  EXPECT_TRUE(key(XK_Escape));
  EXPECT_EQ((key(XK_Prior), click(33 * 18)), "VIEW TREE /B42 ");
  EXPECT_EQ(after({XK_Down}), "VIEW TREE /B43 ");
  EXPECT_EQ(click(0), "VIEW TREE /B32 ");
  for (int i = 0; i < 42; ++i) EXPECT_TRUE(key('~'));
  for (int i = 0; i < 40; ++i) EXPECT_TRUE(key(XK_BackSpace));
  EXPECT_FALSE(key(XK_BackSpace));
  EXPECT_TRUE(key(' '));
  EXPECT_TRUE(key(XK_Escape));
  EXPECT_FALSE(key(XK_Escape));
  EXPECT_FALSE(key(XK_BackSpace));
  EXPECT_FALSE(key(XK_F1));
  // The top closed, nothing else is left.
  EXPECT_EQ(after({'t', 'o', XK_Escape}), "VIEW TREE /B32 ");
  EXPECT_EQ((key(XK_Prior), click(0)), "VIEW TREE / ");
  EXPECT_EQ(after({XK_Down}), "VIEW TREE / ");
  EXPECT_EQ(after({XK_Right, XK_Down}), "VIEW TREE /B10 ");
  EXPECT_EQ(after({XK_Up, XK_Left, XK_Down}), "VIEW TREE / ");
  // It follows the sheet in view, and stays where it is while that does.
  EXPECT_EQ(after({XK_Right, XK_Down}), "VIEW TREE /B10 ");
  kv_follow_tree();
  EXPECT_EQ(after({}), "VIEW TREE /B10 ");
  EXPECT_EQ(kv_go_to("/B55", 0), "");
  kv_follow_tree();
  EXPECT_EQ(after({}), "VIEW TREE /B55 ");
  EXPECT_EQ(kv_go_to("/", 0), "");
  kv_follow_tree();
  EXPECT_EQ(after({}), "VIEW TREE / ");
  gx_vext.viewport_id = gx_vext.viewport_edit;
  EXPECT_FALSE(key(XK_Down));
}

// Three rows: the top, A with a block B below it, C.
TEST(TreeView, BlocksHaveTheNumberAndColourOfTheirFindings) {
  ShownTree tree(three_rows);
  const auto finding = [](const char* at, kv_severity severity) {
    kv_finding_t made;
    made.at = at;
    made.severity = severity;
    return made;
  };
  // Colours of the marks by row; red is 1, yellow 5.
  const auto marks = [&] {
    kv_show_tree(false);
    kv_show_tree(true);
    std::map<int, std::string> rows;
    tree.draw();
    for (const auto& [color, mark] : counting_screen::boxes)
      if (mark.width == 6 && mark.height == 6)
        rows[(mark.y - tree.y_of(0)) / 18] += std::to_string(color);
    std::string text;
    for (const auto& [row, colors] : rows) text += std::to_string(row) + ":" + colors + " ";
    return text;
  };
  EXPECT_EQ(marks(), "");
  kv_pext.findings = {finding("/A/B", kv_severity::warning), finding("/C", kv_severity::error),
                      finding("/C", kv_severity::warning)};
  EXPECT_EQ(marks(), "1:5 2:1 ");  // A for what is below it
  kv_pext.findings[1].waived = true;
  EXPECT_EQ(marks(), "1:5 2:5 ");
  kv_pext.findings = {finding("/", kv_severity::error)};
  EXPECT_EQ(marks(), "0:1 ");
}

TEST(TreeView, ARowHasItsKnobNameAndCell) {
  constexpr int white = 7, cyan = 4, red = 1;
  ShownTree tree(three_rows);
  const int green = gx_vext.color_obj_selected;
  EXPECT_TRUE(tree.key(XK_Down));
  tree.draw();
  EXPECT_EQ(tree.knob(0, 0) + tree.knob(1, 1) + tree.knob(2, 1), "-+");
  EXPECT_TRUE(tree.text(0, 0, 0, "/", green) && tree.text(0, 0, 2, "top", cyan));
  EXPECT_TRUE(tree.text(1, 1, 0, "A", white) && tree.text(1, 1, 2, "high", cyan));
  EXPECT_TRUE(tree.text(2, 1, 0, "C", white) && tree.text(2, 1, 2, "low", cyan));
  EXPECT_TRUE(tree.is_marked(0, green) && tree.is_marked(1, cyan));
  EXPECT_FALSE(tree.is_marked(2, cyan));
  EXPECT_TRUE(tree.key(XK_Right));
  EXPECT_TRUE(tree.key('b'));
  tree.draw();
  EXPECT_EQ(tree.knob(1, 1), "-");
  EXPECT_TRUE(tree.text(2, 2, 0, "B", white) && tree.text(3, 1, 0, "C", white));
  EXPECT_FALSE(tree.is_marked(1, cyan));
  EXPECT_TRUE(tree.is_marked(2, cyan));
  const auto searched = [&](const char* text, int color) {
    return counting_screen::has_text(gx_vext.viewport_tree, text, tree.box.xmin + 6,
                                     tree.box.ymax - 6, 8, color);
  };
  EXPECT_TRUE(searched("search: b", white));
  EXPECT_TRUE(tree.key('z'));
  tree.draw();
  EXPECT_TRUE(searched("search: bz  not found", red));
}

TEST(TreeView, LongNamesAreCutAndTheBarShowsWhereOneIs) {
  std::string text =
      "symbol leaf\n pin A 0,0 IN\n prop CLASS=R\nsymbol low\n pin A 0,0 IN\n"
      "sheet low\n part R leaf 4,4\nsheet top\n page 60,120\n";
  const std::string name = "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD";
  text += " part " + name + " low 4,4\n";
  for (int i = 11; i < 100; ++i)
    text += " part B" + std::to_string(i) + " low 4," + std::to_string(i) + "\n";
  ShownTree tree(text);
  const auto& box = tree.box;
  const auto fits = [&](int end) {
    const auto letters = static_cast<std::size_t>((end - (box.xmin + 6 + 27)) / 9);
    EXPECT_TRUE(tree.text(1, 1, 0, name.substr(0, letters), 7));
    return letters < name.size() && !tree.text(1, 1, 0, name.substr(0, letters + 1), 7);
  };
  const auto has_bar = [&](int way) {
    tree.draw();
    return counting_screen::has_box(4, box.xmax - 4, box.ymin + 6 + way, 2, 228);
  };
  EXPECT_TRUE(has_bar(0));  // 34 of 91 rows
  EXPECT_TRUE(fits(box.xmax - 6));
  EXPECT_TRUE(tree.key(XK_Next) && has_bar(222));
  EXPECT_TRUE(tree.key(XK_Next) && has_bar(384));
  EXPECT_TRUE(tree.text(33, 1, 0, "B99", 7)) << "the last row is the last one";
  // Numbers of findings end at the right, with a mark before them.
  kv_finding_t finding;
  finding.at = "/" + name;
  finding.severity = kv_severity::error;
  kv_pext.findings.assign(12, finding);
  kv_follow_tree();
  tree.draw();
  const int number = box.xmax - 6 - 2 * 9;
  EXPECT_TRUE(
      counting_screen::has_text(gx_vext.viewport_tree, "12", number, tree.y_of(1) + 8, 8, 1));
  EXPECT_TRUE(counting_screen::has_box(1, number - 6 - 4, tree.y_of(1) + 1, 6, 6));
  EXPECT_TRUE(fits(number - 6 - 9));
}

TEST(TreeView, ButtonsOpenGoToAndMayBeTakenBack) {
  ShownTree tree(three_rows);
  using enum gx_event_kind;
  const auto is_open = [&] {
    tree.draw();
    return tree.knob(1, 1) == "-";
  };
  EXPECT_FALSE(tree.button(button1_up, 1)) << "was not pressed";
  EXPECT_TRUE(tree.button(button1_down, 1) && tree.button(button1_up, 2)) << "on another row";
  EXPECT_TRUE(tree.button(button1_down, 9) && tree.button(button1_up, 9)) << "on no row";
  EXPECT_TRUE(tree.button(button1_down, 1));
  gx_vext.viewport_id = gx_vext.viewport_edit;
  EXPECT_TRUE(tree.button(button1_up, 1)) << "elsewhere";
  EXPECT_FALSE(tree.button(button1_down, 1) || tree.button(button1_up, 1));
  gx_vext.viewport_id = gx_vext.viewport_tree;
  EXPECT_EQ(tree.chosen(), "VIEW TREE / ");
  EXPECT_FALSE(is_open());
  tree.click(1);
  EXPECT_TRUE(is_open());
  tree.click(1);
  EXPECT_FALSE(is_open());
  tree.command.clear();
  tree.click(2);
  EXPECT_EQ(tree.command, "");
  tree.click(1, 2);
  EXPECT_EQ(tree.command, "VIEW TREE /C ") << "the one that the first click chose";
  tree.click(0, 1, 1);  // with shift: closes all, then opens all
  tree.draw();
  EXPECT_EQ(tree.knob(0, 0), "+");
  tree.click(0, 1, 1);
  EXPECT_TRUE(is_open());
  // Keys of commands, of a typed line and under a menu are not of the tree.
  EXPECT_FALSE(tree.key(XK_Down, 4) || tree.key(XK_Down, 8));
  gx_vext.str_cmd = gx_string("V");
  EXPECT_FALSE(tree.key(XK_Down));
  gx_vext.str_cmd = {};
  gx_vext.menu_drawn = true;
  EXPECT_FALSE(tree.key(XK_Down));
  gx_vext.menu_drawn = false;
  EXPECT_TRUE(tree.key(XK_Down, 1));
  gx_event_t other;
  other.kind = gx_event_kind::exposed;
  EXPECT_FALSE(tree.gesture(other));
}

TEST(TreeView, TakesTheLeftOfTheSheetAndGivesItBack) {
  ShownTree tree(three_rows);
  const auto& edit = gx_viewport_rec(gx_vext.viewport_edit);
  const auto count = gx_vext.viewport_id_max;
  EXPECT_EQ(edit.bounds_vp, (gx_boundsreal_t{25300, 500, 99600, 74900}));
  EXPECT_EQ(gx_viewport_rec(gx_vext.viewport_tree).bounds_vp,
            (gx_boundsreal_t{400, 500, 24900, 74900}));
  EXPECT_EQ(gx_viewport_rec(gx_vext.viewport_tree).pixel_bounds.xmin,
            set_viewports().front().bounds.xmin * 1100 / 100000);
  kv_show_tree(true);
  EXPECT_EQ(gx_vext.viewport_id_max, count);
  gx_vext.last_viewport_id = gx_vext.viewport_current = kv_pext.prev_viewport_id =
      gx_vext.viewport_id = gx_vext.viewport_tree;
  kv_show_tree(false);
  EXPECT_EQ(edit.bounds_vp, set_viewports().front().bounds);
  EXPECT_EQ(gx_vext.viewport_id_max, count - 1);
  for (const auto vpid : {gx_vext.last_viewport_id, gx_vext.viewport_current,
                          kv_pext.prev_viewport_id, gx_vext.viewport_id})
    EXPECT_EQ(vpid, gx_vext.viewport_edit);
  counting_screen::forget();
  kv_draw_tree();
  gx_pen_flush();
  EXPECT_TRUE(counting_screen::boxes.empty());
  EXPECT_FALSE(tree.key(XK_Down));
  auto& sheet = gx_viewport_rec(gx_vext.viewport_edit);
  sheet.bounds_vp.ymax = 60000;  // under a longer list
  tree.show();
  EXPECT_EQ(gx_viewport_rec(gx_vext.viewport_tree).bounds_vp.ymax, 60000);
}

TEST(TreeView, OtherPrimitivesMakeOtherBlocks) {
  ShownTree tree(
      "symbol low\n pin A 0,0 IN\n prop CLASS=R\nsheet low\nsheet top\n part X low 4,4\n");
  const auto first_block = [&] {
    EXPECT_TRUE(tree.key(XK_Down));
    return tree.chosen();
  };
  EXPECT_EQ(first_block(), "VIEW TREE /X ");
  tree.s.run("primitive class");
  kv_follow_tree();
  EXPECT_EQ(first_block(), "VIEW TREE / ");
}

}  // namespace
