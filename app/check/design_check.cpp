#include "app/check/design_check.h"

#include "app/check/cells.h"
#include "app/check/netlist_findings.h"
#include "app/check/run_messages.h"
#include "app/check/sheet_findings.h"
#include "app/find/aside.h"
#include "gx/db/file/record_codec.h"

kv_design_check_t kv_check_design(const kv_setup_t& wishes, std::string_view top_path,
                                  const kv_severities_t& severities, kv_run_watcher_t watcher) {
  if (wishes.primitive.count == 0) return {{}, "No property to define the PRIMITIVE ? "};
  const auto setup = std::make_unique<kv_setup_t>(wishes);
  kv_keep_something(*setup);
  setup->store_size = kv_max_records;  // the memory is the limit

  // From the file: what a command has marked on the sheet in memory is no part of the design.
  const auto load = gx_load_file(top_path);
  if (!load.file) return {{}, load.message};

  kv_design_check_t check;
  const auto sheets = std::make_shared<kv_sheets_t>();
  sheets->setup = setup.get();
  sheets->keeps_files = true;
  kv_set_top(*sheets, *load.file, top_path);
  kv_electrical_marks marks;
  kv_find_on_sheets(*sheets, severities, check.findings, marks);

  kv_run_messages told;
  const kv_message_catcher catcher([&](const auto& message) { told.take(message); });

  kv_design_t design;
  kv_origins_t origins;
  const kv_sheet_stack_t no_sheets;
  std::int16_t level = 0;
  std::int32_t macro = 0;
  const kv_run_t run{.setup = *setup,
                     .design = design,
                     .sheets = no_sheets,
                     .expand_level = level,
                     .macro_level = macro,
                     .watcher = watcher,
                     .to_the_end = true,
                     .origins = &origins,
                     .keeps_part = true};
  const kv_run_result result = kv_expand_sheets(run, sheets);
  if (result == kv_run_result::stopped) return {{}, "stopped "};
  const kv_netlist_findings_t found{design, origins, severities, marks, check.findings};
  if (result == kv_run_result::done) kv_find_on_netlist(found);
  told.find(found);
  return check;
}
