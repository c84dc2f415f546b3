// A session on a design made for the test, without a window: the roles of the viewports are those
// of the program, the pointer is in the edit viewport, and nothing is drawn.
#pragma once

#include <functional>
#include <vector>

#include "app/sheet/views.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/vext.h"
#include "tests/support/make_design.h"
#include "tests/support/session_capture.h"

class design_session {
 public:
  using files_t = std::vector<gxm_file_t>;
  // `change` is done to the files before they are written.
  explicit design_session(
      std::string_view description, std::string_view top = "top",
      const std::function<void(files_t&)>& change = [](files_t&) {})
      : old_directory_(std::filesystem::current_path()) {
    auto files = build_design(description);
    change(files);
    gxm_write(files, directory_.path());
    std::filesystem::current_path(directory_.path());
    kv_set_view_roles();
    gx_vext.viewport_id = gx_vext.viewport_edit;
    gx_vext.display_on = true;
    auto& level = kv_pext.arrayof_file[0];
    level.file_index = gx_file_open(top, "sheet");
    level.file_path = gx_string(top);
    kv_pext.file_level_cur = kv_pext.file_level_max = 1;
    kv_pext.file_id_cur = kv_pext.file_id_context = level.file_index;
  }
  ~design_session() { std::filesystem::current_path(old_directory_); }

  lines_t run(std::string_view command) { return capture_.run(command); }
  // What the sheet in the edit viewport holds.
  gx_file_gene_recf_t& file() const { return gx_ptrto_gene_file_buf(kv_pext.file_id_cur); }
  int inst(std::string_view name) const {
    for (const int id : lb_instances(file())) {
      const auto* found = lb_find_prop_inst(file(), id, "INST");
      if (found != nullptr && gx_view(found->nvalue) == name) return id;
    }
    return 0;
  }
  int net(std::string_view name) const {
    for (const int id : lb_nets(file())) {
      const auto* found = lb_find_prop_net(file(), id, "NET");
      if (found != nullptr && gx_view(found->nvalue) == name) return id;
    }
    return 0;
  }
  // Pin property family k (from 1) of an instance.
  gx_pin_pair_t pin(int instance, int k) const {
    auto pair = lb_inq_inst_first_pin_id(file(), instance);
    while (--k > 0) pair = lb_inq_inst_next_pin_id(file(), pair);
    return pair;
  }
  // Every object whose selected flag is set.
  std::vector<int> selected() const {
    std::vector<int> ids;
    for (int id = 1; id <= file().object_id_max; ++id) {
      if (gx_inq_object_selected(file(), id)) ids.push_back(id);
    }
    return ids;
  }
  const scratch_directory& directory() const { return directory_; }

 private:
  scratch_directory directory_;
  std::filesystem::path old_directory_;
  session_capture capture_;
};
