// What the library holds: the loaded design and its open files.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "kvi/kvi.h"
#include "kvi/load.h"
#include "netlist/hierarchy.h"
#include "netlist/path_index.h"

struct kvi_file_closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

struct kvi_state_t {
  kvi_design_t design;  // empty unless a design is loaded
  std::string path;     // of its file
  // Made when they are first asked; null before, and for another design.
  std::unique_ptr<const kv_path_index_t<kvi_design_t>> paths;
  std::unique_ptr<const kv_hierarchy_t<kvi_design_t>> blocks;
  std::string load_error;                             // why the last loading failed
  int designfile = -1;                                // descriptor of the design file
  std::unique_ptr<std::FILE, kvi_file_closer> debug;  // "debug_kvdfi"
  std::int32_t kv_ner = 0;  // errors and warnings of the run that wrote the design file
  std::int32_t kv_nwa = 0;
};
extern kvi_state_t kvi_state;

// A line on the trace.
void kvi_debug(const char* text);

// The loaded design; an empty one when there is none, or when its file is no longer what was
// loaded.
const kvi_design_t& kvi_loaded();
inline kvi_netlist_t kvi_loaded_netlist() { return kvi_netlist_t(kvi_loaded()); }

// strings.cpp: makes the text the value of the string.
void kvi_set_string(kvi_string_record_t& string, std::string_view text);

// The characters of a string of the loaded design; "" for 0.
inline std::string_view kvi_text(std::int32_t string_index) {
  return kvi_state.design.text(string_index);
}
