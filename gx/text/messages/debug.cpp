#include "gx/text/messages/debug.h"

#include <cstdarg>
#include <cstdio>

#include "gx/text/messages/session_state.h"

void gx_trace_parts(std::initializer_list<gx_trace_part> parts) {
  if (gx_session.debugfile == nullptr) return;
  for (const auto& part : parts) {
    std::fwrite(part.text().data(), 1, part.text().size(), gx_session.debugfile);
  }
  std::fputc('\n', gx_session.debugfile);
}

void gx_debug(const char* format, ...) {
  if (gx_session.debugfile == nullptr) return;
  va_list values;
  va_start(values, format);
  std::vfprintf(gx_session.debugfile, format, values);
  va_end(values);
}

void gx_debug_line(std::string_view text) {
  if (gx_session.debugfile == nullptr) return;
  std::fwrite(text.data(), 1, text.size(), gx_session.debugfile);
  std::fputc('\n', gx_session.debugfile);
}
