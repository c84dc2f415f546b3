// The hands of a user at the event loop, without a window: what each key, each button and each turn
// of the wheel does.
#include "app/session/input/event_loop.h"

#include <X11/keysym.h>

#include <utility>

#include "app/sheet/views.h"
#include "gx/display/drawable_size.h"
#include "gx/display/input/keys.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "tests/support/counting_screen.h"
#include "tests/support/design_session.h"

namespace {
constexpr char sheet_with_block[] = R"(
symbol res
  rect -1,0 1,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
symbol low
  rect 0,0 4,4
  pin A 0,0 IN
sheet low
  page 20,20
sheet top
  page 40,20
  part R1 res 5,5
  part X1 low 25,5
  net A
    wire R1.1 5,3 15,3
)";

class Hands : public ::testing::Test {
 protected:
  void SetUp() override {
    gx_take_size(1101, 881);
    for (const auto& viewport : set_viewports())
      gx_viewport_create(viewport.bounds, viewport.border);
    gx_vext.nb_line_in_listviewp = 7;
    gx_vext.nb_list_line_max = 500;
    gx_vext.transcript_state = true;
    kv_set_default_bindings();
    for (const gx_vpid_t vpid : {gx_vext.viewport_edit, gx_vext.viewport_context})
      kv_display_picture_all(vpid, kv_pext.file_id_cur);
    at_ = middle(gx_vext.viewport_edit);
  }
  static gx_point16_t middle(gx_vpid_t vpid) {
    const auto& box = gx_viewport_rec(vpid).pixel_bounds;
    return {static_cast<std::int16_t>((box.xmin + box.xmax) / 2),
            static_cast<std::int16_t>((box.ymin + box.ymax) / 2)};
  }
  // Of the drawing's own units, in the edit viewport.
  static gx_point16_t pixel(int x, int y) {
    return gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, {x * 5000, y * 5000});
  }
  static void bind(const std::string& key, const std::string& command) {
    EXPECT_TRUE(gx_set_key_action(key, command)) << key;
  }

  // --- what the user does
  gx_event_t& add(gx_event_kind kind, std::uint32_t modifiers = 0) const {
    auto& event = counting_screen::events.emplace_back();
    event.kind = kind;
    event.modifiers = modifiers;
    event.pixel = at_;
    event.pressed = pressed_;
    return event;
  }
  void key(std::uint32_t keysym, std::uint32_t modifiers = 0) const {
    add(gx_event_kind::key_press, modifiers).code = keysym;
    add(gx_event_kind::key_release, modifiers).code = keysym;
  }
  void type(std::string_view text) const {
    for (const char c : text) key(c == '\n' ? XK_Return : static_cast<std::uint32_t>(c));
  }
  void move(gx_point16_t to) {
    at_ = to;
    add(gx_event_kind::pointer_moved);
  }
  void turn(int wheel, std::uint32_t modifiers = 0) const {
    add(gx_event_kind::pointer_moved, modifiers).wheel = wheel;
  }
  void paste(const std::string& text) const { add(gx_event_kind::pasted).text = text; }
  void button(gx_event_kind kind, int clicks = 0, std::uint32_t modifiers = 0) {
    if (static_cast<int>(kind) % 2 == 0) pressed_ = at_;
    add(kind, modifiers).clicks = clicks;
  }
  void click(gx_point16_t to, int clicks, std::uint32_t modifiers = 0) {
    at_ = to;
    button(gx_event_kind::button1_down, 0, modifiers);
    button(gx_event_kind::button1_up, clicks, modifiers);
  }
  // What is answered to that.
  lines_t answers() {
    kv_process_events(true, args_, vars_);
    return s.run("");
  }

  design_session s{sheet_with_block};
  counting_screen screen;
  kv_array_param_t args_, vars_;
  gx_point16_t at_, pressed_;
};

