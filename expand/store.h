// The expanded design store: the flat netlist that a run builds, in one global record kv_sext.
//
// Records live in blocked arrays: 500 blocks of 1000, addressed by a 1-based index, 0 = none.
// Records never move; a new run refills the arrays from index 1 and uses their blocks again. Links
// between records are indexes; the reference fields of the file image are not kept in memory.
// A bad index or a full array writes debug lines and ends in kv_error_stop.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

#include "gx/text/records.h"

inline constexpr int kv_blocks = 500;
inline constexpr int kv_block_size = 1000;
inline constexpr std::int32_t kv_max_records = kv_blocks * kv_block_size;
inline constexpr int kv_max_string = 100;  // characters of a stored string
inline constexpr int kv_max_list = 16;     // entries of a PRIMitive, PARAMeter or PROPerty list

// Which array; also the order of the design file.
enum class kv_array { chars, strings, props, insts, pins, nets, net_childs, macros, pinms };

// A design larger than the store, met while a run goes on: thrown to the run, which is refused.
struct kv_store_full_t {
  std::string_view name;  // of the array that is full: its counter is max_<name>_cur
};

// Reports that the array whose counter is max_<name>_cur ("string", "net_child", ...) is full and
// stops the program (kv_error_stop); during a run throws kv_store_full_t instead.
[[noreturn]] void kv_array_full(std::string_view name, std::int32_t index);

// One blocked array. `count` is the number of records in use.
template <typename Record>
struct kv_blocked_t {
  std::int32_t count = 0;
  std::int32_t touched = 0;  // records behind this index were never used
  std::array<std::unique_ptr<Record[]>, kv_blocks> blocks;

  // Record `index` (from 1), which the caller has checked.
  Record& operator[](std::int32_t index) {
    const auto i = static_cast<std::size_t>(index - 1);
    return blocks[i / kv_block_size][i % kv_block_size];
  }
  bool holds(std::int32_t index) const { return index >= 1 && index <= count; }
  // The next record, fresh; its index is `count` then.
  Record& add(std::string_view name) {
    if (count == kv_max_records) kv_array_full(name, kv_max_records + 1);
    const auto at = static_cast<std::size_t>(count++);
    auto& block = blocks[at / kv_block_size];
    if (!block) block = std::make_unique<Record[]>(kv_block_size);
    Record& record = block[at % kv_block_size];
    if (count <= touched) {
      record = Record{};
    } else {
      touched = count;
    }
    return record;
  }
  // Makes room for indexes count + 1 .. count + n and returns the first; the new records are
  // fresh (all fields at their defaults).
  std::int32_t append(std::int32_t n, std::string_view name) {
    if (n > kv_max_records - count) kv_array_full(name, kv_max_records + 1);
    return extend(n);
  }
  // The same for an `n` that the caller has checked.
  std::int32_t extend(std::int32_t n) {
    const std::int32_t first = count + 1;
    for (std::int32_t i = first; i < first + n; ++i) {
      const auto at = static_cast<std::size_t>(i - 1);
      auto& block = blocks[at / kv_block_size];
      if (!block) block = std::make_unique<Record[]>(kv_block_size);
      if (i <= touched) block[at % kv_block_size] = Record{};
    }
    count += n;
    touched = std::max(touched, count);
    return first;
  }
};

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
  // in memory only (expand/pin_chains.cpp): number of input and output chains that end with it
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

// --- set-up lists
struct kv_prim_in_record_t {
  gx_string_record_t name, nvalue;  // nvalue empty: any value
};
struct kv_param_in_record_t {
  gx_string_record_t name;
  float nvalue[3] = {};
};
struct kv_prop_type_record_t {
  gx_string_record_t name, prop_type;  // the first letter of prop_type is I, T, R or S, either case
};
template <typename Entry>
struct kv_list_t {
  std::int32_t count = 0;
  std::array<Entry, kv_max_list> entry;
  const Entry* begin() const { return entry.data(); }
  const Entry* end() const { return entry.data() + count; }
};

