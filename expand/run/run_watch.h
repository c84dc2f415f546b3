// The side of a run that is watched: when to report how far it is (expand/run/run.h has the
// watcher).
#pragma once

#include <chrono>
#include <cstdint>

#include "expand/run/run.h"

class kv_run_watch {
 public:
  kv_run_watch(const kv_run_t& run, std::int64_t all_sheets);
  ~kv_run_watch();  // the last call to a watcher that was called before
  kv_run_watch(const kv_run_watch&) = delete;
  kv_run_watch& operator=(const kv_run_watch&) = delete;

  // One more sheet is visited, with `insts` leaves stored so far. False when the run shall end.
  bool next_sheet(std::int64_t insts);

 private:
  using clock = std::chrono::steady_clock;
  kv_run_watcher_t watcher_;  // may be null: nobody watches
  clock::duration period_;
  clock::time_point start_, next_;
  kv_progress_t progress_;
  bool told_ = false;
};
