// The header of one plot of a raw file, as the simulators write it: lines of text, then the values.
// Nothing that it announces is compared with the file yet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using rs_bytes_t = std::span<const std::uint8_t>;

enum class rs_simulator : std::uint8_t { ngspice, xyce, ltspice, unknown };
std::string_view rs_simulator_name(rs_simulator simulator);

struct rs_variable_t {
  std::string name, type;  // as in the file: "v(r:x2:x)", "voltage"
};

struct rs_header_t {
  rs_simulator simulator = rs_simulator::unknown;
  std::string title, plot_name;
  bool is_wide = false;         // texts of two bytes a character, the low one first
  bool is_complex = false;      // two numbers a value
  bool is_double = false;       // said so: no value in single precision
  bool is_text = false;         // values as text, not binary
  bool is_stepped = false;      // several runs, one after another
  bool is_by_variable = false;  // all values of one variable, then those of the next
  std::uint64_t nb_variables = 0;
  rs_variable_t first_variable;  // the scale, when the plot has one
  std::uint64_t nb_points = 0;   // 0: none, or not known before the simulation ends
  double offset = 0;             // added to every value of the scale
  std::size_t variables_at = 0;  // of the first line of a variable
  std::size_t values_at = 0;     // of the first value
};

enum class rs_header_result : std::uint8_t {
  read,
  no_header,   // another text or other bytes
  incomplete,  // the bytes end before the header does
  damaged
};
// Reads the header that begins at `at`. `fault` says what is damaged, with its line.
rs_header_result rs_read_header(rs_bytes_t bytes, std::size_t at, rs_header_t& header,
                                std::string& fault);

// The variables of a header that was read from these bytes.
std::vector<rs_variable_t> rs_read_variables(rs_bytes_t bytes, const rs_header_t& header);