TEST_F(Hands, EachKeyRunsItsOwnBinding) {
  const std::pair<std::string, std::uint32_t> keys[] = {{"f1", XK_F1},   {"f12", XK_F12},
                                                        {"au", XK_Up},   {"al", XK_Left},
                                                        {"ad", XK_Down}, {"ar", XK_Right}};
  const std::pair<std::string, std::uint32_t> modifiers[] = {{"", 0}, {"s", 1}, {"c", 4}, {"a", 8}};
  lines_t expected;
  for (const auto& [name, keysym] : keys) {
    for (const auto& [letter, modifier] : modifiers) {
      for (const std::string& up : {std::string(), std::string("u")}) {
        if (name[0] == 'a' && !up.empty()) continue;
        bind(name + up + letter, "har " + name + up + letter);
        expected.push_back(" HARDcopy " + name + up + letter + " ");
      }
      key(keysym, modifier);
    }
    key(keysym, 5);
  }
  for (const char letter : {'n', 'z'}) bind(std::string("cntl_") + letter, "har control");
  bind("cntl_f", "har f");
  for (const char letter : {'n', 'Z', 'f', 'm', '{'}) key(static_cast<std::uint32_t>(letter), 4);
  for (const char* answer : {" HARDcopy control ", " HARDcopy control ", " HARDcopy f "})
    expected.emplace_back(answer);
  for (const std::uint32_t keysym : {XK_F1 - 1, XK_F12 + 1, XK_Prior, XK_Next}) key(keysym);
  gx_vext.CapsLockState = 0;
  for (int i = 0; i < 2; ++i)
    expected.emplace_back("!! Warning : Your Caps Lock Key in ON , So RELEASE IT FIRST Please !! ");
  EXPECT_EQ(answers(), expected);
}

TEST_F(Hands, ControlCAndDAndTheDesktopEndTheSession) {
  for (const auto& [letter, last] : {std::pair{'c', " BYE "}, {'D', " QUIT "}, {' ', " BYE "}}) {
    if (letter == ' ') {
      at_ = {-5, -5};
      add(gx_event_kind::close_asked);
    } else {
      key(static_cast<std::uint32_t>(letter), 4);
    }
    type("har never\n");
    EXPECT_EQ(answers(), lines_t{last});
    counting_screen::events.clear();
  }
}

TEST_F(Hands, ALineIsTypedEditedAndRun) {
  type("ar 2");
  key('a', 4);
  type("h");
  key('e', 4);
  type("34");
  key(XK_BackSpace);
  type("5\n");
  type("har 6 x");
  key('A', 4);
  key('k', 4);
  type("\n");  // nothing is left to run
  type("har 7");
  key(XK_Escape);
  type("\n");
  type("har ~!{");
  for (const std::uint32_t keysym : {31, 127}) key(keysym);
  key(XK_Linefeed);
  type("gri");
  key('/', 4);
  type("\n");
  paste("ha\tr \x7f~ 8\nbye\n");
  key('a', 4);
  key('e', 4);
  key(XK_BackSpace);
  key(XK_BackSpace);
  key(XK_BackSpace);
  type("\n");
  bind("cntl_w", "$CUTW");
  bind("cntl_u", "$CUT");
  type("har 9 and more");
  key('w', 4);
  key('w', 4);
  type("\nlost");
  key('u', 4);
  type(" 10");
  key('a', 4);
  type("haXr");
  key(XK_BackSpace);
  key(XK_BackSpace);
  type("r\n");
  EXPECT_EQ(answers(), (lines_t{" HARDcopy 235 ", " HARDcopy ~!{ ", " GRID ON ", " HARDcopy ",
                                " HARDcopy 9 ", " HARDcopy 10 "}));
  type(std::string(200, 'x'));
  answers();
  EXPECT_EQ(gx_vext.str_cmd.len, 194);
  paste(std::string(20, 'y'));
  answers();
  EXPECT_EQ(gx_vext.str_cmd.len, 194);
}

TEST_F(Hands, TabCompletesWhatHasOneWayOn) {
  bind("tab", "$TAB");
  s.directory().write("some_commands", "");
  s.directory().write("some/other", "");
  s.directory().write(".hidden", "");
  const std::pair<const char*, const char*> cases[] = {
      {"fin", "FINd "},
      {"find p", "find PATh "},
      {"smash on; vie", "smash on; VIEw "},
      {"find path /r", "find path /R1 "},
      {"find path /r1/1", "find path /r1/1 "},
      {"explain net /a i /x", "explain net /a i /X1/"},
      {"view down ", "view down X1 "},
      {"do so", "do some"},
      {"do some_", "do some_commands "},
      {"do some/", "do some/other "},
      {"do .h", "do .hidden "},
      {"zzz", "zzz"}};
  for (const auto& [typed, completed] : cases) {
    gx_set_command_line("");
    type(typed);
    key(XK_Tab);
    EXPECT_EQ(answers(), lines_t{}) << typed;
    EXPECT_EQ(gx_view(gx_vext.str_cmd), completed);
  }
  // Several are listed; what is after the caret stays.
  gx_set_command_line("snap o");
  key(XK_Tab);
  EXPECT_EQ(answers(), lines_t{"# ON OFF"});
  gx_set_command_line("fi path /R1", 3);
  key(XK_Tab);
  answers();
  EXPECT_EQ(gx_view(gx_vext.str_cmd), "FINd  path /R1");
}

