// Prints the commands that let the user choose one of the menu sets of the product directory.
#include "app/session/product_sets.h"
#include "platform/usage.h"

namespace {
constexpr tool_t tool = {
    "kivoMenuDB",
    "usage: kivoMenuDB\n"
    "Prints the commands by which KIVO shows the menu sets of its product directory, asks for one\n"
    "and takes it. KIVO runs it at Page Up.\n"
    "  --help, --version\n"};
}  // namespace

int main(int argc, char** argv) {
  return tool_without_words(tool, argc, argv, [] { return kv_print_set_choice(kv_menu_sets); });
}
