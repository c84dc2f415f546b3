#include "app/find/net_choice.h"

#include "app/find/find_path.h"
#include "app/language/answers.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/text/messages/message_list.h"

namespace {

constexpr std::size_t most_nets = 20;

}  // namespace

bool kv_is_chosen_net(const gx_file_gene_recf_t& file, int net) {
  if (gx_inq_object_deleted(file, net)) return false;
  if (gx_inq_object_selected(file, net)) return true;
  for (const int id : lb_segments(file, net))
    if (!gx_inq_object_deleted(file, id) && gx_inq_object_selected(file, id)) return true;
  return false;
}

std::optional<std::vector<std::int32_t>> kv_wanted_nets(std::string_view keyword,
                                                        const kv_command_t& command,
                                                        const kv_expanded_t& expanded,
                                                        std::string_view path) {
  const auto refuse = [&](std::string_view error) {
    kv_refuse(keyword, command, error, 3);
    return std::nullopt;
  };
  if (!path.empty()) {
    kv_drawings_t drawings;
    auto nets = kv_search_nets(expanded, drawings, path, most_nets);
    if (!nets.empty()) return nets;
    refuse("# !! Error : Net NOT FOUND ? ");
    const auto search = kv_search_path(drawings, path, 1);
    kv_tell_search_end("No net", search);
    return std::nullopt;
  }
  const auto view = kv_edit_view();
  if (!view.has_sheet()) return refuse(kv_no_sheet);
  int chosen = 0;
  for (const int net : lb_nets(view.file())) {
    if (!kv_is_chosen_net(view.file(), net)) continue;
    if (chosen != 0) return refuse("# !! Error : More Than 1 Net selected ");
    chosen = net;
  }
  if (chosen == 0) return refuse("# !! Error : No NET selected ? ");
  const std::int32_t visit = kv_visit_at(expanded, gx_view(kv_pext.cur_sim_path));
  const std::int32_t net = visit < 0 ? 0 : kv_flat_net_of(expanded, visit, chosen);
  if (net == 0) return refuse("# !! Error : Net NOT FOUND ? ");
  return std::vector{net};
}
