// A generated design in a directory of its own, opened and declared as a session would.
#pragma once

#include <string>

#include "expand/run/run.h"
#include "tests/support/scratch_directory.h"

class bench_design {
 public:
  // The memory array of gxmake: about 540 leaf instances a block.
  bench_design(int blocks, int variants);
  ~bench_design();

  kv_run_result run(bool gen_data = false);

 private:
  scratch_directory directory_;
  kv_sheet_stack_t sheets_;
  std::int16_t expand_level_ = 0;
  std::int32_t macro_level_ = 0;
};

// A sheet of `objects` objects, nearly all of them wires and their ends, as the bytes of its file.
std::string wide_sheet_bytes(int objects);
