// The screen layout.
#include "app/sheet/views.h"
#include "gx/display/screen_state.h"

std::array<gx_viewport_init_rec_t, 4> set_viewports() {
  constexpr gx_border_info border{
      .pixel_width = 1, .reserved = 0, .border_color = 3, .background_color = 0};
  return {{{{400, 500, 99600, 74900}, border},        // the sheet being worked on
           {{400, 95500, 73300, 99500}, border},      // the command line
           {{400, 75400, 73300, 95000}, border},      // the message list
           {{73700, 75400, 99600, 99500}, border}}};  // the context sheet or a symbol
}
