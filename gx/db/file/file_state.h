// The open files, and what a pick among their objects looks at.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "gx/db/ids.h"
#include "gx/text/records.h"
#include "platform/files.h"

struct gx_file_gene_recf_t;  // gx/db/file/file_records.h

// One slot of the file table. A slot, once used, is never given back; gx_file_reopen points it at
// another file.
struct gx_file_io_rec_t {
  bool version_found = false;    // the file existed on disk
  bool already_open_ok = false;  // it was opened and read
  bool file_updated = false;     // an object was created or changed since
  gx_string_record_t dirname;
  gx_string_record_t filetype;
  std::int16_t version = 0;
  gx_string_record_t link_value;     // "_" and the version digits
  gx_string_record_t file_pathname;  // dirname "/" filetype ".gx" link_value
  gx_string_record_t link_pathname;  // dirname "/" filetype ".gx"
  x_file file_io_id;                 // closed by gx_file_close and by the fatal stops
  std::shared_ptr<gx_file_gene_recf_t> start_buf_ptr;  // null while the slot is unused
};

struct gx_file_state_t {
  std::array<gx_file_io_rec_t, gx_max_files + 1> filear;  // entry i is file index i; 0 unused
  std::int8_t num_file_open = 0;                          // slots 1..num_file_open are in use
  gx_file_index_t cur_file = 0;
  std::int16_t check_data_done = 0;
  gx_object_id_t picked_obj_id = 0;
  gx_pointreal_t pick_ap_center, pick_ap_size;
  gx_boundsreal_t pick_ap_bounds;
  bool pick_ap_new = true;
  std::int32_t origin_page_x = 0, origin_page_y = 0;
};

// The part of gx_vext that this room and those above it may touch.
extern gx_file_state_t& gx_files;
