// Prints the commands that let the user choose one of the key sets of the product directory.
#include "app/session/product_sets.h"

int main() { return kv_print_set_choice(kv_key_sets); }
