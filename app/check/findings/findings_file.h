// The file "findings.json" of a design directory: what the last check found.
#pragma once

#include <string>
#include <string_view>

#include "app/check/findings/finding.h"

// The findings as JSON: an array with one object for each, a line each.
std::string kv_findings_json(const kv_findings_t& findings);
// Puts a text in the place of a file of the design directory. "", or what is wrong.
std::string kv_write_findings(const std::string& directory, std::string_view file,
                              std::string_view text);
