// DEFine and STAtus of keys and menus: what each answers, to the letter.
#include <algorithm>
#include <string>
#include <vector>

#include "app/session/event_loop.h"
#include "tests/support/scratch_directory.h"
#include "tests/support/session_capture.h"

namespace {
constexpr char bad_count[] = "# !! Error : parameter number invalid ? ";

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
  expect("def key f1", {"# DEFine KEY f1 ", bad_count});
  expect("def key f1 a b", {"# DEFine KEY f1 a b ", bad_count});
  expect("sta key f0", {"# STAtus KEY f0 ", "# !! Error :  Invalid  KEY name "});
  expect("sta key f1 f2", {"# STAtus KEY f1 f2 ", bad_count});
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
  expect("def men item L", {"# DEFine MENu ItemL ", bad_count});
  expect("def men item L 1 2 3", {"# DEFine MENu ItemL 1 2 3 ", bad_count});
  expect("def men action L c", {"# DEFine MENu ActionL c ", bad_count});
  expect("def men action L c 1 2 3 4 5", {"# DEFine MENu ActionL c 1 2 3 4 5 ", bad_count});
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
  expect("sta men", {"# STAtus MENu ", bad_count});
  expect("sta men 1 2 3 4", {"# STAtus MENu 1 2 3 4 ", bad_count});
  expect("sta men 0", {"# STAtus MENu 0 ", "# !! Error : Invalid parameter  3 ? "});
  expect("sta men 1 y", {"# STAtus MENu 1 y ", "# !! Error : Invalid parameter 3 or 4 ? "});
  expect("sta men 1 2 13",
         {"# STAtus MENu 1 2 13 ", "# !! Error : Invalid parameter 3 or 4 or 5 ? "});
}

TEST_F(KeyMenuCommands, MenuFilesAreReadAndPrintedByCommand) {
  scratch_directory directory;
  const std::string file = directory.file("menu").string();
  directory.write("menu", "1 'ONE'  'c' \n");
  expect("$rmenu " + file, {});
  expect("sta men 1", {" STAtus MENu 1 ", "# text : \"ONE\" ", "# cmd : \"c\" "});
  expect("def men item TWO 2 ; $pmenu " + file, {" DEFine MENu item TWO 2 "});
  EXPECT_EQ(directory.read("menu"), "1 'ONE'  'c' \n1 'TWO' \n");
  expect("$rmenu /no/such", {"# $rmenu ", "# !!! error : file not found : \"/no/such\""});
}

}  // namespace
