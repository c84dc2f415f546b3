// The least work that a run has to do: the records of a finished store built again, one by one,
// with their texts, and as many bytes written over the design file as its image has.
#pragma once

#include <memory>

class run_floor {
 public:
  run_floor();  // takes the store as the last run left it
  ~run_floor();
  run_floor(const run_floor&) = delete;
  run_floor& operator=(const run_floor&) = delete;

  // One pass over everything; the store is whole again at its end.
  void pass();

 private:
  struct source_t;
  std::unique_ptr<source_t> source_;
};
