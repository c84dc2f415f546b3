// A finding of CHEck DESign.
#pragma once

#include <string>
#include <vector>

#include "app/check/rules.h"

struct kv_finding_t {
  kv_rule rule;
  kv_severity severity;  // as it was set when the check was made; never off
  std::string path;      // of what it is about, as RUN stores paths
  std::string at;        // path of the sheet that holds it: "" for the primary sheet
  std::string sheet;     // file of that sheet; "" when it is on none
  int object_id = 0;     // on that sheet; 0: the sheet as a whole
  std::string words;
  bool waived = false;
};

// The findings of one check in their order; the number of one is its place, from 1.
using kv_findings_t = std::vector<kv_finding_t>;
