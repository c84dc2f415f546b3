// What an expansion tells while CHEck DESign makes one: its errors become findings, but for those
// that a rule of its own tells.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "app/check/netlist_findings.h"

// Takes the lines of a run in their order; the counters of the session say which are errors.
class kv_run_messages {
 public:
  void take(std::string_view line);
  void finish() { flush(); }
  // In the order of the rules, those of one rule as they were told. The run may have ended early.
  void find(const kv_netlist_findings_t& found) const;

 private:
  struct message_t {
    kv_rule rule;
    std::vector<std::string> lines;
  };
  void flush();

  std::vector<std::string> lines_;  // of the message under way
  std::int64_t errors_ = 0;         // counted when it began
  std::vector<message_t> messages_;
  std::unordered_set<std::string> known_;  // a sheet says the same at each visit
};
