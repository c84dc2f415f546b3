// An expanded design as records: nine arrays, linked by indexes, the summary, and the lists that
// say which property the k-th value of an object is. Several designs may be in memory.
//
// Who reads a netlist asks netlist/netlist.h, which needs no record; these are for who makes,
// writes and maps a design.
#pragma once

#include <cstdint>
#include <string_view>

#include "netlist/blocked_array.h"
#include "netlist/kept_lists.h"

inline constexpr int kv_max_string = 100;  // characters of a stored string

// Which array; also the order of the design file.
enum class kv_array { chars, strings, props, insts, pins, nets, net_childs, macros, pinms };

enum kv_prop_type : std::int16_t {
  kv_prop_string = 0,
  kv_prop_int = 1,
  kv_prop_time = 2,
  kv_prop_real = 3
};

struct kv_string_record_t {
  std::int32_t index = 0;  // character index of the first character
  std::int8_t len = 0;     // 0..100
};

struct kv_prop_record_t {
  std::int16_t prop_type = kv_prop_string;
  union {
    std::int32_t valuec;     // string index
    std::int32_t valuei[3];  // each within 16 bits
    std::int32_t valuet[3];  // numbers of time steps
    float valuer[3];
  };
  kv_prop_record_t() : valuei{0, 0, 0} {}
};

struct kv_signal_state_rec {
  std::int8_t state = 0;
  std::int32_t time = 0;
  std::uint8_t fixed = 0;
};

struct kv_inst_record_t {
  std::int32_t self = 0;
  std::int16_t object_id = 0;
  std::int16_t status = 0;
  std::int8_t timing_index = 0;  // 0..120
  std::int32_t user_data_area = 0;
  std::int32_t sim_path = 0;   // string index
  std::int32_t file_path = 0;  // string index
  std::int16_t nb_of_pin = 0;
  std::int32_t first_pin_ind = 0;  // its pins are consecutive from there
  std::int8_t nb_of_property = 0;
  std::int32_t first_prop = 0;  // its properties are consecutive from there
};

enum kv_io_type : std::int16_t { kv_io_in = 1, kv_io_out = 2, kv_io_ixo = 3, kv_io_io = 4 };

struct kv_pin_record_t {
  std::int32_t self = 0;
  std::int16_t object_id = 0;
  std::int16_t status = 0;
  std::int16_t io_type = 0;  // kv_io_type
  std::int32_t pin_hdler = 0;
  std::int16_t pin_hdl_priority = 1;
  kv_signal_state_rec pin_state;
  std::int32_t rise[3] = {}, fall[3] = {};
  std::int16_t drive_array[4] = {};
  std::int32_t sim_path = 0;
  std::int32_t instance_ind = 0;
  std::int32_t net_ind = 0;
  std::int32_t next_pin_in_ind = 0;   // next pin of the net's input chain
  std::int32_t next_pin_out_ind = 0;  // next pin of the net's output chain
  std::int16_t pin_start = 0, pin_end = 0, pin_net_start = 0;
  std::int8_t nb_of_property = 0;
  std::int32_t first_prop = 0;
  // in memory only (expand/run/pin_chains.cpp): number of input and output chains that end with it
  std::int32_t ends_in = 0, ends_out = 0, seen = 0;
};

enum kv_net_type : std::int16_t { kv_net_standard = 1, kv_net_sub = 2, kv_net_bus = 3 };
enum kv_net_kind : std::int16_t {
  kv_kind_local = 0,
  kv_kind_bus = 1,
  kv_kind_port = 2,
  kv_kind_child = 3,
  kv_kind_global = 4
};

