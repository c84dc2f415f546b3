// The product directory as it is shipped: its menus and keys work, every command has its help, and
// what names the built-in defaults is the same as they are.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <span>
#include <sstream>
#include <string>

#include "app/language/command_table.h"
#include "app/language/interpreter.h"
#include "app/session/input/event_loop.h"
#include "app/session/product_sets.h"
#include "gx/display/input/keys.h"
#include "gx/display/input/menu_file.h"
#include "gx/display/input/menu_tree.h"
#include "gx/display/window.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "tests/support/scratch_directory.h"
#include "tests/support/session_capture.h"

namespace {

namespace fs = std::filesystem;
const fs::path product = KIVO_PRODUCT_DIR;

class Product : public testing::Test {
 protected:
  Product() {
    gx_reset_state();
    setenv("VELMORAN", product.c_str(), 1);
  }
  ~Product() override {
    unsetenv("VELMORAN");
    gx_reset_state();
  }
};

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  const auto last = text.find_last_not_of(' ');
  return first == text.npos ? "" : std::string(text.substr(first, last - first + 1));
}

TEST_F(Product, TheHelpOfEveryCommandShowsItsSyntax) {
  const std::string list = gx_upper(read_file(product / "kivo/help/list_commands"));
  for (const kv_command_row_t& row : kv_command_table()) {
    if (row.syntax[0] == '$') continue;
    const std::string word = gx_upper(row.syntax.substr(0, row.syntax.find(' ')));
    EXPECT_NE(list.find(word), list.npos) << word;
    const std::string help = "\n" + read_file(product / ("kivo/help/kv_1_" + word));
    EXPECT_NE(help.find("\n" + std::string(row.syntax) + "\n"), help.npos) << row.syntax;
  }
}

// The list of commands spells the shortest form of each word in capitals, and what follows the
// capitals of a syntax line reaches the command, too.
TEST_F(Product, TheCapitalsOfTheHelpAreEnough) {
  std::string list = read_file(product / "kivo/help/list_commands");
  std::ranges::replace(list, '/', ' ');
  std::istringstream text(list);
  const std::set<std::string> words(std::istream_iterator<std::string>(text), {});
  for (const kv_command_row_t& row : kv_command_table()) {
    if (row.syntax[0] == '$' || row.exact != 0) continue;
    std::istringstream syntax{std::string(row.syntax)};
    for (const auto keyword : row.keywords) {
      std::string word;
      syntax >> word;
      if (keyword.empty() || keyword == "O") continue;  // ON or OFF
      EXPECT_TRUE(word.starts_with(keyword)) << row.syntax;
      std::string shortest = word;
      for (std::size_t i = 0; i < word.size(); ++i)
        shortest[i] = static_cast<char>(i < keyword.size() ? keyword[i] : std::tolower(word[i]));
      EXPECT_TRUE(words.contains(shortest)) << shortest;
    }
  }
}

TEST_F(Product, TheListShowsEveryLineOfHelpWhole) {
  int lines = 0;
  for (const auto& file : std::filesystem::directory_iterator(product / "kivo/help")) {
    std::istringstream text(read_file(file.path()));
    for (std::string line; std::getline(text, line); ++lines)
      EXPECT_LE(("# \"" + line + "\" ").size(), gx_list_columns) << file.path() << ": " << line;
  }
  EXPECT_GT(lines, 200);
}

