// What an expansion reports while CHEck DESign makes one: its errors become findings, except those
// that another rule of the check finds by itself.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "app/check/netlist_findings.h"
#include "expand/messages.h"

// Takes the messages of a run in their order.
class kv_run_messages {
 public:
  void take(const kv_told_t& told);
  // In the order of the rules, those of one rule as they were reported. The run may have ended
  // early.
  void find(const kv_netlist_findings_t& found) const;

 private:
  struct message_t {
    kv_rule rule;
    std::string path, words;
  };

  std::vector<message_t> messages_;
  std::unordered_set<std::string> known_;  // a sheet reports the same at each visit
};
