#include "app/session/input/display_settings.h"

#include <optional>
#include <string>

#include "app/language/answers.h"
#include "app/session/input/event_loop.h"
#include "app/sheet/panes.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/display/strokes/smooth.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
void draw_again(bool resized) {
  if (gx_vext.screen == nullptr) return;
  const gx_offscreen_t picture({0, 0, gx_vext.bitmap_size.x, gx_vext.bitmap_size.y});
  kv_draw_window(resized);
}

std::optional<int> number_within(std::string_view word, int least, int most) {
  const auto number = gx_string_to_int32(word);
  if (number.error || number.value < least || number.value > most) return std::nullopt;
  return number.value;
}

void set_panes(const kv_panes_t& panes) {
  if (gx_vext.screen == nullptr) return;
  kv_set_panes(panes);
  draw_again(true);
}
}  // namespace

void kv_display_smooth_cmd(const kv_command_t& command) {
  const auto on = kv_on_or_off(command.word(3));
  if (!on)
    return kv_refuse("# DISPlay SMOoth ", command, "# !! Error :  3rd parameter incorrect ? ", 3);
  const bool can = gx_set_smooth(*on);
  draw_again(false);
  gx_tell(*on ? " DISPlay SMOoth ON " : " DISPlay SMOoth OFF ");
  if (!can)
    gx_report(gx_line_kind::warning, "# !! Warning : The screen has too few colours for it ");
}

void kv_display_width_cmd(const kv_command_t& command) {
  const std::string_view word = command.word(3);
  const bool is_auto = gx_equal("AUT", word);
  const auto width = is_auto ? 0 : number_within(word, 1, gx_max_line_width);
  if (!width)
    return kv_refuse("# DISPlay WIDth ", command, "# !! Error : A width is 1 to 8, or AUTo ? ", 3);
  gx_set_line_width(*width);
  draw_again(false);
  gx_tell(" DISPlay WIDth ", is_auto ? "AUTo" : std::to_string(*width), " ");
}

void kv_display_lines_cmd(const kv_command_t& command) {
  const auto lines = number_within(command.word(3), kv_least_lines, kv_most_lines);
  if (!lines)
    return kv_refuse("# DISPlay LINes ", command, "# !! Error : The list has 7 to 40 lines ? ", 3);
  set_panes({*lines, kv_panes().has_context});
  gx_tell(" DISPlay LINes ", std::to_string(*lines), " ");
}

void kv_display_context_cmd(const kv_command_t& command) {
  const auto on = kv_on_or_off(command.word(3));
  if (!on)
    return kv_refuse("# DISPlay CONtext ", command, "# !! Error :  3rd parameter incorrect ? ", 3);
  set_panes({kv_panes().lines, *on});
  gx_tell(*on ? " DISPlay CONtext ON " : " DISPlay CONtext OFF ");
}
