#include "expand/debug.h"

#include <cstdarg>
#include <cstdlib>

#include "expand/store.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/status.h"

std::FILE* kv_debf = nullptr;

void kv_debug(const char* format, ...) {
  if (!kv_debf) return;
  std::va_list args;
  va_start(args, format);
  std::vfprintf(kv_debf, format, args);
  va_end(args);
}

void kv_error_stop() {
  kv_debug(" KV_ERROR_STOP  \n");
  if (kv_sext.gx_graphics_used) {
    gx_debug_line(" KV_ERROR_STOP  ");
    gx_release_all();
  }
  std::fprintf(gx_front().messages(), "!!! KV_ERROR_STOP  \n");
  std::fflush(nullptr);
  std::_Exit(gx_front().stop_status);
}
