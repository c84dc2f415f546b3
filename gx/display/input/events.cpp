#include "gx/display/input/events.h"

#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
gx_other_input_t other_input;
}  // namespace

void gx_set_other_input(const gx_other_input_t& input) { other_input = input; }

const gx_other_input_t& gx_other_input() { return other_input; }

gx_event_t gx_input_event_wait() {
  if (!gx_vext.init_done && gx_vext.num_file_open < 1) {
    gx_set_status(gx_code::init_or_open_file_not_done);
  }
  if (gx_vext.screen == nullptr) gx_set_status(gx_code::init_not_done);
  gx_pen_flush();
  return gx_vext.screen->wait_event();
}

void gx_ask_for_text(bool from_clipboard) {
  if (gx_vext.screen != nullptr) gx_vext.screen->ask_for_text(from_clipboard);
}

bool gx_find_event(int kind, std::uint32_t keysym, std::uint32_t modifiers) {
  if (gx_vext.screen == nullptr || (kind != 0 && kind != 1)) return false;
  return gx_vext.screen->find_key(kind, keysym, modifiers);
}
