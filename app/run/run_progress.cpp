#include "app/run/run_progress.h"

#include <algorithm>
#include <string>

#include "app/language/interpreter.h"
#include "gx/text/messages/front.h"

bool kv_watch_run(const kv_progress_t& progress) {
  constexpr double patience = 2;  // seconds
  const gx_front_t& front = gx_front();
  if (front.flush != nullptr) front.flush();
  const bool is_shown = front.show_progress != nullptr;
  if (progress.ended) {
    if (is_shown) front.show_progress("");
    return true;
  }
  if (is_shown && progress.seconds >= patience) {
    const auto percent = progress.sheets * 100 / std::max<std::int64_t>(progress.all_sheets, 1);
    front.show_progress(" RUN " + std::to_string(percent) + " % : sheet " +
                        std::to_string(progress.sheets) + " of " +
                        std::to_string(progress.all_sheets) + ", " +
                        std::to_string(progress.insts) + " instances");
  }
  return !kv_stop_asked();
}
