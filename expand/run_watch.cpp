#include "expand/run_watch.h"

namespace {

constexpr std::chrono::milliseconds period{200};
kv_run_watcher_t watcher = nullptr;

}  // namespace

void kv_set_run_watcher(kv_run_watcher_t the_watcher) { watcher = the_watcher; }

kv_run_watch::kv_run_watch(std::int64_t all_sheets) : start_(clock::now()), next_(start_ + period) {
  progress_.all_sheets = all_sheets;
}

kv_run_watch::~kv_run_watch() {
  if (!told_ || watcher == nullptr) return;
  progress_.ended = true;
  watcher(progress_);
}

bool kv_run_watch::next_sheet(std::int64_t insts) {
  ++progress_.sheets;
  if (watcher == nullptr) return true;
  const auto now = clock::now();
  if (now < next_) return true;
  progress_.insts = insts;
  progress_.seconds = std::chrono::duration<double>(now - start_).count();
  told_ = true;
  const bool goes_on = watcher(progress_);
  next_ = clock::now() + period;
  return goes_on;
}