// In their own viewports the keys act on the character under the pointer.
TEST_F(Hands, KeysThatEditActWhereThePointerIs) {
  const auto& box = gx_viewport_rec(gx_vext.viewport_cmd).pixel_bounds;
  const auto line_after = [&](std::uint32_t keysym) {
    gx_set_command_line("abcdef");
    move({static_cast<std::int16_t>(box.xmin + 12 * 9 + 6), middle(gx_vext.viewport_cmd).y});
    key(keysym);
    answers();
    return std::string(gx_view(gx_vext.str_cmd));
  };
  EXPECT_EQ(line_after(XK_BackSpace), "abcef");
  EXPECT_EQ(line_after(XK_Delete), "abcdf");
  EXPECT_EQ(line_after(0xFF73), "abcdf");
  at_ = middle(gx_vext.viewport_list);
  at_.y = static_cast<std::int16_t>(gx_viewport_rec(gx_vext.viewport_list).pixel_bounds.ymin + 2);
  for (const std::uint32_t keysym : {std::uint32_t{XK_Insert}, 0xFF72U}) {
    gx_set_command_line("");
    for (int i = 0; i < 7; ++i) s.run("har " + std::string(80, 'y'));
    key(keysym);
    answers();
    EXPECT_EQ(gx_view(gx_vext.str_cmd), std::string(57, 'y') + " ");
  }
}

TEST_F(Hands, AQuestionWaitsForItsAnswer) {
  type("readln $VAR2 name?\n");
  type("joe\n");
  type("har $VAR2\n");
  EXPECT_EQ(answers(), (lines_t{" READln $VAR2 name? joe ", " HARDcopy joe "}));
  // What is bound to Escape leaves the question.
  bind("esc", "har away");
  s.directory().write("asks", "readln $VAR2 name?\nhar next\n");
  type("do asks\n");
  key(XK_Escape);
  type("x\n");
  EXPECT_EQ(answers(), (lines_t{"# DO asks ", " HARDcopy away ", " HARDcopy next ", "# End of DO ",
                                " READln $VAR2 name? x "}));
  // The end of the session is that of the question; the file is read to its end.
  type("do asks\n");
  key('c', 4);
  type("har never\n");
  EXPECT_EQ(answers(), (lines_t{"# DO asks ", " BYE ", " HARDcopy next ", "# End of DO "}));
}

TEST_F(Hands, ThePointerHasAShapeInEachViewport) {
  counting_screen::pointers.clear();
  for (const gx_vpid_t vpid : {gx_vext.viewport_list, gx_vext.viewport_cmd, gx_vext.viewport_edit,
                               gx_vext.viewport_context, gx_vext.viewport_context})
    move(middle(vpid));
  kv_process_events(true, args_, vars_);
  EXPECT_EQ(counting_screen::pointers, "6 8 2 7 ");
  // A command shows the watch while it runs.
  counting_screen::pointers.clear();
  s.run("har 1;har 2");
  EXPECT_EQ(counting_screen::pointers, "9 7 7 7 ");
}

