// The part of kv_pext about checks of the design.
#pragma once

#include "app/check/finding.h"

struct kv_check_state_t {
  kv_severities_t severities = kv_default_severities();  // RULe
  bool design_checked = false;
  kv_findings_t findings;         // of the last CHEck DESign
  std::size_t finding_shown = 0;  // number of the one that SHOw or NEXt FINding went to; 0: none
};
