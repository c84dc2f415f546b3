// What a text description says: symbols and sheets as plain records, before any object is made.
//
// Places and lengths are design units here (the text gives them in grid steps of 5000). x grows to
// the right, y downwards. The records are also the way in for programs that make designs
// (benchmarks, tests): fill them and call gxm_build.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gx/db/object_records.h"

inline constexpr std::int32_t gxm_step = 5000;           // design units of one grid step
inline constexpr std::int32_t gxm_text_height = 2500;    // of a property that names none
inline constexpr std::int32_t gxm_furthest = 100000000;  // largest coordinate, design units

// Colours used where the text names none.
enum gxm_color : std::uint8_t {
  gxm_black,
  gxm_red,
  gxm_green,
  gxm_blue,
  gxm_cyan,
  gxm_yellow,
  gxm_magenta,
  gxm_white
};

// Where a statement stands, for messages. Made by programs: file empty, line 0.
struct gxm_source_t {
  std::string_view file;  // lives as long as the design
  int line = 0;
};

// A bus range; a plain pin or net has none.
struct gxm_range_t {
  std::int16_t start = 0, end = 0;
  friend bool operator==(const gxm_range_t&, const gxm_range_t&) = default;
};

// Of the types line_2d, rectangle_2d, circle_2d (first point is the centre), arc3p_2d (three
// points) and polyline_2d (2..16 points).
struct gxm_shape_t {
  gx_type type = gx_type::line_2d;
  std::vector<gx_pointreal_t> points{};
  std::int32_t radius = 0;
  std::uint8_t color = gxm_yellow;
  std::uint8_t width = 1;
  std::int16_t style = 0;  // 0..4
  bool filled = false;
};

// Shown where `at` says (the lower left corner of the text), hidden without it.
struct gxm_property_t {
  std::string name{}, value{};
  std::optional<gx_pointreal_t> at{};
  std::int32_t height = gxm_text_height;
  std::uint8_t color = gxm_white;
  bool vertical = false;  // reads upwards
};

struct gxm_pin_t {
  std::string name{}, type{};  // PIN and PINTYPE; an empty one is left out
  gx_pointreal_t at{};
  std::optional<gxm_range_t> range{};
  std::optional<gx_pointreal_t> name_at{};  // shows the name, relative to the pin
  std::vector<gxm_property_t> properties{};
};

// Where the instances of a symbol show a property of their own.
struct gxm_show_t {
  std::string name{};
  gx_pointreal_t at{};  // relative to the instance's origin, as seen on the sheet unturned
  std::int32_t height = gxm_text_height;
  std::uint8_t color = gxm_white;
};

struct gxm_symbol_t {
  std::string name{};  // of its directory
  gxm_source_t source{};
  std::vector<gxm_shape_t> shapes{};
  std::vector<gxm_property_t> properties{};  // of the symbol: no instance may have one of the name
  std::vector<gxm_property_t> defaults{};    // of each instance that does not give its own
  std::vector<gxm_pin_t> pins{};
  std::vector<gxm_show_t> shows{};
};

enum class gxm_kind { part, port, global };

// An instance. A part has its name as INST; a port has it as NET of its first pin; a global as
// GLOBAL, unless that is the symbol's own.
struct gxm_part_t {
  gxm_kind kind = gxm_kind::part;
  std::string name{}, symbol{};
  gxm_source_t source{};
  gx_pointreal_t at{};
  std::uint8_t rotate = 0;
  bool mirror = false;
  std::optional<gxm_range_t> range{};  // of a port's pin
  std::optional<gx_pointreal_t> name_at{};
  std::vector<gxm_property_t> properties{};      // places relative to `at`, as seen on the sheet
  std::vector<gxm_property_t> pin_properties{};  // of the first pin
};

// One stop of a wire: a pin of a part, or a place, whose missing coordinate is the one of the stop
// before. `corner` says how the wire comes here from the stop before.
struct gxm_stop_t {
  enum class corner_t { straight, across_first, down_first };
  corner_t corner = corner_t::straight;
  std::string part{}, pin{};  // a pin when `part` is not empty; the part's first one when `pin` is
  std::string net{};          // the place is a vertex of this other net when not empty
  std::optional<std::int32_t> x{}, y{};
};

struct gxm_wire_t {
  gxm_source_t source{};
  std::vector<gxm_stop_t> stops{};
  std::uint8_t color = gxm_cyan;
  std::uint8_t width = 1;
  std::int16_t style = 0;
};

// The bit of the bus that the first bit of a pin meets; the bus's first bit where none is given.
struct gxm_bit_t {
  gxm_source_t source{};
  std::string part{}, pin{};
  std::int16_t bit = 0;
};

struct gxm_net_t {
  std::string name{};  // NET; empty for a net without a name
  gxm_source_t source{};
  std::optional<gxm_range_t> range{};  // of a bus
  std::vector<gxm_property_t> properties{};
  std::vector<gxm_wire_t> wires{};
  std::vector<gxm_bit_t> bits{};
};

struct gxm_frame_t {
  std::string expression{};  // FREXP; empty: none
  gxm_source_t source{};
  std::vector<gxm_shape_t> shapes{};
  std::vector<gxm_property_t> properties{};
};

struct gxm_sheet_t {
  std::string name{};  // of its directory
  gxm_source_t source{};
  gx_pointreal_t page{60 * gxm_step, 40 * gxm_step};
  std::int32_t grid_step = gxm_step;
  bool grid_on = true;
  std::int16_t check_data_done = 0;  // nonzero: not checked
  std::int16_t num_errors = 0;       // of the check
  std::vector<gxm_part_t> parts{};
  std::vector<gxm_net_t> nets{};
  std::vector<gxm_frame_t> frames{};
};

// A file described object by object, so that every object is the one that was meant: what `gxdump
// --source` prints. Values are words as they are written, in the units of the file.
struct gxm_field_word_t {
  std::string field{}, value{};
};
struct gxm_object_t {
  gx_type type = gx_type::nil;
  int father = 0;  // the object that it is under; 1 is the first of the file, 0: none
  std::vector<gxm_field_word_t> fields{};
  gxm_source_t source{};
};
struct gxm_object_file_t {
  std::string name{};  // of its directory
  std::string base{};  // "sheet", "symbol"
  std::int16_t version = 1;
  gxm_source_t source{};
  std::vector<gxm_field_word_t> fields{};            // of the header
  std::vector<gxm_object_t> objects{};               // in the order of their ids
  std::map<std::string, int, std::less<>> labels{};  // by which fields name objects
};

struct gxm_design_t {
  std::vector<gxm_symbol_t> symbols{};
  std::vector<gxm_sheet_t> sheets{};
  std::vector<gxm_object_file_t> files{};
};

// The problems found, each "file:line: what is wrong".
using gxm_messages_t = std::vector<std::string>;
void gxm_complain(gxm_messages_t& messages, const gxm_source_t& source, std::string_view what);
