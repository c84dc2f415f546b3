// Key names, the menu tree and its file, the defaults of a session, and the commands that define
// and show keys and menus, to the letter; without a display.
#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "app/session/input/event_loop.h"
#include "gx/display/input/keys.h"
#include "gx/display/input/menu_file.h"
#include "gx/display/input/menu_state.h"
#include "gx/display/input/menu_tree.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "gx/window/key_lookup.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/scratch_directory.h"
#include "tests/support/session_capture.h"

namespace {

std::string action(std::string_view name) {
  gx_string_record_t found;
  return gx_get_key_action(name, found) ? std::string(gx_view(found)) : "unknown";
}

class KeysAndMenus : public testing::Test {
 protected:
  KeysAndMenus() {
    gx_reset_state();
    setenv("VELMORAN", directory_.path().c_str(), 1);
  }
  ~KeysAndMenus() override {
    unsetenv("VELMORAN");
    gx_reset_state();
  }
  std::string path(const std::string& name) const { return directory_.file(name).string(); }
  void read_menu(const std::string& text) const {
    directory_.write("menu", text);
    gx_read_menu(path("menu"));
  }
  std::string printed() const {
    gx_print_menu(path("printed"));
    return directory_.read("printed");
  }
  // The last lines of the message list.
  static lines_t shown(int count) {
    lines_t last;
    for (int n = gx_vext.nlinlist_end - count; n < gx_vext.nlinlist_end; ++n) {
      last.emplace_back(n < 0 ? "" : gx_view(gx_vext.line_list[static_cast<std::size_t>(n)]));
    }
    return last;
  }
  scratch_directory directory_;
};

std::string text_at(std::vector<int> index) {
  const gx_menu_rec_t record = gx_get_menu_rec(index);
  return std::string(gx_view(record.str)) + "|" +
         (record.cmd_on ? std::string(gx_view(record.cmd)) : "-");
}

TEST_F(KeysAndMenus, EachKeyNameHasItsOwnSlot) {
  const std::pair<const char*, gx_string_record_t*> slots[] = {
      {"f1", &gx_vext.action_f[0]},        {"F12", &gx_vext.action_f[11]},
      {"f1S", &gx_vext.action_fs[0]},      {"f10c", &gx_vext.action_fc[9]},
      {"f9a", &gx_vext.action_fa[8]},      {"f1u", &gx_vext.action_fup[0]},
      {"f2us", &gx_vext.action_fsup[1]},   {"f11UC", &gx_vext.action_fcup[10]},
      {"f12ua", &gx_vext.action_faup[11]}, {"au", &gx_vext.action_a[0]},
      {"als", &gx_vext.action_as[1]},      {"adc", &gx_vext.action_ac[2]},
      {"ara", &gx_vext.action_aa[3]},      {"aua", &gx_vext.action_aa[0]},
      {"b1", &gx_vext.action_but[0]},      {"B1U", &gx_vext.action_but[1]},
      {"b2", &gx_vext.action_but[2]},      {"b2u", &gx_vext.action_but[3]},
      {"b3", &gx_vext.action_but[4]},      {"b3u", &gx_vext.action_but[5]},
      {"cntl_n", &gx_vext.action_ck[0]},   {"CNTL_Z", &gx_vext.action_ck[12]},
      {"tab", &gx_vext.action_other[0]},   {"cntl_f", &gx_vext.action_other[2]},
      {"WU", &gx_vext.action_other[3]},    {"wds", &gx_vext.action_other[6]}};
  for (const auto& [name, slot] : slots) {
    EXPECT_TRUE(gx_set_key_action(name, std::string("run ") + name)) << name;
    EXPECT_EQ(gx_view(*slot), std::string("run ") + name);
    EXPECT_EQ(action(name), std::string("run ") + name);
  }
  EXPECT_TRUE(gx_set_key_action("B2", "menu"));
  EXPECT_EQ(action("B2"), "unknown");
  EXPECT_EQ(action("B3"), "unknown");
  EXPECT_EQ(action("b2"), "menu");
}

TEST_F(KeysAndMenus, OtherNamesAreNoKeys) {
  for (const char* name : {"",    "f",     "a",      "b",       "f0",    "f00", "f01",  "f13",
                           "f1x", "f1su",  "f1uu",   "b0",      "b4",    "b1s", "b1uu", "as",
                           "uua", "cntl_", "cntl_m", "cntl_nn", "cntln", "f1 ", " f1"}) {
    EXPECT_FALSE(gx_set_key_action(name, "x")) << name;
    EXPECT_EQ(action(name), "unknown") << name;
  }
}

TEST_F(KeysAndMenus, PadKeysAndDeadAccentsTypeWhatTheyShow) {
  const struct {
    KeySym key;
    const char* text;
    KeySym meaning;
  } cases[] = {{XK_KP_7, "7", '7'},       {XK_KP_Decimal, ",", ','},
               {XK_KP_Add, "+", '+'},     {XK_KP_Enter, "\r", XK_Return},
               {XK_KP_Left, "", XK_Left}, {XK_dead_circumflex, "", '^'},
               {XK_dead_tilde, "", '~'},  {XK_eacute, "\xE9", XK_eacute},
               {'z', "z", 'z'},           {XK_F3, "", XK_F3}};
  for (const auto& c : cases) EXPECT_EQ(xplainkey(c.key, c.text), c.meaning) << c.key;
}

TEST_F(KeysAndMenus, ThePlaceInTheTreeFollowsFromTheOrderOfTheLines) {
  read_menu(
      "# a comment\n"
      "1 'ONE' \n"
      "1'TWO' 'run two'\n"
      "2   noise 'TWO ONE' more ' cmd ; x '\n"
      "4 'DEEP'\n"           // (2,1,1,1): counters of the levels passed over are 1
      "3 'NEXT'\n"           // shallower: (2,1,2)
      "2 'TWO TWO' 'half\n"  // no second quote: no command
      "3 'BELOW'\n"
      "1 'THREE'\n"
      "2 'A label of twenty-five ch' 'c'\n");
  EXPECT_EQ(text_at({1}), "ONE|-");
  EXPECT_EQ(text_at({2}), "TWO|run two");
  EXPECT_EQ(text_at({2, 1}), "TWO ONE| cmd ; x ");
  EXPECT_EQ(text_at({2, 1, 1, 1}), "DEEP|-");
  EXPECT_EQ(text_at({2, 1, 2}), "NEXT|-");
  EXPECT_EQ(text_at({2, 2}), "TWO TWO|-");
  EXPECT_EQ(text_at({2, 2, 1}), "BELOW|-");
  EXPECT_EQ(text_at({3}), "THREE|-");
  EXPECT_EQ(text_at({3, 1}), "A label of twenty-|c");
  EXPECT_EQ(gx_vext.num_errors, 0);
}

TEST_F(KeysAndMenus, AFileReadsBackAsItWasWritten) {
  const std::string written =
      "1 'FIRST' \n"
      "2   'SUB'  ' DEF KEY B1 \"mark rect\" ' \n"
      "3     'SUBSUB' \n"
      "4       'LEAF'  'view all' \n"
      "2   'OTHER' \n"
      "1 'LAST'  '' \n";
  read_menu(written);
  EXPECT_EQ(printed(), written);

  // Gaps close up.
  gx_clear_menus();
  gx_def_menu_rec(std::array{1}, "one", false, "");
  gx_def_menu_rec(std::array{3}, "three", true, "c");
  gx_read_menu((printed(), path("printed")));
  EXPECT_EQ(text_at({1}), "one|-");
  EXPECT_EQ(text_at({2}), "three|c");
  EXPECT_EQ(text_at({3}), "|-");

  // The session's own tree survives the way through a file.
  kv_set_default_menus();
  const std::string defaults = printed();
  gx_read_menu(path("printed"));
  EXPECT_EQ(printed(), defaults);
}

TEST_F(KeysAndMenus, ABadLineEndsTheReadingWithItsMessage) {
  gx_vext.transcript_state = true;
  gx_vext.nb_list_line_max = 500;
  const struct {
    const char *line, *message;
  } cases[] = {
      {"5 'X'", "# !!!   invalid menu level : \"5 'X'\""},
      {"", "# !!!   invalid menu level : \"\""},
      {" 1 'X'", "# !!!   invalid menu level : \" 1 'X'\""},
      {"1 X", "# !!!   invalid menu disp string: \"1 X\""},
      {"1 'X", "# !!!   invalid menu disp string: \"1 'X\""},
  };
  int errors = 0;
  for (const auto& c : cases) {
    read_menu(std::string("1 'KEPT'\n") + c.line + "\n1 'NOT READ'\n");
    EXPECT_EQ(shown(2), (lines_t{"# $rmenu ", c.message}));
    EXPECT_EQ(gx_vext.num_errors, ++errors);
    EXPECT_EQ(text_at({1}), "KEPT|-");
    EXPECT_EQ(text_at({2}), "|-");
  }
  gx_read_menu("");
  EXPECT_EQ(gx_vext.num_errors, errors);
  gx_read_menu("/no/such");
  EXPECT_EQ(shown(2), (lines_t{"# $rmenu ", "# !!! error : file not found : \"/no/such\""}));
  EXPECT_EQ(text_at({1}), "KEPT|-");
  gx_print_menu("/no/such/file");
  EXPECT_EQ(shown(2), (lines_t{"# $pmenu ",
                               "# !!! error : impossible to open the file : \"/no/such/file\""}));
  EXPECT_EQ(gx_vext.num_errors, errors + 2);
  gx_print_menu("/dev/full");
  EXPECT_EQ(gx_vext.num_errors, errors + 3);
}

TEST_F(KeysAndMenus, ALineWithoutAPlaceInTheTreeEndsTheReading) {
  gx_vext.nb_list_line_max = 500;
  int errors = 0;
  const auto expect_refused = [&](const std::string& text, const std::string& line) {
    read_menu(text);
    EXPECT_EQ(shown(2), (lines_t{"# $rmenu ", "# !!!   no place in the menu : \"" + line + "\""}));
    EXPECT_EQ(gx_vext.num_errors, ++errors);
  };
  for (const std::string first : {"2 'A'", "3 'A'", "4 'A'"})
    expect_refused(first + "\n1 'B'\n", first);
  EXPECT_EQ(text_at({1}), "|-");
  std::string thirteen = "1 'A'\n";
  for (int i = 1; i <= 13; ++i) thirteen += "2 'B" + std::to_string(i) + "'\n";
  expect_refused(thirteen, "2 'B13'");
  EXPECT_EQ(text_at({1, 12}), "B12|-");

  const int far[] = {1, 12, 0};
  expect_stop([&] { gx_ptrto_menu_rec(far); }, gx_code::invalid_level,
              "gx_ptrto_menu3_rec : level 3 : 0  12");
  EXPECT_EQ(text_at({1, 12, 0}), "|-");
  EXPECT_EQ(text_at({13}), "|-");
}

TEST_F(KeysAndMenus, AFreshSessionHasItsBindingsAndMenus) {
  gx_vext.bitmap_size = {2048, 1536};
  kv_init_menu_action();
  EXPECT_EQ(action("f2"), "UNSELECT ALL  ");
  EXPECT_EQ(action("f4"), " ");
  EXPECT_EQ(action("f4s"), "COMMAND \"CHANGE PROPERTY VALUE \" ");
  EXPECT_EQ(action("f2u"), "");
  EXPECT_EQ(action("f4u"), " ");
  EXPECT_EQ(action("f1ua"), "SELECT AREA FRAME  ");
  EXPECT_EQ(action("ara"), "$VPTR20 ");
  EXPECT_EQ(action("b2u"), "$XIM ");
  EXPECT_EQ(action("cntl_o"), "");
  EXPECT_EQ(action("cntl_y"), "BYE ");
  EXPECT_EQ(text_at({2}), "EDIT|-");
  EXPECT_EQ(text_at({3, 6}), "VIEW ALL |view all ");
  const auto& v = gx_vext;
  EXPECT_EQ(v.base_point, (gx_pointreal_t{512, 290}));
  EXPECT_EQ(v.obj_pos, v.base_point);
  EXPECT_EQ(v.viewport_id, v.viewport_edit);
  EXPECT_TRUE(v.display_on);
  EXPECT_EQ((std::vector{v.cmd_x0, v.cmd_y0, v.cmd_xi, v.cmd_yi, v.listb_x0, v.listb_y0, v.listb_xi,
                         v.listb_yi, v.cmd_color, v.list_color, v.viewport_back_color}),
            (std::vector<std::int16_t>{14, 20, 7, 10, 10, 20, 5, 10, 7, 7, 0}));

  std::filesystem::create_directory(path("kivo"));
  std::ofstream(path("kivo/init_menu")) << "1 'MINE' 'view all'\n";
  kv_init_menu_action();
  EXPECT_EQ(text_at({1}), "MINE|view all");
  EXPECT_EQ(text_at({2}), "|-");
}

// --- DEFine and STAtus

class KeyMenuCommands : public testing::Test {
 protected:
  KeyMenuCommands() {
    kv_set_default_bindings();
    kv_set_default_menus();
  }
  void expect(const std::string& command, const lines_t& answer) {
    EXPECT_EQ(session_.run(command), answer) << command;
  }
  session_capture session_;
};

TEST_F(KeyMenuCommands, KeysAreDefinedAndShown) {
  expect("def key F6 'view all'", {" DEFine KEY F6 'view all' "});
  expect("sta key f6", {" STAtus KEY f6 ", "# KEY : f6 view all  "});
  expect("def key b1u redo", {" DEFine KEY b1u redo "});
  expect("sta key B1U", {" STAtus KEY B1U ", "# KEY : B1U redo "});
  expect("sta key f5", {" STAtus KEY f5 ", "# KEY : f5   "});
  expect("def key f13 x", {"# DEFine KEY f13 x ", "# !! Error :  Invalid DEFine KEY "});
  expect("sta key f0", {"# STAtus KEY f0 ", "# !! Error :  Invalid  KEY name "});
}

TEST_F(KeyMenuCommands, AllKeysWithACommandAreListed) {
  const lines_t all = session_.run("status key");
  ASSERT_FALSE(all.empty());
  EXPECT_EQ(all.front(), " STAtus KEY ");
  const auto has = [&](const char* line) {
    return std::find(all.begin(), all.end(), line) != all.end();
  };
  EXPECT_TRUE(has("# KEY : f9 VIEW UP  "));
  EXPECT_TRUE(has("# KEY : f2ua UNSELECT AREA VERTEX  "));
  EXPECT_TRUE(has("# KEY : b2u $XIM  "));
  EXPECT_TRUE(has("# KEY : cntl_y BYE  "));
  EXPECT_FALSE(has("# KEY : f5   "));
}

TEST_F(KeyMenuCommands, MenuLinesAreDefinedAndShown) {
  expect("def men item MINE 5", {" DEFine MENu item MINE 5 "});
  expect("sta men 5", {" STAtus MENu 5 ", "# text : \"MINE\" "});
  expect("def men I 'MY SUB' 5 2", {" DEFine MENu I 'MY SUB' 5 2 "});
  expect("sta men 5 2", {" STAtus MENu 5 2 ", "# text : \"MY SUB \" "});
  expect("def men Action A 'view all' 6", {" DEFine MENu Action A 'view all' 6 "});
  expect("sta men 6", {" STAtus MENu 6 ", "# text : \"A\" ", "# cmd : \"view all \" "});
  expect("def men act B 'b' 5 2 3", {" DEFine MENu act B 'b' 5 2 3 "});
  expect("sta men 5 2 3", {" STAtus MENu 5 2 3 ", "# text : \"B\" ", "# cmd : \"b \" "});
  expect("def men a C c 5 2 3 12", {" DEFine MENu a C c 5 2 3 12 "});
  expect("sta men 9", {" STAtus MENu 9 ", "# text : \"\" "});
  expect("sta men 2 7", {" STAtus MENu 2 7 ", "# text : \"UNSELECT AREA \" "});
  // The longest label that fits, and one character more.
  expect("def men item '123456789012345678' 7", {" DEFine MENu item '123456789012345678' 7 "});
  expect("def men item 1234567890123456789 7", {"# DEFine MENu item 1234567890123456789 7 ",
                                                "# !! Error : string size Invalid ? (>18) "});
  expect("sta men 7", {" STAtus MENu 7 ", "# text : \"123456789012345678\" "});
}

TEST_F(KeyMenuCommands, BadMenuPlacesAreRefused) {
  expect("def men X L 1",
         {"# DEFine MENu X L 1 ", "# !! Error : invalid parameter 3 (should begin by I or A) ? "});
  const struct {
    const char *form, *error;
  } cases[] = {
      {"item L 13", "# !! Error : Invalid parameter 5  ? "},
      {"item L x", "# !! Error : Invalid parameter 5  ? "},
      {"item L 1 0", "# !! Error : Invalid parameter 5 or 6 ? "},
      {"action L c 0", "# !! Error : Invalid parameter  6 ? "},
      {"action L c 1 13", "# !! Error : Invalid parameter 6 or 7 ? "},
      {"action L c 1 2 99999", "# !! Error : Invalid parameter 6 or 7 or 8 ? "},
      {"action L c 1 2 3 -1", "# !! Error : Invalid parameter 6,7,8 or 9 ? "},
  };
  for (const auto& c : cases) {
    expect(std::string("def men ") + c.form,
           {std::string("# DEFine MENu ") + c.form + " ", c.error});
  }
  expect("sta men 0", {"# STAtus MENu 0 ", "# !! Error : Invalid parameter  3 ? "});
  expect("sta men 1 y", {"# STAtus MENu 1 y ", "# !! Error : Invalid parameter 3 or 4 ? "});
  expect("sta men 1 2 13",
         {"# STAtus MENu 1 2 13 ", "# !! Error : Invalid parameter 3 or 4 or 5 ? "});
}

TEST_F(KeyMenuCommands, MenuFilesAreReadAndPrintedByCommand) {
  const scratch_directory directory;
  const std::string file = directory.file("menu").string();
  directory.write("menu", "1 'ONE'  'c' \n");
  expect("$rmenu " + file, {});
  expect("sta men 1", {" STAtus MENu 1 ", "# text : \"ONE\" ", "# cmd : \"c\" "});
  expect("def men item TWO 2 ; $pmenu " + file, {" DEFine MENu item TWO 2 "});
  EXPECT_EQ(directory.read("menu"), "1 'ONE'  'c' \n1 'TWO' \n");
}

}  // namespace
