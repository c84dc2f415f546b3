// What a picture costs: a sheet of 30,000 objects drawn again in a real window, until the server
// has done it. Needs a display.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "app/sheet/views.h"
#include "app/state.h"
#include "gx/db/file_slots.h"
#include "gx/db/object_access.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/vext.h"
#include "gx/window/window.h"
#include "tests/support/make_design.h"

namespace {
// Instances with a body of three colours, texts, pins and wires of their own.
std::string crowded_sheet(int columns, int rows) {
  std::string text = R"(
symbol amp
  rect 0,0 6,4
  rect 2,1 4,3 color yellow filled
  line 0,1 6,1 color green
  text AMP at 2,3
  pin A 0,2 IN
  pin B 6,2 OUT
sheet crowded
  page 1400,900
)";
  const auto n = [](int v) { return std::to_string(v); };
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      const int x = 4 + column * 14, y = 4 + row * 8;
      text += " part U" + n(row * columns + column) + " amp " + n(x) + "," + n(y) + " VALUE=10k\n";
      text += " net\n  wire " + n(x + 6) + "," + n(y + 2) + " " + n(x + 10) + "," + n(y + 2) + " " +
              n(x + 10) + "," + n(y + 5) + "\n";
    }
  return text;
}

// `zoom` in percent of the page shown.
void redraw(benchmark::State& state) {
  if (std::getenv("DISPLAY") == nullptr) return state.SkipWithError("no display");
  scratch_directory directory;
  make_design(directory, crowded_sheet(50, static_cast<int>(state.range(1))));
  std::filesystem::current_path(directory.path());
  gx_reset_state();
  const auto viewports = set_viewports();
  gx_init(viewports, "redraw");
  gx_vext.viewport_edit = 1;
  gx_vext.display_on = true;
  kv_pext.file_id_cur = gx_file_open("crowded", "sheet");
  kv_display_picture_all(1, kv_pext.file_id_cur);
  if (state.range(0) < 100)
    kv_display_picture_area(1, kv_pext.file_id_cur, {0, 0},
                            {static_cast<int>(1400 * 50 * state.range(0)),
                             static_cast<int>(900 * 50 * state.range(0))});
  gx_sync();
  for (auto _ : state) {
    kv_update_viewport_edit();
    gx_sync();
  }
  state.counters["objects"] = gx_ptrto_gene_file_buf(kv_pext.file_id_cur).object_id_max;
  gx_terminate();
  std::filesystem::current_path("/");
}
}  // namespace

BENCHMARK(redraw)
    ->Args({100, 46})
    ->Args({25, 46})
    ->Args({100, 32})
    ->Args({25, 32})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
