// What a picture costs: a sheet of 30,000 objects drawn again in a real window, until the server
// has done it. Needs a display.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "app/sheet/views.h"
#include "app/state.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/object_access.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/smooth.h"
#include "gx/display/viewport_coords.h"
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

// Calls draw() over and over with `rows` rows of instances in the window.
template <typename Prepare, typename Draw>
void measure(benchmark::State& state, int rows, Prepare prepare, Draw draw) {
  if (std::getenv("DISPLAY") == nullptr) return state.SkipWithError("no display");
  scratch_directory directory;
  make_design(directory, crowded_sheet(50, rows));
  std::filesystem::current_path(directory.path());
  gx_reset_state();
  const auto viewports = set_viewports();
  gx_init(viewports, "redraw");
  gx_vext.viewport_edit = 1;
  gx_vext.display_on = true;
  kv_pext.file_id_cur = gx_file_open("crowded", "sheet");
  kv_display_picture_all(1, kv_pext.file_id_cur);
  prepare();
  gx_sync();
  for (auto _ : state) {
    draw();
    gx_sync();
  }
  state.counters["objects"] = gx_ptrto_gene_file_buf(kv_pext.file_id_cur).object_id_max;
  state.counters["width"] = gx_vext.bitmap_size.x + 1;
  state.counters["height"] = gx_vext.bitmap_size.y + 1;
  gx_set_smooth(false);
  gx_terminate();
  std::filesystem::current_path("/");
}

// `zoom` in percent of the page shown.
void redraw(benchmark::State& state) {
  const auto show = [&] {
    if (state.range(0) < 100)
      kv_display_picture_area(1, kv_pext.file_id_cur, {0, 0},
                              {static_cast<int>(1400 * 50 * state.range(0)),
                               static_cast<int>(900 * 50 * state.range(0))});
  };
  measure(state, static_cast<int>(state.range(1)), show, kv_update_viewport_edit);
}

// Pictures as a user drags or turns the wheel, each another one: 30,000 objects, plain or smooth.
void drag(benchmark::State& state) {
  int n = 0;
  measure(
      state, 46, [&] { gx_set_smooth(state.range(0) != 0); },
      [&] {
        const int way = ++n / 20 % 2 == 0 ? 1 : -1;
        gx_viewport_pan(1, 37 * way, 11 * way);
        kv_update_viewport_edit();
      });
}

void wheel(benchmark::State& state) {
  int n = 0;
  measure(
      state, 46, [&] { gx_set_smooth(state.range(0) != 0); },
      [&] {
        const bool nearer = ++n / 6 % 2 == 0;
        gx_viewport_zoom_at(1, {900, 500}, nearer ? 4 : 5, nearer ? 5 : 4);
        kv_update_viewport_edit();
      });
}
}  // namespace

BENCHMARK(redraw)
    ->Args({100, 46})
    ->Args({25, 46})
    ->Args({100, 32})
    ->Args({25, 32})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(drag)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(wheel)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
