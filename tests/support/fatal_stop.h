// For tests of fatal stops: what the process says anywhere is seen by EXPECT_DEATH and EXPECT_EXIT.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "gx/text/messages/status.h"
#include "gx/vext.h"

// Run inside the death statement: standard output and the debug file both end in standard error.
inline void say_all_on_stderr() {
  std::fflush(stdout);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  gx_vext.debugfile = fdopen(dup(STDERR_FILENO), "w");
  std::setvbuf(gx_vext.debugfile, nullptr, _IONBF, 0);  // in the order it was said
}

// `call` stops the program with `code`, after it said `text` (a regular expression).
template <typename Call>
void expect_stop(Call call, gx_code code, const std::string& text = "") {
  const auto stop = [&] {
    say_all_on_stderr();
    call();
  };
  EXPECT_DEATH(stop(), text + "(.|\n)*code : " + std::to_string(static_cast<int>(code)) + "\n");
}
