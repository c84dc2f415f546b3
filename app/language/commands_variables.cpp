// ASSIgn and SYSTem, whose refusals also decide what becomes of their line.
#include "app/language/command_row.h"
#include "app/language/substitution.h"
#include "gx/text/at.h"
#include "gx/text/text_files.h"
#include "platform/stop_signals.h"

namespace {

kv_outcome_t kv_assign(const kv_command_t& command) {
  constexpr std::string_view refused = "# ASSIgn ";
  const kv_target_t target = kv_variable_target(command.word(2));
  switch (target.kind) {
    case kv_target::variable: {
      auto& variable = gx_at(command.vars, target.number - 1);
      variable = command.count() == 3 ? command.words[2] : gx_string_record_t{};
      kv_echo(" ASSIgn ", command);
      return {};
    }
    case kv_target::other_shape:
      return {};
    default:
      kv_refuse(refused, command, kv_bad_second);
      return {.unknown = false, .ends_line = true};
  }
}

kv_outcome_t kv_system(const kv_command_t& command) {
  kv_echo(" SYSTem ", command);
  gx_system(command.words[1], [] { return x_stop_signal() != 0; });
  return {};
}

constexpr kv_command_row_t variable_rows[] = {
    // clang-format off
    {.keywords = {"ASSI"}, .syntax = "ASSIgn $VARn [value]", .refusal = "# ASSIgn ", .deciding = kv_assign, .refused = {.unknown = true, .ends_line = true}},
    {.keywords = {"SYST"}, .syntax = "SYSTem 'command'", .refusal = "# SYSTem ", .deciding = kv_system, .refused = {.unknown = true}},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_variable_commands() { return variable_rows; }
