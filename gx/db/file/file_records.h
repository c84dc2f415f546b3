// The general record of a GX file in memory: its header, its id table and the objects it owns.
//
// The operations of gx/db take this record; a file in a slot is reached with
// gx_ptrto_gene_file_buf. A file read outside the slots (file_index 0) works the same but records
// no undo entries.
#pragma once

#include <cstdint>
#include <memory>
#include <memory_resource>
#include <new>
#include <type_traits>
#include <vector>

#include "gx/db/ids.h"
#include "gx/db/object_records.h"
#include "gx/text/date.h"
#include "gx/text/messages/status.h"

struct gx_file_gene_recf_t {
  // --- stored header
  float software_revision = 2.0F;
  std::int16_t day = 0, month = 0, year = 0, hour = 0, minute = 0;  // of the last save
  std::int16_t object_id_max = 0;     // ids 1..object_id_max are all allocated
  gx_object_id_t primary_object = 0;  // the main object
  gx_object_id_t page_obj_id = 0;     // first page
  gx_object_id_t grid_obj_id = 0;     // first grid
  std::int16_t check_data_done = 0;   // nonzero: changed after the last check
  std::int16_t num_errors = 0;        // of the last check
  std::int32_t dot_width = 0;         // half size of a junction dot, design units
  std::uint8_t displayed = 0;         // viewport that showed the file last
  std::uint8_t reserved = 0;
  std::int16_t fin = gx_file_fin;

  // --- in memory only
  gx_file_index_t file_index = 0;                         // its slot, 0 = none
  std::vector<gx_object_gene_rec_t*> ptr_to_ar_objindex;  // entry i - 1 is object i
  // Owns the object records. (A shared_ptr keeps this record of standard layout, which the field
  // tables need; nobody else holds it.)
  std::shared_ptr<std::pmr::monotonic_buffer_resource> objects =
      std::make_shared<std::pmr::monotonic_buffer_resource>(16 * 1024);
};

inline gx_date_t gx_file_date(const gx_file_gene_recf_t& file) {
  return {file.day, file.month, file.year, file.hour, file.minute};
}
inline void gx_set_file_date(gx_file_gene_recf_t& file, const gx_date_t& date) {
  file.day = date.day;
  file.month = date.month;
  file.year = date.year;
  file.hour = date.hour;
  file.minute = date.minute;
}

// A new record of type Rec in the file's storage, all fields at their defaults; not yet in the id
// table. Records are trivially destructible and live as long as the file.
template <typename Rec>
Rec& gx_new_record(gx_file_gene_recf_t& file) {
  static_assert(std::is_trivially_destructible_v<Rec>);
  return *new (file.objects->allocate(sizeof(Rec), alignof(Rec))) Rec;
}
