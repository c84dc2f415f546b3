// Prints the commands that let the user choose one of the key sets of the product directory.
#include "app/session/product_sets.h"
#include "platform/usage.h"

namespace {
constexpr tool_t tool = {
    "kivoKeysDB",
    "usage: kivoKeysDB\n"
    "Prints the commands by which KIVO shows the key sets of its product directory, asks for one\n"
    "and takes it. KIVO runs it at Page Down.\n"
    "  --help, --version\n"};
}  // namespace

int main(int argc, char** argv) {
  return tool_without_words(tool, argc, argv, [] { return kv_print_set_choice(kv_key_sets); });
}