TEST_F(Product, EveryCommandIsInTheManPageAndTheMenu) {
  // Of command files, of the keyboard, or kept for other editors' files.
  const std::set<std::string> without_menu = {
      "ASSIGN",      "BASEPOINT",   "DEFINE KEY", "DEFINE MENU",  "DISPLAY", "DOBIN",
      "DODIRECTBIN", "HARDCOPY",    "PLOT",       "QUIT",         "READLN",  "SELECT OBJECT",
      "SMASH",       "STATUS MENU", "SYSTEM",     "UNSELECT AREA"};
  const std::string page = read_file(KIVO_SOURCE_DIR "/docs/man/kivo.1");
  const std::string menu = gx_upper(read_file(product / "kivo/init_menu"));
  for (const kv_command_row_t& row : kv_command_table()) {
    if (row.syntax[0] == '$') continue;
    const std::string syntax(row.syntax);
    const std::string quotes = syntax.find(' ') == syntax.npos ? "" : "\"";
    EXPECT_NE(page.find("\n.B " + quotes + syntax + quotes + "\n"), page.npos) << syntax;
    std::istringstream words(syntax);
    std::string name, word;
    for (int i = 0; i < 2 && !row.keywords[static_cast<std::size_t>(i)].empty(); ++i) {
      words >> word;
      name += (i > 0 ? " " : "") + word;
    }
    name = gx_upper(name);
    if (name.starts_with("MARK RECT")) name = "MARK RECT";
    if (without_menu.contains(name)) continue;
    EXPECT_NE(menu.find(name), menu.npos) << name;
  }
}

TEST_F(Product, HelpIsFoundByAnyWordThatMeansTheCommand) {
  session_capture session;
  const std::pair<const char*, const char*> cases[] = {
      {"VIEW", "VIEw ALL"}, {"View", "VIEw ALL"}, {"vi", "VIEw ALL"}, {"stat", "STAtus OBJect"},
      {"g", "GIVE"},        {"grid", "GRID ON"},  {"do", "DO file"},  {"dob", "DOBin"}};
  for (const auto& [typed, first_line] : cases) {
    const auto shown = session.run("HELP " + std::string(typed));
    ASSERT_FALSE(shown.empty());
    const std::string wanted = "# \"" + std::string(first_line);
    EXPECT_TRUE(std::ranges::any_of(
        shown, [&](const std::string& line) { return line.starts_with(wanted); }))
        << typed << ": " << shown.front();
  }
  EXPECT_TRUE(session.run("HELP jump").front().starts_with("# HELp jump"));
}

TEST_F(Product, TheStandardKeysAreThoseOfTheStart) {
  kv_array_param_t args, vars;
  const auto run_keys = [&](const std::string& name) {
    kv_process_command(gx_string(" DO $VELMORAN/kivo/keys/keys_" + name), args, vars);
    EXPECT_EQ(gx_vext.num_errors, 0);
  };
  gx_init_nograph();
  kv_set_default_bindings();
  const gx_defref_var_rec_t& v = gx_vext;
  const auto all = [&] {
    std::vector<std::string> texts;
    for (const auto* table : {&v.action_f, &v.action_fs, &v.action_fc, &v.action_fa, &v.action_fup,
                              &v.action_fsup, &v.action_fcup, &v.action_faup}) {
      for (const auto& text : *table) texts.push_back(trimmed(gx_view(text)));
    }
    for (const auto& text : v.action_but) texts.push_back(trimmed(gx_view(text)));
    return texts;
  };
  const auto at_start = all();
  run_keys("kivo");
  run_keys("select");
  EXPECT_NE(all(), at_start);
  run_keys("standard");
  EXPECT_EQ(all(), at_start);
}

TEST_F(Product, TheStandardMenuIsThatOfTheStart) {
  const auto all = [] {
    lines_t lines;
    for (int i = 1; i <= gx_max_menu_lines; ++i)
      for (int j = 0; j <= gx_max_menu_lines; ++j)
        for (int k = 0; k <= (j == 0 ? 0 : gx_max_menu_lines); ++k) {
          const std::array index = {i, j, k};
          const auto record = gx_get_menu_rec(std::span(index).first(j == 0 ? 1 : k == 0 ? 2 : 3));
          if (record.str.len == 0 && !record.cmd_on) continue;
          lines.push_back(testing::PrintToString(index) + gx_view(record.str).data());
          if (record.cmd_on) lines.back() += " : " + std::string(gx_view(record.cmd));
        }
    return lines;
  };
  kv_set_default_menus();
  const auto at_start = all();
  EXPECT_EQ(at_start.size(), 60U);
  gx_read_menu((product / "kivo/menus/menu_standard").string());
  EXPECT_EQ(all(), at_start);
}

}  // namespace
