#include "app/check/design_check.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "app/check/cells.h"
#include "app/check/netlist_findings.h"
#include "app/check/sheet_findings.h"
#include "app/find/aside.h"
#include "expand/messages.h"
#include "gx/db/file/record_codec.h"
#include "netlist/path_index.h"

namespace {

constexpr kv_rule found_by_message[] = {kv_rule::bus_range, kv_rule::run};

// Where a path is drawn: the pin, else the part, else the net; of what the run had not come to, the
// block that it is in.
kv_place_t place_of(const kv_netlist_findings_t& found, const kv_memory_paths_t& paths,
                    std::string_view path) {
  constexpr kv_named first_to_last[] = {kv_named::pin,   kv_named::pinm, kv_named::inst,
                                        kv_named::macro, kv_named::net,  kv_named::net_child};
  for (; !path.empty(); path = path.substr(0, path.rfind('/'))) {
    const std::string key = kv_path_key(path);
    const auto hits = paths.find({&key, 1}, SIZE_MAX);
    for (const kv_named what : first_to_last) {
      const auto hit = std::ranges::find_if(
          hits, [&](kv_object_t h) { return h.what == what && paths.path(h) == path; });
      if (hit != hits.end()) return kv_place_of(found.design, found.origins, *hit);
    }
  }
  return {};
}

// What the expansion reports: its errors become findings, except those that another rule of the
// check finds by itself.
class run_messages {
 public:
  void take(const kv_told_t& told) {
    const kv_rule rule = kv_rule_of(told.code);
    const bool is_found = std::ranges::find(found_by_message, rule) != std::end(found_by_message);
    if (kv_row_of(told.code).kind != kv_message_kind::error || !is_found) return;
    std::string words = kv_words_of(told);
    if (words.empty() || !known_.insert(words).second) return;
    messages_.push_back({rule, std::string(told.path), std::move(words)});
  }

  // In the order of the rules, those of one rule as they were reported. The run may have ended
  // early.
  void find(const kv_netlist_findings_t& found) const {
    if (messages_.empty()) return;
    const kv_memory_paths_t paths(found.design);
    for (const kv_rule rule : found_by_message) {
      for (const auto& message : messages_) {
        if (message.rule != rule) continue;
        found.add(rule, message.path, place_of(found, paths, message.path), message.words);
      }
    }
  }

 private:
  struct message_t {
    kv_rule rule;
    std::string path, words;
  };

  std::vector<message_t> messages_;
  std::unordered_set<std::string> known_;  // a sheet reports the same at each visit
};

}  // namespace

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

  run_messages told;
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
