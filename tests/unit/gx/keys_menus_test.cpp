// Key names, the menu tree and its file, the defaults of a session, and the commands that define
// and show keys and menus, to the letter; without a display.
#include <X11/keysym.h>

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
#include "tests/support/session_case.h"

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
  for (const char* name : {"", "f1 ", " f1"}) EXPECT_FALSE(gx_set_key_action(name, "x")) << name;
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

TEST_F(KeysAndMenus, AFreshSessionHasItsBindingsAndMenus) {
  gx_vext.bitmap_size = {2048, 1536};
  kv_init_menu_action();
  EXPECT_EQ(action("f4"), " ");
  EXPECT_EQ(action("f2u"), "");
  EXPECT_EQ(action("f4u"), " ");
  EXPECT_EQ(action("cntl_o"), "");
  EXPECT_EQ(text_at({2}), "EDIT|-");
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

TEST_F(KeysAndMenus, APlaceOutsideTheTreeStops) {
  const int far[] = {1, 12, 0};
  expect_stop([&] { gx_ptrto_menu_rec(far); }, gx_code::invalid_level,
              "gx_ptrto_menu3_rec : level 3 : 0  12");
  EXPECT_EQ(text_at({1, 12, 0}), "|-");
  EXPECT_EQ(text_at({13}), "|-");
  gx_read_menu("");
  EXPECT_EQ(gx_vext.num_errors, 0);
}

// The commands of keys and menus; what comes before them is a file of menus.
class menu_session {
 public:
  explicit menu_session(std::string_view menu) {
    std::filesystem::current_path(directory_.path());
    directory_.write("menu", menu);
    kv_set_default_bindings();
    kv_set_default_menus();
  }
  ~menu_session() { std::filesystem::current_path(before_); }
  lines_t answer(const std::string& line) {
    if (line == "errors") return {std::to_string(gx_vext.num_errors)};
    if (line != "printed") return session_.run(line);
    gx_print_menu("printed");
    return directory_.lines("printed");
  }

 private:
  scratch_directory directory_;
  std::filesystem::path before_ = std::filesystem::current_path();
  session_capture session_;
};

TEST(KeyMenuCommands, AnswerAsInTheirCases) {
  expect_sessions<menu_session>("session/keys_menus.txt");
}

}  // namespace
