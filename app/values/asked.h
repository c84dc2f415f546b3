// What a command about values asks for: nets or devices, at which place, and how a value is
// printed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/language/command.h"
#include "app/values/results_now.h"

inline constexpr std::string_view kv_no_results = "# !! Error : No results open ? ";

// The results for a command; null after the refusal (`keyword`, the words from `first` on, why).
kv_results_t* kv_results_for(std::string_view keyword, const kv_command_t& command, int first = 3);

// The words "[path] [AT x]" of a command from word 3 on.
struct kv_asked_t {
  std::string_view path;  // "" : what is selected
  double x = 0;           // the x of the results unless it was given
  rs_place_t place;
};
// Nothing after the refusal.
std::optional<kv_asked_t> kv_read_asked(std::string_view keyword, const kv_command_t& command,
                                        const kv_results_t& results, int first);

// Refuses an x that is none or lies outside of the scale, with the range; nothing then.
std::optional<double> kv_read_x(std::string_view keyword, const kv_command_t& command,
                                const kv_results_t& results, std::string_view word);

// "0 s to 100 ns".
std::string kv_range_text(const kv_results_t& results);
// " at 58n"; "" when the plot has no scale.
std::string kv_at_text(const kv_results_t& results, double x);
// "1.79998 V"; of a complex plot "-11.4 mV +j 1.2 mV".
std::string kv_value_text(const kv_results_t& results, const rs_value_t& value,
                          std::string_view unit, int digits);
// Of a device's value.
std::string_view kv_unit_of(const kv_results_t& results, const kv_device_value_t& value);

// The leaf instances of a path, else those that are selected on the sheet in view, in the order of
// the netlist; empty after the refusal.
std::vector<std::int32_t> kv_wanted_devices(std::string_view keyword, const kv_command_t& command,
                                            const kv_results_t& results, std::string_view path);
// The same for flat nets, buses replaced by their members.
std::vector<std::int32_t> kv_wanted_value_nets(std::string_view keyword,
                                               const kv_command_t& command,
                                               const kv_results_t& results, std::string_view path);
