// The pages that a design is shown on: each sheet of the hierarchy once, or each of its uses with
// the names of its flat nets; and where blocks and titles lead.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "expand/design.h"
#include "expand/origins.h"
#include "expand/sheet/sheets.h"
#include "gx/vector/sheet_labels.h"

struct kv_page_t {
  kv_component_t* component = nullptr;          // whose sheet it shows
  std::string path = {};                        // "" at the top; of a sheet that of its first use
  std::string name = {};                        // a name for its file, another for every page
  int above = -1;                               // the page of the sheet above
  std::vector<std::pair<int, int>> below = {};  // by instance: the page of its sheet
  // By net of the sheet: the flat net. Of pages by use alone.
  std::vector<std::pair<int, std::int32_t>> nets = {};
};

struct kv_design_pages_t {
  std::string name;  // of the design
  std::shared_ptr<const gx_file_gene_recf_t> top;
  std::unique_ptr<kv_setup_t> setup = std::make_unique<kv_setup_t>();
  std::shared_ptr<kv_sheets_t> sheets = std::make_shared<kv_sheets_t>();
  kv_design_t design;    // of pages by use
  kv_origins_t origins;  // the same
  std::vector<kv_page_t> pages;
  std::vector<std::string> left_out;  // sheets that cannot be shown, and why
};

inline constexpr int kv_most_pages = 100'000;

// Reads the sheet of a directory, the top of what is shown. An instance with one of the properties
// `primitives` ("CLASS", or "CLASS=R"; at most kv_max_list) is shown as it is. Texts that are not
// visible are hidden. False and why when there is no sound sheet.
bool kv_open_pages(kv_design_pages_t& pages, const std::string& directory,
                   std::span<const std::string_view> primitives, std::string& why);

// The top alone; every sheet below it once, in the order of a walk down; every use of one.
void kv_page_of_top(kv_design_pages_t& pages);
void kv_pages_by_sheet(kv_design_pages_t& pages);
// Expands an opened design, into `design` and `origins`. False and why when it cannot be done.
bool kv_expand_pages(kv_design_pages_t& pages, std::string& why);
// False and why when the design cannot be expanded, or is more than kv_most_pages.
bool kv_pages_by_use(kv_design_pages_t& pages, std::string& why);

// What a picture says of a page. It refers to the pages, which must stay.
gx_sheet_labels_t kv_labels_of(const kv_design_pages_t& pages, int page);
