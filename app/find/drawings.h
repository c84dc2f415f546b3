// The sheets of the design as they are drawn, each read once and none shown.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "gx/db/file_records.h"

class kv_drawings_t {
 public:
  // The primary sheet; null when none is open. It stays the session's.
  const gx_file_gene_recf_t* top() const;
  // The sheet that an instance stands for; null when it has none that could be shown. It lives as
  // long as this.
  const gx_file_gene_recf_t* below(const gx_file_gene_recf_t& sheet, int inst);

 private:
  std::unordered_map<std::string, std::shared_ptr<gx_file_gene_recf_t>> sheets_;  // by directory
};

// One step of a way from the primary sheet down: an instance and what it leads to.
struct kv_step_t {
  int inst = 0;
  std::string name;  // as paths have it
  gx_string_record_t directory;
};
using kv_way_t = std::vector<kv_step_t>;

// The way to the sheet of a path ("", "/", "/XR/X2" or "XR/X2/"; letters in either case); nothing
// when there is none. Of several the first.
std::optional<kv_way_t> kv_way_to(kv_drawings_t& drawings, std::string_view sheet_path);
