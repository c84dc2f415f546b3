// Names of the whole design: those that are one net somewhere are one everywhere.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "import/drawing/drawing.h"

class gxi_kicad_globals_t {
 public:
  void join(const std::vector<std::string>& names);
  // Gives the nets and the instances of globals of all sheets one name a net. Names that differ in
  // their case stay apart, and a net of the top sheet from one of the design.
  void share(gxi_design_t& design);

 private:
  const std::string& first(const std::string& name);

  std::map<std::string, std::string> same_{};
};
