// One expansion run.
#include "expand/run.h"

#include <optional>
#include <string>

#include "expand/debug.h"
#include "expand/flatten.h"
#include "expand/output.h"
#include "gx/db/file_state.h"
#include "gx/db/object_access.h"
#include "gx/text/date.h"
#include "gx/text/message_list.h"
#include "gx/text/session_state.h"

namespace {

void refuse(std::string_view error) {
  gx_tell("# RUN ");
  gx_tell(error);
}

// Every list must have an entry; the first empty one is told.
bool lists_are_set() {
  struct list_check {
    std::int32_t count;
    std::string_view error;
  };
  const list_check checks[] = {
      {kv_sext.primitive.count, "# !! Error : No property to define the PRIMITIVE ? "},
      {kv_sext.property_instance.count, "# !! Error : No property to keep on INSTANCE ? "},
      {kv_sext.property_pin.count, "# !! Error : No property to keep on PIN ? "},
      {kv_sext.property_net.count, "# !! Error : No property to keep on NET ? "},
  };
  for (const auto& check : checks) {
    if (check.count > 0) continue;
    refuse(check.error);
    return false;
  }
  return true;
}

// Names the nets that nothing used: members of a bus that were never reached.
void check_nets() {
  kv_debug("*****************************************: RUN : checking NETS \n");
  const std::int32_t empty = kv_save_string("");
  if (kv_sext.strings.count <= 1) return;
  for (std::int32_t i = 1; i <= kv_sext.nets.count; ++i) {
    auto& net = kv_sext.nets[i];
    if (net.name >= 1) continue;
    kv_debug(" !! WARNING : Invalid NET ? (not connected ): %d\n", i);
    kv_debug("  object_id : %d  net_type : %d  net_kind : %d  bus : %d  name : %d\n", net.object_id,
             net.net_type, net.net_kind, net.bus, net.name);
    net.name = empty;
    gx_count_warning();
    gx_tell("# !! WARNING : PORT SubNET of BUS NOT USED ?? = ",
            std::to_string(i - net.father_net - 1));
    gx_tell_quoted("# !! NET name  : ", kv_string_view(net.sim_path));
  }
}

void store_info() {
  kv_debug("*****************************************: RUN : STORE INFO \n");
  auto& info = kv_sext.general_info;
  const gx_date_t date = gx_get_date();
  info.day = date.day;
  info.month = date.month;
  info.year = date.year;
  info.software_revision = 1.0F;
  info.nbof_prop_instance = kv_sext.property_instance.count;
  info.nbof_prop_pin = kv_sext.property_pin.count;
  info.nbof_prop_net = kv_sext.property_net.count;
  info.nbof_char = kv_sext.chars.count;
  info.nbof_string = kv_sext.strings.count;
  info.nbof_prop = kv_sext.props.count;
  info.nbof_instance = kv_sext.insts.count;
  info.nbof_pin = kv_sext.pins.count;
  info.nbof_net = kv_sext.nets.count;
  info.nbof_net_child = kv_sext.net_childs.count;
  info.nbof_pinm = kv_sext.pinms.count;
  info.nbof_macro = kv_sext.macros.count;
  info.time_step = kv_sext.time_step;
  info.num_errors = gx_session.num_errors;
  info.num_warnings = gx_session.num_warnings;
  const std::pair<const char*, std::int32_t> counts[] = {
      {"nbof_prop_instance", info.nbof_prop_instance},
      {"nbof_prop_pin", info.nbof_prop_pin},
      {"nbof_prop_net", info.nbof_prop_net},
      {"nbof_char", info.nbof_char},
      {"nbof_string", info.nbof_string},
      {"nbof_prop", info.nbof_prop},
      {"nbof_instance", info.nbof_instance},
      {"nbof_pin", info.nbof_pin},
      {"nbof_net", info.nbof_net},
      {"nbof_net_child", info.nbof_net_child},
      {"nbof_pinm", info.nbof_pinm},
      {"nbof_macro", info.nbof_macro},
  };
  for (const auto& [name, value] : counts) kv_debug(" %-22s : %d\n", name, value);
  kv_debug(" time_step              : % .1E\n", static_cast<double>(info.time_step));
}

// The whole walk; why it ended early, if it did.
std::optional<kv_run_result> flatten(const kv_run_t& run, gx_file_index_t top) {
  const auto& slot = gx_files.filear[static_cast<std::size_t>(top)];
  kv_flatten_t walk{run.expand_level, run.macro_level, gx_session.num_errors};
  kv_sheet_t sheet = kv_analyse_sheet(gx_ptrto_gene_file_buf(top), gx_view(slot.file_pathname),
                                      walk.cache.globals);
  kv_find_tied_globals(walk.cache, sheet, 1);
  run.macro_level = 0;
  kv_sext.run_goes_on = true;
  kv_process_inst_of_sheet(walk, sheet, {}, 1, 0);
  kv_sext.run_goes_on = false;
  return walk.end;
}

}  // namespace

kv_run_result kv_run_expansion(const kv_run_t& run) {
  if (!lists_are_set()) return kv_run_result::no_lists;
  const gx_file_index_t top = run.sheets.front().file_index;
  if (top < 1 || top > gx_max_files || top > gx_files.num_file_open) {
    refuse("# !! Error : No Sheet available to expand ? ");
    return kv_run_result::no_sheet;
  }
  kv_empty_store();
  gx_tell(" RUN ");
  if (const auto end = flatten(run, top)) {
    kv_empty_store();  // a part of a design is not taken for the whole
    return *end;
  }

  check_nets();
  store_info();
  const std::string_view directory =
      gx_view(gx_files.filear[static_cast<std::size_t>(top)].dirname);
  if (kv_write_output(run.gen_data, directory)) return kv_run_result::done;
  gx_tell_quoted("# !! Error : Expanded data not written whole in : ", directory);
  gx_count_error();
  return kv_run_result::write_failed;
}
