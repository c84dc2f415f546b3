// Symbols of KiCad, as the sheets that use them keep them: units, body styles, pins, shapes.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "import/kicad/shapes.h"

struct gxi_kicad_pin_t {
  int line = 0;
  std::string type{}, shape{};  // passive, power_in ...; line, inverted ...
  gxi_kicad_point_t at{};       // its end, where wires join
  int rotate = 0, length = 0;   // towards the body
  bool hidden = false;
  std::string name{}, number{};
  int name_size = 12'700, number_size = 12'700;
  std::map<std::string, std::string, std::less<>> alternates{};  // other functions: their types
};

// What belongs to a unit and a body style; 0: to all of them.
struct gxi_kicad_unit_t {
  int unit = 0, style = 0;
  std::vector<gxi_kicad_shape_t> shapes{};
  std::vector<gxi_kicad_text_t> texts{};
  std::vector<gxi_kicad_pin_t> pins{};
};

struct gxi_kicad_symbol_t {
  int line = 0;
  std::string name{};
  bool power = false, local_power = false;
  bool names_hidden = false, numbers_hidden = false;
  int name_offset = 5'080;
  std::vector<gxi_kicad_field_t> fields{};
  std::vector<gxi_kicad_unit_t> units{};
  int number_of_units = 1;
  // Numbers of pins that are joined within.
  std::vector<std::vector<std::string>> jumpers{};
  bool same_numbers_joined = false;
};

using gxi_kicad_symbols_t =
    std::map<std::string, std::shared_ptr<const gxi_kicad_symbol_t>, std::less<>>;

// The symbols of a (lib_symbols) list by name; one that extends another has that one's units.
gxi_kicad_symbols_t gxi_kicad_read_symbols(const gxi_kicad_list_t& library);
