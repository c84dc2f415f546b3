// What symbols and sheets are built of, in the records of gxmake/description.h.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/drawing/names.h"
#include "import/drawing/placement.h"

// The symbol itself.
gxm_symbol_t gxi_plain_symbol(const gxi_symbol_t& symbol);

// Polylines of more points than one object holds become several.
void gxi_take_shape(std::vector<gxm_shape_t>& shapes, const gxm_shape_t& shape);

// Names for texts that have none: TEXT1, TEXT2 ...
class gxi_text_names_t {
 public:
  explicit gxi_text_names_t(gxi_names_t taken = gxi_names_t()) : taken_(std::move(taken)) {}
  std::string next();

 private:
  gxi_names_t taken_;
  int last_ = 0;
};

gxm_property_t gxi_property_of_line(std::string name, const gxi_line_t& line,
                                    const gxi_look_t& look);
// Where the one line of a property begins; properties are not broken.
gxi_line_t gxi_whole_line(const std::string& value, const gxi_look_t& look);
