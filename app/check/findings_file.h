// The file "findings.json" of a design directory: what the last check found.
#pragma once

#include <string>

#include "app/check/finding.h"

// The findings as JSON: an array with one object for each, a line each.
std::string kv_findings_json(const kv_findings_t& findings);
// Puts them in the place of the file. "", or what is wrong.
std::string kv_write_findings(const std::string& directory, const kv_findings_t& findings);
