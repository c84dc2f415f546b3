// The state of the expander, one record kv_sext: the user's wishes for the next run, the design
// that the last one made and where it comes from, and what the program holds open. The functions
// here are those of expand/design.h over the design of kv_sext.
#pragma once

#include <cstdint>
#include <string_view>

#include "expand/debug.h"
#include "expand/design.h"
#include "expand/origins.h"
#include "expand/setup.h"
#include "gx/text/records.h"

struct kv_defref_exp_rec_t : kv_setup_t, kv_design_t {
  kv_origins_t origins;  // of the design
  int designfile = -1;   // descriptor of the design file
  bool open_file_ok = false;
  bool gx_graphics_used = false;
};

extern kv_defref_exp_rec_t kv_sext;

inline void kv_empty_store() { kv_empty_design(kv_sext); }

// --- writers: the new index. A full array stops the program.
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
