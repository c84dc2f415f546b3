#include "platform/words.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

int xgetspucode(std::uint32_t number, char (&buffer)[20]) {
  std::memset(buffer, 0, sizeof buffer);
  std::snprintf(buffer, sizeof buffer, "%x", number);
  return 0;
}

int xstrlen(const char* text) {
  const auto len = static_cast<int>(strnlen(text, x_max_text));
  if (len == x_max_text && text[x_max_text] != 0)
    std::printf(" !!! Error in xstrlen(c) : len= %d  '%s'  ", len, text);
  return len;
}

const char* xgetenv(char* name) {
  int len = xstrlen(name);
  if (len > x_max_text - 1) {
    std::printf(" !!! Error in xgetenv (c) : len+max = %d  %d  '%s' ", len, x_max_text, name);
    len = x_max_text - 1;
  }
  name[len] = 0;
  return std::getenv(name);
}
