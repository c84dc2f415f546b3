// The rules of CHEck SHEet: what the property vocabulary asks of instances, pins, nets and frames.
#pragma once

#include <string>

#include "app/check/check_reference.h"
#include "app/check/check_tables.h"
#include "app/language/commands.h"
#include "gx/db/file_records.h"
#include "gx/db/ids.h"
#include "gx/text/message_list.h"

// One run of the check.
struct kv_check_t {
  gx_file_index_t file_index;
  const gx_file_gene_recf_t& file;
  kv_reference_file& reference;
  int errors = 0, warnings = 0;
  kv_check_table_t port_names, instance_names, net_names, frame_names;

  // One line and one more error or warning; the lines with the details do not count.
  template <typename... Part>
  void error(const Part&... part) {
    ++errors;
    gx_tell(part...);
  }
  template <typename... Part>
  void warning(const Part&... part) {
    ++warnings;
    gx_tell(part...);
  }
};

void kv_check_instances(kv_check_t& check);
void kv_check_nets(kv_check_t& check);
void kv_check_frames(kv_check_t& check);
// Names met more than once over the sheet.
void kv_check_instance_names(kv_check_t& check);
void kv_check_net_names(kv_check_t& check);
