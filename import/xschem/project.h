// Where a drawing's own program looks for its symbols: xschemrc, the environment, the installation.
#pragma once

#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/xschem/settings.h"

struct gxi_xschem_project_t {
  std::vector<std::filesystem::path> libraries{};  // of XSCHEM_LIBRARY_PATH, in its order
  std::vector<std::filesystem::path> installed{};  // those of the process kit and of the program
  gxi_xschem_settings_t variables{};               // all that the files and the environment set
};

// The project of a top sheet, an absolute path: the nearest xschemrc beside or above it, else that
// of $HOME/.xschem, else that of the process kit $PDK_ROOT/$PDK. Of Tcl only plain commands are
// read; what cannot be followed is reported in `messages`, by names that are kept in `files`.
gxi_xschem_project_t gxi_xschem_project(const std::filesystem::path& top,
                                        std::list<std::string>& files, gxm_messages_t& messages);
