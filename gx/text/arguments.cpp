#include "gx/text/arguments.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "gx/text/at.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/record_fill.h"
#include "gx/text/strings.h"

void gx_store_arg(int argc, const char* const* argv) {
  if (argc < 2 || argc > gx_max_arg_comline) {
    std::printf(" !!! invalid usage  : arg number : %2d\n", argc);
    std::exit(0);
  }
  gx_session.nb_arg_comline = argc;
  for (int i = 0; i < argc; ++i) {
    const char* word = argv[i];
    std::size_t len = 0;
    while (len < gx_max_string_length && gx_printable(word[len])) ++len;
    if (len >= gx_max_string_length - 1) len = 0;
    gx_copy_string({word, len}, gx_at(gx_session.argcomline, i));
  }
}

bool gx_get_arg(std::int32_t n, gx_string_record_t& word) {
  const bool held = n >= 1 && n <= gx_session.nb_arg_comline && n <= gx_max_arg_comline;
  word = held ? gx_at(gx_session.argcomline, n - 1) : gx_string_record_t{};
  return held;
}
