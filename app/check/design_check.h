// The check of a whole design: its sheets, each once, and the netlist that a run would make. No
// sheet is changed and no file is written.
#pragma once

#include <string>

#include "app/check/findings/finding.h"
#include "expand/run/run.h"

struct kv_design_check_t {
  kv_findings_t findings;  // by sheets, then by nets
  std::string fault;       // why there is no check; "" when there is one
};

// Checks the design whose primary sheet is the file of that path, for the user's wishes; a
// PROPerty list may be empty. The watcher is that of a run.
kv_design_check_t kv_check_design(const kv_setup_t& wishes, std::string_view top_path,
                                  const kv_severities_t& severities, kv_run_watcher_t watcher);
