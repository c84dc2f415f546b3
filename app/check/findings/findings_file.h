// The findings of a check as text, and their files in the design directory: findings.json, and the
// forms that others read.
#pragma once

#include <string>
#include <string_view>

#include "app/check/findings/finding.h"

// The findings as JSON: an array with one object for each, a line each.
std::string kv_findings_json(const kv_findings_t& findings);

// SARIF 2.1.0, for code hosts and editors: a result for each finding, waived ones suppressed; the
// rules with their meanings.
std::string kv_findings_sarif(const kv_findings_t& findings);

// JUnit, for CI servers: a test case for each finding and for each rule that found nothing. An
// error that nobody waived has failed, a waived finding is skipped, a warning has passed and says
// so.
std::string kv_findings_junit(const kv_findings_t& findings, const kv_severities_t& severities);

// Puts a text in the place of a file of the design directory. "", or what is wrong.
std::string kv_write_findings(const std::string& directory, std::string_view file,
                              std::string_view text);
