// The part of kv_pext about values that a simulator found.
#pragma once

#include <memory>
#include <string>

struct kv_results_t;  // app/values/results_now.h
struct kv_waves_t;    // app/values/waves_state.h

// What VALues ON and COLour show on the sheet in view.
struct kv_values_shown_t {
  bool nets = false, devices = false;
  bool colors = false;
  double low = 0, high = 0;  // of the colours: blue and red
  bool any() const { return nets || devices || colors; }
};

struct kv_values_state_t {
  std::shared_ptr<kv_results_t> results;  // null before VALues FILe and after VALues OFF
  std::string results_path;               // of the last file that was opened
  kv_values_shown_t values_shown;
  std::shared_ptr<kv_waves_t> waves;  // null: the small viewport shows its sheet
  std::size_t results_plot = 0;       // that was asked for, from 1; 0: none was
};
