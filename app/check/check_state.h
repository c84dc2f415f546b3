// The part of kv_pext about checks of the design.
#pragma once

#include "app/check/finding.h"

// A device that LIST DEVices told.
struct kv_listed_device_t {
  std::string path, at;  // of the device, and of the sheet that holds it: "" for the primary sheet
  int object_id = 0;     // on that sheet
  std::string words;
};

struct kv_check_state_t {
  kv_severities_t severities = kv_default_severities();  // RULe
  bool design_checked = false;
  kv_findings_t findings;  // of the last CHEck DESign
  // Of the last LIST DEVices, until the next CHEck DESign: SHOw and NEXt FINding go to these then.
  std::vector<kv_listed_device_t> listed_devices;
  std::size_t finding_shown = 0;  // number of the one that SHOw or NEXt FINding went to; 0: none
};
