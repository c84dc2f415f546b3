#include "expand/run/run.h"

#include <optional>
#include <string>

#include "expand/debug.h"
#include "expand/messages.h"
#include "expand/output/design_output.h"
#include "expand/run/estimate.h"
#include "expand/run/flatten.h"
#include "gx/db/file/file_state.h"
#include "gx/db/object_access.h"
#include "gx/text/at.h"
#include "gx/text/date.h"
#include "gx/text/messages/session_state.h"
#include "netlist/design_records.h"

namespace {

// Every list must have an entry; the first empty one is reported.
bool lists_are_set(const kv_setup_t& setup) {
  struct list_check {
    std::int32_t count;
    kv_message refusal;
    std::string_view object;
  };
  const list_check checks[] = {
      {setup.primitive.count, kv_message::no_primitive, ""},
      {setup.property_instance.count, kv_message::no_property, "INSTANCE"},
      {setup.property_pin.count, kv_message::no_property, "PIN"},
      {setup.property_net.count, kv_message::no_property, "NET"},
  };
  for (const auto& check : checks) {
    if (check.count > 0) continue;
    kv_tell(check.refusal, {}, check.object);
    return false;
  }
  return true;
}

// Names the nets that nothing used: members of a bus that were never reached.
void check_nets(kv_design_t& design) {
  kv_debug("*****************************************: RUN : checking NETS \n");
  const std::int32_t empty = kv_save_string(design, "");
  if (design.strings.count <= 1) return;
  for (std::int32_t i = 1; i <= design.nets.count; ++i) {
    auto& net = design.nets[i];
    if (net.name >= 1) continue;
    kv_debug(" !! WARNING : Invalid NET ? (not connected ): %d\n", i);
    kv_debug("  object_id : %d  net_type : %d  net_kind : %d  bus : %d  name : %d\n", net.object_id,
             net.net_type, net.net_kind, net.bus, net.name);
    net.name = empty;
    kv_tell(kv_message::member_unused, kv_text(design, net.sim_path),
            std::to_string(i - net.father_net - 1));
  }
}

void store_info(kv_design_t& design, const kv_setup_t& setup) {
  kv_debug("*****************************************: RUN : STORE INFO \n");
  auto& info = design.general_info;
  const gx_date_t date = gx_get_date();
  info.day = date.day;
  info.month = date.month;
  info.year = date.year;
  info.software_revision = 1.0F;
  for (const auto& part : kv_list_parts) info.*part.count = (design.kept.*part.list).count;
  kv_for_each_part([&](const auto& part) { info.*part.count = (design.*part.array).count; });
  info.time_step = setup.time_step;
  info.num_errors = gx_session.num_errors;
  info.num_warnings = gx_session.num_warnings;
  kv_for_each_count([&](std::string_view name, auto count) {
    kv_debug(" %-22s : %d\n", name.data(), info.*count);
  });
  kv_debug(" time_step              : % .1E\n", static_cast<double>(info.time_step));
}

// The whole walk; why it ended early, if it did.
std::optional<kv_run_result> flatten(const kv_run_t& run,
                                     const std::shared_ptr<kv_sheets_t>& sheets) {
  kv_flatten_t walk(run.setup, run.design, *sheets, run.expand_level, run.macro_level);
  walk.to_the_end = run.to_the_end;
  kv_sheet_t& sheet = *kv_analysed(*sheets, sheets->top);
  kv_find_tied_globals(*sheets);
  if (sheet.bytes > kv_free_memory()) {
    kv_tell(kv_message::too_large_for_memory, {}, std::to_string(sheet.bytes >> 20));
    return kv_run_result::design_too_large;
  }
  kv_run_watch watch(run, sheet.visits);
  walk.watch = &watch;
  if (run.origins != nullptr) walk.visits = &run.origins->visits;
  run.macro_level = 0;
  kv_process_inst_of_sheet(walk, sheet, {}, 1, 0);
  if (run.origins != nullptr) run.origins->sheets = sheets;
  return walk.end;
}

}  // namespace

kv_run_result kv_expand(const kv_run_t& run) {
  if (!lists_are_set(run.setup)) return kv_run_result::no_lists;
  const gx_file_index_t top = run.sheets.front().file_index;
  if (top < 1 || top > gx_max_files || top > gx_files.num_file_open) {
    kv_tell(kv_message::no_sheet);
    return kv_run_result::no_sheet;
  }
  const auto& slot = gx_at(gx_files.filear, top);
  const auto sheets = std::make_shared<kv_sheets_t>();
  sheets->setup = &run.setup;
  kv_set_top(*sheets, gx_ptrto_gene_file_buf(top), gx_view(slot.file_pathname));
  return kv_expand_sheets(run, sheets);
}

kv_run_result kv_expand_sheets(const kv_run_t& run, const std::shared_ptr<kv_sheets_t>& sheets) {
  if (!lists_are_set(run.setup)) return kv_run_result::no_lists;
  kv_empty_design(run.design);
  static std::uint64_t runs = 0;
  if (run.origins != nullptr) {
    *run.origins = {};
    run.origins->run = ++runs;
  }
  kv_limit_design(run.design, run.setup.store_size);
  run.design.kept = run.setup;
  kv_tell(kv_message::run_begins);
  if (const auto end = flatten(run, sheets)) {
    if (!run.keeps_part) {  // nobody takes a part of a design for the whole
      kv_empty_design(run.design);
      if (run.origins != nullptr) *run.origins = {};
    }
    return *end;
  }
  check_nets(run.design);
  store_info(run.design, run.setup);
  return kv_run_result::done;
}

kv_run_result kv_run_expansion(const kv_run_t& run, int designfile, bool gen_data) {
  const kv_run_result result = kv_expand(run);
  if (result != kv_run_result::done) return result;
  const std::string_view directory =
      gx_view(gx_at(gx_files.filear, run.sheets.front().file_index).dirname);
  const std::string listing = gen_data ? std::string(directory) + "/kivo_data" : std::string();
  std::string why;
  if (kv_write_design(run.design, designfile, listing, why)) return kv_run_result::done;
  kv_tell(kv_message::not_written, {}, directory, why);
  return kv_run_result::write_failed;
}