TEST_F(Hands, ARestingPointerIsPutOntoItsPlace) {
  // As if the place were five pixels to the right.
  const auto rest = [&](gx_vpid_t vpid) {
    counting_screen::put.clear();
    at_ = middle(vpid);
    add(gx_event_kind::pointer_at_rest);
    answers();
    return counting_screen::put;
  };
  const auto right_of = [](gx_point16_t pixel) {
    return std::to_string(pixel.x + 5) + "," + std::to_string(pixel.y) + " ";
  };
  gx_vext.snap_state = true;
  for (const gx_vpid_t vpid :
       {gx_vext.viewport_edit, gx_vext.viewport_context, gx_vext.viewport_cmd})
    EXPECT_EQ(rest(vpid), right_of(middle(vpid)));
  EXPECT_EQ(rest(gx_vext.viewport_list), "");
  gx_vext.pointer_put = middle(gx_vext.viewport_edit);  // there already
  EXPECT_EQ(rest(gx_vext.viewport_edit), "");
  gx_vext.snap_state = false;
  EXPECT_EQ(rest(gx_vext.viewport_context), "");
  // Lost for long it is put into the edit viewport.
  counting_screen::put.clear();
  at_ = {-5, -5};
  for (const int lost : {20, 20, 21}) {
    EXPECT_EQ(counting_screen::put, "");
    for (int i = 0; i < lost; ++i) add(gx_event_kind::key_press).code = 'x';
    const auto kept = std::exchange(at_, middle(gx_vext.viewport_edit));
    key(XK_Escape);
    at_ = kept;
    answers();
  }
  const auto centre = middle(gx_vext.viewport_edit);
  EXPECT_EQ(counting_screen::put, std::to_string(centre.x) + "," + std::to_string(centre.y) + " ");
}

TEST_F(Hands, TheWheelZoomsScrollsOrRunsItsBinding) {
  const auto scale = [](gx_vpid_t vpid) { return gx_viewport_rec(vpid).object_scale; };
  for (const gx_vpid_t vpid : {gx_vext.viewport_edit, gx_vext.viewport_context}) {
    const bool is_edit = vpid == gx_vext.viewport_edit;
    kv_pext.last_views.clear();
    const auto before = scale(vpid);
    at_ = middle(vpid);
    turn(1);
    answers();
    EXPECT_EQ(scale(vpid), before * 4 / 5);
    EXPECT_EQ(kv_pext.last_views.size(), is_edit ? 1U : 0U);
    turn(-1);
    answers();
    EXPECT_EQ(scale(vpid), before * 4 / 5 * 5 / 4);
    for (const auto* name : {"wu", "wd", "wus", "wds"}) bind(name, std::string("har ") + name);
    turn(1);
    turn(-1, 1);
    turn(1, 1);
    turn(-1);
    EXPECT_EQ(answers(),
              (lines_t{" HARDcopy wu ", " HARDcopy wds ", " HARDcopy wus ", " HARDcopy wd "}));
    EXPECT_TRUE(kv_pext.hands.turns_wheel);
    type(" ");
    answers();
    EXPECT_FALSE(kv_pext.hands.turns_wheel);
    for (const auto* name : {"wu", "wd", "wus", "wds"}) bind(name, " ");
  }
  for (int i = 0; i < 40; ++i) s.run("har");
  at_ = middle(gx_vext.viewport_list);
  const auto first = gx_vext.nlinlist_disp;
  turn(1);
  turn(1);
  turn(-1);
  answers();
  EXPECT_EQ(first - gx_vext.nlinlist_disp, 3);
  s.run("har");  // a command shows its answer
  EXPECT_EQ(gx_vext.nlinlist_disp, first + 1);
}

TEST_F(Hands, ClicksSelectAndWalk) {
  const std::string r1 = "I_" + std::to_string(s.inst("R1"));
  const std::string net = "N_" + std::to_string(s.net("A"));
  const auto clicked = [&](gx_point16_t at, int clicks, std::uint32_t modifiers = 0) {
    click(at, clicks, modifiers);
    lines_t lines = answers();
    std::erase_if(lines, [](const auto& line) {
      return line.starts_with(" MARK ") || line.starts_with(" VIEw AREa ");
    });
    return lines;
  };
  EXPECT_EQ(clicked(pixel(5, 7), 1), lines_t{" SELect OBJect Edit " + r1 + " "});
  EXPECT_EQ(clicked(pixel(5, 7), 1), lines_t{}) << "it is selected";
  EXPECT_EQ(clicked(pixel(12, 3), 1, 1), lines_t{" SELect OBJect Edit " + net + " "});
  EXPECT_EQ(s.selected().size() >= 2, true);
  EXPECT_EQ(clicked(pixel(5, 7), 1), lines_t{" SELect OBJect Edit " + r1 + " "});
  EXPECT_FALSE(gx_inq_object_selected(s.file(), s.net("A")));
  EXPECT_EQ(clicked(pixel(5, 7), 0), lines_t{}) << "a drag";
  // Two pixels from a wire mean it.
  auto beside = pixel(13, 3);
  beside.y = static_cast<std::int16_t>(beside.y + 3);
  EXPECT_EQ(clicked(beside, 1), lines_t{});
  --beside.y;
  EXPECT_EQ(clicked(beside, 1), lines_t{" SELect OBJect Edit " + net + " "});
  EXPECT_EQ(
      clicked(pixel(27, 7), 2),
      (lines_t{" SELect OBJect Edit I_" + std::to_string(s.inst("X1")) + " ", " VIEw DOWn  X1"}));
  EXPECT_EQ(clicked(middle(gx_vext.viewport_edit), 2, 1), lines_t{" VIEw UP  "});
  EXPECT_EQ(clicked(pixel(35, 15), 2), lines_t{});
}

