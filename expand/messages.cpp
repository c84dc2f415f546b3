// Lines and counters of a run.
#include "expand/messages.h"

#include <limits>

#include "gx/display/list_viewport.h"
#include "gx/text/records.h"
#include "gx/text/state.h"
#include "gx/text/strings.h"

namespace {
void count(std::int16_t& counter) {
  if (counter < std::numeric_limits<std::int16_t>::max()) ++counter;
}
}  // namespace

void kv_tell_parts(std::span<const std::string_view> parts) {
  gx_string_record_t line;
  for (const std::string_view part : parts) {
    // Longer than a line can be: the line is clipped anyway.
    gx_concat_const(part.substr(0, gx_max_string_length - 1), line);
  }
  gx_display_list(gx_view(line));
}

void kv_count_error() { count(gx_vext.num_errors); }
void kv_count_warning() { count(gx_vext.num_warnings); }
