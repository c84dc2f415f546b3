// An empty file in slot 1, and a short way to the brackets of gx/edit.
#pragma once

#include "gx/db/file/file_slots.h"
#include "gx/db/ids.h"
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/display/window.h"
#include "gx/edit/hierarchy.h"
#include "gx/edit/primitives.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "tests/support/objects.h"
#include "tests/support/scratch_directory.h"

class empty_file {
 public:
  empty_file() {
    gx_reset_state();
    gx_init_nograph();
    index = gx_file_open(directory_.path().string(), "sheet");
  }
  ~empty_file() { gx_reset_state(); }

  gx_file_gene_recf_t& file() const { return gx_ptrto_gene_file_buf(index); }

  // An object of the type inside the bracket that is open; `fill` makes it and its children.
  template <typename Fill>
  gx_object_id_t make(gx_type type, gx_pointreal_t at, Fill fill) const {
    const auto id = gx_object_create(index, type, at.x, at.y);
    fill();
    gx_object_close(index, id);
    return id;
  }
  gx_object_id_t make(gx_type type) const {
    return make(type, {}, [type] { gx_plain(type); });
  }
  gx_file_index_t index = 0;

 private:
  scratch_directory directory_;
};
