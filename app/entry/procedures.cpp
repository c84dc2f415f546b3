// The compiled procedures that DOBin and DODIRectbin call.
//
// A procedure is found by its name in the symbol table of this executable: DOBin NAME calls
// kvp_NAME, DODIRectbin takes the whole name. An entry
//   - is extern "C", so that its symbol is its name, and is in the section "kv_procedures",
//     which separates it from functions that expect other arguments;
//   - takes the number of words after the procedure name, and 30 records: the first holds a blank
//     and the first of those words, the others the further words as they were typed.
// Adding one is writing it in this folder: every file here is part of the executable.
#include <cstdint>

#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"

// DOBin SHOW_WORDS a b c: shows each word on a line of its own. A sample, and a way to see what a
// procedure receives.
extern "C" [[gnu::used, gnu::section("kv_procedures")]] void kvp_SHOW_WORDS(
    std::int16_t* count, gx_string_record_t* args) {
  gx_string_record_t number;
  for (std::int16_t i = 0; i < *count; ++i) {
    gx_int16_to_string(i, number);
    gx_tell("# args[", gx_view(number), "] : \"", gx_view(args[i]), "\" ");
  }
}
