// What a user waits for: a run, its listing, and the opening of a large sheet.
#include <benchmark/benchmark.h>

#include "bench/bench_design.h"
#include "bench/floor.h"
#include "expand/output/design_output.h"
#include "expand/store.h"
#include "gx/db/file/record_codec.h"
#include "gxmake/memory_array.h"

namespace {

// Blocks: about 1,000 leaf instances, what the store of a fresh session holds, and about 10,000,
// 100,000 and 1,000,000 leaves.
constexpr int small = 2, kmax = 7, large = 19, larger = 187, largest = 1866;

void count_leaves(benchmark::State& state) {
  using benchmark::Counter;
  state.counters["leaves"] = kv_sext.insts.count;
  state.counters["s_per_leaf"] =
      Counter(kv_sext.insts.count, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

// A run with the listing off, from the command to the written image.
void run(benchmark::State& state) {
  bench_design design(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    if (design.run() != kv_run_result::done) state.SkipWithError("the run failed");
  }
  count_leaves(state);
  state.counters["pins"] = kv_sext.pins.count;
  state.counters["chars"] = kv_sext.chars.count;
}

void drop_blocks() {
  static_cast<kv_design_t&>(kv_sext) = {};
  kv_limit_design(kv_sext, kv_sext.store_size);
}

// The first run of a session: its store has no blocks yet.
void first_run(benchmark::State& state) {
  bench_design design(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    state.PauseTiming();
    drop_blocks();
    state.ResumeTiming();
    if (design.run() != kv_run_result::done) state.SkipWithError("the run failed");
  }
  count_leaves(state);
}

void floor_of_run(benchmark::State& state) {
  bench_design design(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  design.run();
  run_floor bare;
  for (auto _ : state) bare.pass();
  count_leaves(state);
}

// The same for a store without blocks.
void floor_of_first_run(benchmark::State& state) {
  bench_design design(static_cast<int>(state.range(0)), 1);
  design.run();
  run_floor bare;
  for (auto _ : state) {
    state.PauseTiming();
    drop_blocks();
    state.ResumeTiming();
    bare.pass();
  }
  count_leaves(state);
}

// The image and the listing of a store that is there.
void listing(benchmark::State& state) {
  bench_design design(static_cast<int>(state.range(0)), 1);
  design.run();
  for (auto _ : state) {
    std::string why;
    if (!kv_write_design(kv_sext, kv_sext.designfile, "array/kivo_data", why))
      state.SkipWithError("not written");
  }
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size("array/kivo_data"));
}

void open_sheet(benchmark::State& state) {
  scratch_directory directory;
  directory.write("sheet.gx_1", wide_sheet_bytes(static_cast<int>(state.range(0))));
  const std::string path = directory.file("sheet.gx_1");
  std::int16_t objects = 0;
  for (auto _ : state) {
    const gx_load_t load = gx_load_file(path);
    if (load.code != gx_code::all_is_ok) state.SkipWithError(load.message.c_str());
    objects = load.file ? load.file->object_id_max : std::int16_t{0};
  }
  state.counters["objects"] = objects;
}

BENCHMARK(floor_of_run)->Args({small, 1})->Args({kmax, 1})->Unit(benchmark::kMicrosecond);
BENCHMARK(run)
    ->Args({small, 1})
    ->Args({kmax, 1})
    ->Args({small, 8})
    ->Args({kmax, 8})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(first_run)
    ->Args({kmax, 1})
    ->Args({large, 1})
    ->Args({larger, 1})
    ->Args({largest, 1})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(floor_of_first_run)
    ->Arg(kmax)
    ->Arg(large)
    ->Arg(larger)
    ->Arg(largest)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(listing)->Arg(kmax)->Unit(benchmark::kMillisecond);
BENCHMARK(open_sheet)->Arg(30000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
