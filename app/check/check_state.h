// The part of kv_pext about checks of the design.
#pragma once

#include <cstdint>

#include "app/check/findings/finding.h"

// What a command listed for SHOw FINding and NEXt FINding to go to.
struct kv_listed_place_t {
  std::string path, at;  // of the object, and of the sheet that holds it: "" for the primary sheet
  int object_id = 0;     // on that sheet; 0: the sheet as a whole
  std::string words;
};

// The command that listed last.
enum class kv_listed : std::uint8_t { findings, devices, changes };

struct kv_check_state_t {
  kv_severities_t severities = kv_default_severities();  // RULe
  bool design_checked = false;
  kv_findings_t findings;  // of the last CHEck DESign
  kv_listed listed = kv_listed::findings;
  std::vector<kv_listed_place_t> listed_places;  // of LIST DEVices or DIFference DESign
  std::size_t finding_shown = 0;  // number of the one that SHOw or NEXt FINding went to; 0: none
};
