// A session without a display on a small design, in a directory of its own, for the targets that
// run commands. No shell command is started and nothing is waited for.
#pragma once

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <vector>

#include "app/language/interpreter.h"
#include "app/state.h"
#include "expand/store.h"
#include "gx/db/file/file_slots.h"
#include "gx/display/window.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "platform/shell.h"
#include "tests/support/make_design.h"

// Waits are for people and servers, and here is neither.
extern "C" int nanosleep(const timespec*, timespec*) { return 0; }

// Where the target runs; removed at the end of the process.
inline const scratch_directory& fuzz_directory() {
  static const scratch_directory directory;
  return directory;
}

inline void fuzz_expect(bool holds) {
  if (!holds) std::abort();
}

// Once: makes the files, whose design is "top", and goes there.
inline void fuzz_prepare(const std::vector<gxm_file_t>& files) {
  xshell_disable();
  gxm_write(files, fuzz_directory().path());
  setenv("VELMORAN", "product", 1);
  fuzz_expect(chdir(fuzz_directory().path().c_str()) == 0);
  kv_sext.designfile = open("top_design_kv", O_RDWR | O_CREAT, 0600);
}

// For each input: everything as at a start, the sheet of level 1 open.
inline void fuzz_start() {
  gx_reset_state();
  kv_pext = {};
  for (auto* list : {&kv_sext.property_instance, &kv_sext.property_pin, &kv_sext.property_net})
    list->count = 0;
  kv_sext.primitive.count = kv_sext.parameter.count = 0;
  kv_empty_store();
  gx_init_nograph();
  auto& level1 = kv_pext.arrayof_file[0];
  level1.file_index = gx_file_open("top", "sheet");
  level1.file_path = gx_string("top");
  kv_pext.file_level_max = kv_pext.file_level_cur = 1;
  kv_pext.file_id_cur = kv_pext.file_id_context = level1.file_index;
}

inline void fuzz_run(std::string_view line) {
  kv_process_command(gx_string(line), kv_pext.ext_arg, kv_pext.top_var);
}
