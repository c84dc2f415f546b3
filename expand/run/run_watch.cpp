#include "expand/run/run_watch.h"

kv_run_watch::kv_run_watch(const kv_run_t& run, std::int64_t all_sheets)
    : watcher_(run.watcher), period_(run.period), start_(clock::now()), next_(start_ + period_) {
  progress_.all_sheets = all_sheets;
}

kv_run_watch::~kv_run_watch() {
  if (!told_) return;
  progress_.ended = true;
  watcher_(progress_);
}

bool kv_run_watch::next_sheet(std::int64_t insts) {
  ++progress_.sheets;
  if (watcher_ == nullptr) return true;
  const auto now = clock::now();
  if (now < next_) return true;
  progress_.insts = insts;
  progress_.seconds = std::chrono::duration<double>(now - start_).count();
  told_ = true;
  const bool goes_on = watcher_(progress_);
  next_ = clock::now() + period_;
  return goes_on;
}
