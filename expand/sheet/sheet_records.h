// What a run knows of a sheet: its equipotentials, ports, globals, instances in the order of the
// visit, their pins and the properties that are kept of them.
//
// Everything is an index into the arrays of the sheet, counted from 0, -1 for none. Texts lie in
// one string of the sheet. Nothing here depends on the place of the sheet in the hierarchy; what
// does is added at each visit (expand/run/flatten.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "expand/messages.h"
#include "expand/sheet/net_join.h"
#include "gx/db/ids.h"
#include "netlist/records.h"

// A piece of kv_sheet_t::text.
struct kv_text_t {
  std::int32_t at = 0, len = 0;
};

// One property to keep of an object, in the order of its PROPerty list.
struct kv_kept_t {
  kv_prop_type type = kv_prop_string;
  bool decode_at_visit = false;  // its value depends on the enclosing macro
  bool error = false;            // its text cannot be decoded
  union {
    std::int32_t number[3] = {};
    float real[3];
  };
  kv_text_t text;
};

// An initial state: of a net, or on the pin of a global.
struct kv_init_t {
  enum { none, valid, invalid } what = none;
  std::int8_t state = 0;
  bool fixed = false;
  kv_text_t text;
};

struct kv_sheet_net_t {
  gx_object_id_t object_id = 0;
  std::int32_t group = -1;
  kv_text_t name;    // the NET property, empty when there is none
  kv_text_t suffix;  // "/" and the name, or "/N_" and its id
  kv_init_t init;
  std::int32_t kept = -1;  // of masters only
};

// An equipotential.
struct kv_sheet_group_t {
  std::int32_t master = -1;  // net
  std::int32_t port = -1;
  std::int32_t width = 0;  // members of a bus, 0: no bus
  std::int16_t bus_start = 0, bus_end = 0;
  // The global of the run that it is on, here or inside the sheet of an instance; -1: none. Known
  // after kv_find_tied_globals (expand/sheet/sheet_entry.h).
  std::int32_t tied_global = -1;
};

// The member of a bus that bit `bit` is; a bit outside the declared range is taken as a position;
// -1 when that does not exist either. 0 for a net that is no bus.
inline std::int32_t kv_position_on(const kv_sheet_group_t& group, std::int16_t bit) {
  if (group.width <= 0) return 0;
  if (bit >= group.bus_start && bit <= group.bus_end) return bit - group.bus_start;
  return bit >= 0 && bit < group.width ? bit : -1;
}

struct kv_sheet_port_t {
  kv_text_t name, bare_name;      // bare: without the bus range
  bool is_range = false;          // its pin stands for several bits
  kv_io_type io_type = kv_io_io;  // seen from the sheet: PORTIN brings in, PORTOUT takes out
  std::int32_t group = -1;
  std::int32_t net = -1;  // that it is on
};

struct kv_sheet_global_t {
  kv_text_t name;
  std::int32_t run_global = -1;  // its place among the globals of the run
  gx_object_id_t object_id = 0;  // the instance
  std::int32_t group = -1;
  std::int32_t net = -1;      // that it is on
  std::int32_t position = 0;  // on a bus: the member, -1: none that exists
  std::int32_t report = -1;   // what is wrong with it on this sheet
  bool usable = true;         // false: only its report counts
  bool is_second = false;     // not usable because another global has its net
  kv_init_t init;
};

struct kv_sheet_pin_t {
  gx_object_id_t object_id = 0;  // pin property family
  std::int16_t io_type = 0;      // kv_io_type
  enum { type_ok, type_missing, type_invalid } type_state = type_ok;
  bool range_error = false;  // it leaves the range of its bus
  std::int16_t pin_start = 0, pin_end = 0, pin_net_start = 0;
  std::int32_t group = -1;
  // on a bus: its first member, -1 when that lies outside, and how many it meets
  std::int32_t position = 0, width = 1;
  kv_text_t suffix;  // "/" and its name: the PIN property, or "P_" and its id
  std::int32_t kept = -1;
};

struct kv_sheet_inst_t {
  gx_object_id_t object_id = 0;
  bool is_primitive = false;
  std::int8_t timing_index = -1;  // -1: its parent's
  enum { timing_ok, timing_no_number, timing_too_big } timing_state = timing_ok;
  std::int32_t symbol = -1;
  kv_text_t suffix;  // "/" and its name: the INST property, or "I_" and its id
  kv_text_t timing_text;
  std::int32_t first_pin = 0, nb_of_pin = 0;
  std::int32_t kept = -1;
  std::int32_t port_pins = -1;  // into port_pins, filled when its sheet is first entered
};

// A symbol that instances of the sheet use; its instances follow one another.
struct kv_sheet_symbol_t {
  kv_text_t path, directory;
  bool version_valid = false;
  std::int16_t version = 0;
  std::int32_t component = -1;  // of the run's cache, looked up at the first visit
  std::int32_t first_inst = 0, nb_of_inst = 0;
};

// An error of the sheet itself, reported at each visit.
struct kv_report_t {
  kv_message code;
  std::vector<std::string> values;
};

struct kv_sheet_t {
  std::string file_path;
  std::string text;
  std::int32_t deleted_object = 0;  // first deleted object, 0 = none
  bool ends_at_port = false;        // a port without a name: nothing after the ports is done
  // Cost of a visit including everything below: visits of sheets, bytes in memory. Known after
  // kv_find_tied_globals.
  std::int64_t visits = 0, bytes = 0;
  std::vector<kv_sheet_net_t> nets;  // in child order
  std::vector<kv_sheet_group_t> groups;
  std::vector<kv_join_t> joins;  // what made the nets of a group one
  std::vector<kv_sheet_port_t> ports;
  std::vector<kv_sheet_global_t> globals;  // every instance of one
  std::vector<kv_report_t> port_reports, global_reports;
  std::vector<kv_sheet_symbol_t> symbols;
  std::vector<kv_sheet_inst_t> insts;  // symbol by symbol
  std::vector<kv_sheet_pin_t> pins;
  std::vector<kv_kept_t> kept;
  // Per instance that was entered, for each port of its sheet: the instance's pin (its place
  // among the instance's pins) or -1.
  std::vector<std::int32_t> port_pins;

  std::string_view view(kv_text_t piece) const {
    return std::string_view(text).substr(static_cast<std::size_t>(piece.at),
                                         static_cast<std::size_t>(piece.len));
  }
};

// Where each net, instance or pin of a sheet is in its list, by object id; -1: none has it.
template <typename Object>
std::vector<std::int32_t> kv_places_by_id(const std::vector<Object>& objects) {
  std::vector<std::int32_t> places;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const auto id = static_cast<std::size_t>(objects[i].object_id);
    if (places.size() <= id) places.resize(id + 1, -1);
    places[id] = static_cast<std::int32_t>(i);
  }
  return places;
}

// A global of the run.
struct kv_global_net_record_t {
  std::string nvalue;        // its name
  std::int32_t net_ind = 0;  // its flat net, 0 while it has none
};
