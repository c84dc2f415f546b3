// What the project of a drawing says: gafrc and lepton.conf (in older projects gnetlistrc) beside
// the top sheet or above it.
#pragma once

#include <filesystem>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"

// Where files are looked for.
struct gxi_lepton_place_t {
  std::filesystem::path directory{};
  bool deep = false;  // what is below it, too
};

struct gxi_lepton_project_t {
  // In the order in which they are to be searched.
  std::vector<gxi_lepton_place_t> symbols{}, sheets{};
  bool has_installed = true;  // those of the program follow
  // Whether names of `netname=` and of `net=` are of one sheet; else of the whole design.
  bool netname_is_local = true, net_is_local = true;
  bool netname_wins = false;  // over the name of `net=`, on a net of both
  bool walks_down = true;     // into the sheets of `source=`
};

// Reads one file of either kind into the project, and those that it loads, whose names are kept in
// `files`; what it cannot follow is reported in `messages`. Paths are taken from `beside`.
void gxi_lepton_take_scheme(std::string_view text, std::string_view name,
                            const std::filesystem::path& beside, gxi_lepton_project_t& project,
                            std::list<std::string>& files, gxm_messages_t& messages);
void gxi_lepton_take_config(std::string_view text, gxi_lepton_project_t& project);

// The project of a top sheet. Names of files are kept in `files`, for the messages.
gxi_lepton_project_t gxi_lepton_project(const std::filesystem::path& top,
                                        std::list<std::string>& files, gxm_messages_t& messages);
