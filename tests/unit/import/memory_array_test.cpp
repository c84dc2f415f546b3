// The memory array of gxmake, as large as needs banks: flattened, written and loaded.
#include "gxmake/memory_array.h"

#include "gx/db/file/file_slots.h"
#include "kvi/load.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

using MemoryArray = FlattenTest;

TEST_F(MemoryArray, HoldsWhatItsGeneratorCounts) {
  make_design(directory, gxm_memory_array(130, 1));
  declare();
  session.run("STOre SIZe 20000000");
  kv_pext.arrayof_file[0].file_index = gx_file_open("array", "sheet");
  const lines_t full = {"# !! WARNING : More than 32767 pins on Net : \"/GND\"",
                        "# !! WARNING : More than 32767 pins on Net : \"/VDD\""};
  for (const auto& line : answers()) {
    EXPECT_NE(std::find(full.begin(), full.end(), line), full.end()) << line;
  }
  kvi_design_t design;
  const auto loaded = kvi_open_design(design, "design_kv");
  ASSERT_EQ(loaded.result, kvi_load_result::loaded) << loaded.message;
  const auto& info = design.info();
  const auto counts = gxm_count_memory_array(130);
  EXPECT_EQ(info.nbof_instance, counts.leaves);
  EXPECT_EQ(info.nbof_pin, counts.pins);
  EXPECT_EQ(info.nbof_net, counts.nets);
  EXPECT_EQ(info.nbof_net_child, counts.net_childs);
  EXPECT_EQ(info.nbof_macro, counts.macros);
  EXPECT_EQ(info.nbof_pinm, counts.macro_pins);
}

}  // namespace
