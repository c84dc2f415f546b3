// Several pages beside one another on one sheet.
#pragma once

#include <vector>

#include "import/lepton/parts.h"

struct gxi_lepton_page_t {
  const gxi_lepton_file_t* records = nullptr;
  std::string_view file{};
  std::vector<gxi_lepton_placed_t> placed{};
  gxi_lepton_point_t shift{};
};

// Sets the shifts, of the pages and of their components. A single page stays where it is. False
// when the pages are too large to lie on one sheet.
bool gxi_lay_out(std::vector<gxi_lepton_page_t>& pages);