// The summary of a run; its layout in the file is in expand/design_records.h.
struct kv_general_info_record_t {
  std::int16_t day = 0, month = 0, year = 0;
  float software_revision = 1.0F;
  std::int32_t nbof_prop_instance = 0, nbof_prop_pin = 0, nbof_prop_net = 0;
  std::int32_t nbof_char = 0, nbof_string = 0, nbof_prop = 0, nbof_instance = 0, nbof_pin = 0,
               nbof_net = 0, nbof_net_child = 0, nbof_pinm = 0, nbof_macro = 0;
  float time_step = 0;
  std::int16_t num_errors = 0, num_warnings = 0;
};

struct kv_defref_exp_rec_t {
  kv_blocked_t<char> chars;
  kv_blocked_t<kv_string_record_t> strings;
  kv_blocked_t<kv_prop_record_t> props;
  kv_blocked_t<kv_pin_record_t> pins;
  kv_blocked_t<kv_inst_record_t> insts;
  kv_blocked_t<kv_net_record_t> nets;
  kv_blocked_t<kv_net_child_record_t> net_childs;
  kv_blocked_t<kv_pinm_record_t> pinms;
  kv_blocked_t<kv_macro_record_t> macros;
  kv_list_t<kv_prim_in_record_t> primitive;
  kv_list_t<kv_param_in_record_t> parameter;
  kv_list_t<kv_prop_type_record_t> property_instance, property_pin, property_net;
  float time_step = 0;
  kv_general_info_record_t general_info;
  int designfile = -1;  // descriptor of the design file
  bool open_file_ok = false;
  bool gx_graphics_used = false;
  bool run_goes_on = false;  // see kv_array_full
};

extern kv_defref_exp_rec_t kv_sext;
extern std::FILE* kv_debf;  // the engine's debug file; owned by the application; may be null

// Sets the nine counters to 0; blocks are kept for the next run.
void kv_empty_store();

// The fatal stop of the engine: tells both debug files, gives back what the process holds, says so
// on standard output, and ends the process with a failure status.
[[noreturn]] void kv_error_stop();

// --- writers: the new index
std::int32_t kv_save_string(std::string_view text);  // over 100 characters stops the program
std::int32_t kv_save_prop_str(std::string_view text);
std::int32_t kv_save_prop_int(std::int32_t v1, std::int32_t v2, std::int32_t v3);
std::int32_t kv_save_prop_time(std::int32_t v1, std::int32_t v2, std::int32_t v3);
std::int32_t kv_save_prop_real(float v1, float v2, float v3);

// --- accessors, 1-based
kv_string_record_t& kv_ptrto_string_rec(std::int32_t index);
kv_prop_record_t& kv_ptrto_prop_rec(std::int32_t index);
kv_pin_record_t& kv_ptrto_pin_rec(std::int32_t index);
kv_inst_record_t& kv_ptrto_inst_rec(std::int32_t index);
kv_net_record_t& kv_ptrto_net_rec(std::int32_t index);
kv_net_child_record_t& kv_ptrto_net_child_rec(std::int32_t index);
kv_pinm_record_t& kv_ptrto_pinm_rec(std::int32_t index);
kv_macro_record_t& kv_ptrto_macro_rec(std::int32_t index);
const char* kv_ptrto_chars(std::int32_t string_index);       // the string's first character
std::string_view kv_string_view(std::int32_t string_index);  // "" for 0
gx_string_record_t kv_copy_string_kv_gx(std::int32_t string_index);

// --- chain walkers: the n-th element, from 1
kv_net_child_record_t& kv_net_ptrto_net_child_rec(std::int32_t net_index, std::int32_t n);
kv_pin_record_t& kv_net_ptrto_pin_in_rec(std::int32_t net_index, std::int32_t n);
kv_pin_record_t& kv_net_ptrto_pin_out_rec(std::int32_t net_index, std::int32_t n);
