// The plain commands of a Tcl file that sets variables: set, append, lappend, source, if.
#pragma once

#include <filesystem>
#include <list>
#include <map>
#include <string>

#include "import/drawing/drawing.h"

// By name; those of the environment are "env(NAME)". Paths are taken from env(PWD).
using gxi_xschem_settings_t = std::map<std::string, std::string>;

// Reads the file and those that it sources. Nothing is run: commands of other names are passed
// over; one that cannot be read although it is about libraries is reported in `messages`, by names
// that are kept in `files`. A file that cannot be read is reported, too.
void gxi_xschem_take_settings(const std::filesystem::path& file, gxi_xschem_settings_t& settings,
                              std::list<std::string>& files, gxm_messages_t& messages);
