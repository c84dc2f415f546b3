// The sheets of the design as they are drawn, each read once and none shown.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "expand/sheet/sheets.h"
#include "gx/db/file/file_records.h"

class kv_drawings_t {
 public:
  // The primary sheet is the session's. With a set-up the sheets can be analysed for it.
  explicit kv_drawings_t(const kv_setup_t* setup = nullptr);
  // The primary sheet; null when none is open.
  const gx_file_gene_recf_t* top() const { return sheets_.top.file.get(); }
  // The sheet that an instance stands for; null when it has none that could be shown. It lives as
  // long as this.
  const gx_file_gene_recf_t* below(const gx_file_gene_recf_t& sheet, int inst);

  kv_component_t* top_component() { return top() != nullptr ? &sheets_.top : nullptr; }
  // Of the sheet in a directory; null when there is none that could be shown.
  kv_component_t* component_in(const gx_string_record_t& directory);
  kv_sheet_t& analysed(kv_component_t& component) { return *kv_analysed(sheets_, component); }

 private:
  kv_sheets_t sheets_;
};

// One step of a way from the primary sheet down: an instance and what it leads to.
struct kv_step_t {
  int inst = 0;
  std::string name;  // as paths have it
  gx_string_record_t directory;
};
using kv_way_t = std::vector<kv_step_t>;

// Where a walk over the drawings is.
struct kv_walked_t {
  kv_component_t& component;
  const std::string& path;  // "" at the top
  const kv_way_t& way;      // from where the walk began
  const gx_file_gene_recf_t& sheet() const { return *component.file; }
};
// An instance to go into, and its name.
struct kv_next_t {
  int inst;
  std::string name;
};
// At each visit of a sheet: where to go, in this order.
using kv_drawing_visitor_t = std::function<std::vector<kv_next_t>(const kv_walked_t& walked)>;
// Visits a sheet, whose path is given, and the sheets below it, each as often as it is used;
// kv_max_levels at most.
void kv_walk_drawings(kv_drawings_t& drawings, kv_component_t& from, const std::string& path,
                      const kv_drawing_visitor_t& visitor);

// The way to the sheet of a path ("", "/", "/XR/X2" or "XR/X2/"; letters in either case); nothing
// when there is none. Of several the first.
std::optional<kv_way_t> kv_way_to(kv_drawings_t& drawings, std::string_view sheet_path);
