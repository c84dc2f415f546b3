// The menu and key sets of the product directory, for the two helper programs that KIVO runs to
// let the user choose one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// One kind of set: files `prefix` + NAME in `folder` of the product directory, with a text "list"
// that describes them.
struct kv_set_kind_t {
  std::string_view folder;   // "$VELMORAN/kivo/menus"
  std::string_view prefix;   // "menu_"
  std::string_view prompt;   // what the user is asked for, one word
  std::string_view command;  // that takes the file of the chosen set
};
inline constexpr kv_set_kind_t kv_menu_sets = {"$VELMORAN/kivo/menus", "menu_", "menu", "$RMENU"};
inline constexpr kv_set_kind_t kv_key_sets = {"$VELMORAN/kivo/keys", "keys_", "keys", "DO"};

// The command lines that show the sets, ask for one and take it. Nothing when there is none.
std::vector<std::string> kv_set_choice(const kv_set_kind_t& kind);

// Prints them; the result is the exit status of the program.
int kv_print_set_choice(const kv_set_kind_t& kind);
