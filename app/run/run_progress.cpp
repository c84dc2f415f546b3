#include "app/run/run_progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "app/language/interpreter.h"
#include "gx/display/cmd_viewport.h"
#include "gx/display/pen.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/vext.h"

namespace {

constexpr double patience = 2;  // seconds

// Where nobody looks at a window somebody may look at a terminal: there the line is written over
// the one before it, and a line of the list over it.
void show_on_terminal(std::string_view line) {
  if (isatty(STDERR_FILENO) == 0) return;
  std::fprintf(stderr, "%.*s\033[K\r", static_cast<int>(line.size()), line.data());
}

void show(std::string_view line) {
  const auto& v = gx_vext;
  if (v.batch) return show_on_terminal(line);
  if (!gx_drawing_possible() || !gx_viewport_ok(v.viewport_cmd)) return;
  {
    const gx_batch_t batch;
    gx_viewport_display_text(v.viewport_cmd, line, {v.cmd_x0, v.cmd_y0}, true, v.cmd_color);
  }
  gx_sync();
}

}  // namespace

bool kv_watch_run(const kv_progress_t& progress) {
  if (gx_vext.batch) std::fflush(stdout);  // the lines told so far
  if (progress.ended) {
    if (gx_vext.batch && progress.seconds >= patience) show_on_terminal("");
    gx_display_cmd(gx_view(gx_vext.str_cmd));
    return true;
  }
  if (progress.seconds >= patience) {
    const auto percent = progress.sheets * 100 / std::max<std::int64_t>(progress.all_sheets, 1);
    show(" RUN " + std::to_string(percent) + " % : sheet " + std::to_string(progress.sheets) +
         " of " + std::to_string(progress.all_sheets) + ", " + std::to_string(progress.insts) +
         " instances");
  }
  return !kv_stop_asked();
}