struct kv_net_record_t {
  std::int32_t self = 0;
  std::int16_t object_id = 0;
  std::int16_t net_type = kv_net_standard;
  std::int16_t status = 0;
  std::int16_t net_kind = kv_kind_local;
  std::int32_t name = 0;  // string index; 0 until a name is known
  std::int32_t sim_path = 0;
  std::int32_t nb_of_child = 0;
  std::int32_t first_child = 0;
  std::int8_t nb_of_property = 0;
  std::int32_t first_prop = 0;
  std::int16_t nb_pin_in = 0;
  std::int32_t first_pin_in_ind = 0;
  std::int16_t nb_pin_out = 0;
  std::int32_t first_pin_out_ind = 0;
  // types 1 and 2
  std::int8_t state_init = 0;
  kv_signal_state_rec cur_state, old_state;
  std::int32_t rise[3] = {}, fall[3] = {};
  // type 3 (in the place of the signal view in the file image)
  std::int16_t net_bus_start = 0, net_bus_end = 0;
  std::int32_t netind_start = 0;  // first member
  // bus membership
  std::int32_t bus = 0;            // of a member: its bus
  std::int16_t posinbus = 0;       // from 0
  std::int32_t first_sub_net = 0;  // of a bus: first named sub-net
  std::int32_t father_net = 0;     // of a named sub-net: its bus
  std::int32_t next_sub_net = 0;
  // in memory only: the tails of the chains, so that appending costs the same at any length
  std::int32_t last_child = 0, last_pin_in = 0, last_pin_out = 0, last_sub_net = 0;
  bool full_in_told = false, full_out_told = false;  // a pin too many was reported
};

struct kv_net_child_record_t {
  std::int32_t self = 0;
  std::int32_t sim_path = 0;
  std::int16_t object_id = 0;
  std::int32_t name = 0;
  std::int16_t net_kind = 0;
  std::int32_t next_child = 0;
};

struct kv_macro_record_t {
  std::int32_t self = 0;
  std::int16_t object_id = 0;
  std::int16_t status = 0;
  std::int8_t timing_index = 0;
  std::int32_t sim_path = 0;
  std::int32_t file_path = 0;
  std::int16_t nb_of_pin = 0;
  std::int32_t first_pin_ind = 0;  // macro-pin index
  std::int8_t nb_of_property = 0;
  std::int32_t first_prop = 0;
};

struct kv_pinm_record_t {
  std::int32_t self = 0;
  std::int16_t object_id = 0;
  std::int16_t status = 0;
  std::int32_t sim_path = 0;
  std::int32_t macro_ind = 0;
  std::int32_t net_ind = 0;
  std::int16_t pin_start = 0, pin_end = 0, pin_net_start = 0;
  std::int8_t nb_of_property = 0;
  std::int32_t first_prop = 0;
};

template <>
inline constexpr std::string_view kv_record_name<kv_string_record_t> = "string";
template <>
inline constexpr std::string_view kv_record_name<kv_prop_record_t> = "prop";
template <>
inline constexpr std::string_view kv_record_name<kv_inst_record_t> = "inst";
template <>
inline constexpr std::string_view kv_record_name<kv_pin_record_t> = "pin";
template <>
inline constexpr std::string_view kv_record_name<kv_net_record_t> = "net";
template <>
inline constexpr std::string_view kv_record_name<kv_net_child_record_t> = "net_child";
template <>
inline constexpr std::string_view kv_record_name<kv_macro_record_t> = "macro";
template <>
inline constexpr std::string_view kv_record_name<kv_pinm_record_t> = "pinm";

// The summary of a run; its layout in the file is in netlist/design_records.h.
struct kv_general_info_record_t {
  std::int16_t day = 0, month = 0, year = 0;
  float software_revision = 1.0F;
  std::int32_t nbof_prop_instance = 0, nbof_prop_pin = 0, nbof_prop_net = 0;
  std::int32_t nbof_char = 0, nbof_string = 0, nbof_prop = 0, nbof_instance = 0, nbof_pin = 0,
               nbof_net = 0, nbof_net_child = 0, nbof_pinm = 0, nbof_macro = 0;
  float time_step = 0;
  std::int16_t num_errors = 0, num_warnings = 0;
};

struct kv_design_t {
  std::shared_ptr<kv_block_memory> memory;  // of all arrays, from kv_empty_design on
  kv_blocked_t<char> chars;
  kv_blocked_t<kv_string_record_t> strings;
  kv_blocked_t<kv_prop_record_t> props;
  kv_blocked_t<kv_pin_record_t> pins;
  kv_blocked_t<kv_inst_record_t> insts;
  kv_blocked_t<kv_net_record_t> nets;
  kv_blocked_t<kv_net_child_record_t> net_childs;
  kv_blocked_t<kv_pinm_record_t> pinms;
  kv_blocked_t<kv_macro_record_t> macros;
  kv_general_info_record_t general_info;
  kv_kept_lists_t kept;  // as the run found them
};