// A click goes to what a line of the list says, a double click to the name under the pointer.
TEST_F(Hands, AClickInTheListGoesToWhatItNames) {
  s.run("har '# X1: /R1 '");
  const auto& box = gx_viewport_rec(gx_vext.viewport_list).pixel_bounds;
  const auto column = [&](int n) {
    return gx_point16_t{static_cast<std::int16_t>(box.xmin + (n - 1) * gx_vext.cmd_step + 3),
                        static_cast<std::int16_t>(box.ymin + 2)};
  };
  const auto clicked = [&](gx_point16_t at, int clicks) {
    click(at, clicks);
    std::string found;
    for (const auto& line : answers()) found += line.substr(0, line.find("  "));
    return found;
  };
  EXPECT_EQ(clicked(column(14), 1), " FINd PATh /R1");
  EXPECT_EQ(clicked(column(14), 2), " FINd PATh /X1");
  EXPECT_EQ(clicked(column(14), 0), "");
}

TEST_F(Hands, AButtonMayRunItsCommandsForDragsOnly) {
  bind("b3", "$DRAG har b3");
  bind("b3u", "$DRAG har b3u");
  bind("b1", "$DRAG $PAN");
  bind("b1u", " ");
  const auto drag = [&](gx_event_kind down, int pixels) {
    button(down);
    move({static_cast<std::int16_t>(at_.x + pixels), at_.y});
    button(static_cast<gx_event_kind>(static_cast<int>(down) + 1));
  };
  drag(gx_event_kind::button3_down, 4);
  EXPECT_EQ(answers(), (lines_t{" HARDcopy b3 ", " HARDcopy b3u "}));
  EXPECT_EQ(gx_vext.pixel_pos, at_);
  // Not far enough: a click, which opens the menu. The next one is the menu's and chooses nothing.
  drag(gx_event_kind::button3_down, 3);
  EXPECT_EQ(answers(), lines_t{});
  EXPECT_TRUE(gx_vext.menu_drawn);
  drag(gx_event_kind::button3_down, 3);
  click(at_, 1);
  EXPECT_EQ(answers(), lines_t{});
  EXPECT_FALSE(gx_vext.menu_drawn);
  // The release of another button ends it.
  button(gx_event_kind::button3_down);
  at_.x += 9;
  button(gx_event_kind::button2_up);
  button(gx_event_kind::button3_up);
  EXPECT_EQ(answers(), lines_t{" HARDcopy b3 "});
  // What a press is bound to is done where it was.
  bind("b3", "$DRAG mark");
  bind("b3u", "$DRAG mark");
  drag(gx_event_kind::button3_down, 30);
  const auto marks = answers();
  at_.x -= 30;
  move(at_);
  type("mark\n");
  move({static_cast<std::int16_t>(at_.x + 30), at_.y});
  type("mark\n");
  EXPECT_EQ(answers(), marks);
  bind("b2", "har menu");
  at_ = middle(gx_vext.viewport_list);
  button(gx_event_kind::button2_down, 0, 1);
  EXPECT_EQ(answers(), lines_t{" HARDcopy menu "});
  at_ = middle(gx_vext.viewport_edit);
  const auto left = [] { return gx_viewport_rec(gx_vext.viewport_edit).bounds_part.xmin; };
  const auto scale = gx_viewport_rec(gx_vext.viewport_edit).object_scale;
  const auto before = left();
  drag(gx_event_kind::button1_down, 10);
  answers();
  EXPECT_EQ(before - left(), 10 * scale);
  button(gx_event_kind::button2_down, 0, 1);
  move({static_cast<std::int16_t>(at_.x - 4), at_.y});
  at_.x -= 3;
  button(gx_event_kind::button2_up);
  answers();
  EXPECT_EQ(before - left(), 3 * scale);
}
}  // namespace
