// The commands that the interpreter runs itself, because they decide what becomes of their line.
#include "app/language/command_table.h"
#include "app/language/substitution.h"
#include "app/sheet/pan.h"
#include "gx/text/text_files.h"

kv_outcome_t kv_assign(const kv_command_t& command) {
  constexpr std::string_view refused = "# ASSIgn ";
  if (!command.has_count(2, 3)) {
    kv_refuse(refused, command, kv_bad_count);
    return {.unknown = true, .ends_line = true};
  }
  const kv_target_t target = kv_variable_target(command.word(2));
  switch (target.kind) {
    case kv_target::variable: {
      auto& variable = command.vars[static_cast<std::size_t>(target.number - 1)];
      variable = command.count() == 3 ? command.words[2] : gx_string_record_t{};
      kv_echo(" ASSIgn ", command);
      return {};
    }
    case kv_target::other_shape:
      return {};
    default:
      kv_refuse(refused, command, "# !! Error :  2nd parameter incorrect ? ");
      return {.unknown = false, .ends_line = true};
  }
}

kv_outcome_t kv_system(const kv_command_t& command) {
  if (command.count() != 2) {
    kv_refuse("# SYSTem ", command, kv_bad_count);
    return {.unknown = true, .ends_line = false};
  }
  kv_echo(" SYSTem ", command);
  gx_system(command.words[1]);
  return {};
}

kv_outcome_t kv_move(const kv_command_t& command) {
  const kv_move_t* move = kv_find_move(command.word(1));
  if (move == nullptr) return {.unknown = true, .ends_line = false};
  kv_make_move(*move);
  return {};
}
