// The findings of a check in the forms that others read: SARIF of code hosts and editors, JUnit of
// CI servers.
#pragma once

#include <string>

#include "app/check/findings/finding.h"

// SARIF 2.1.0: a result for each finding, waived ones suppressed; the rules with their meanings.
std::string kv_findings_sarif(const kv_findings_t& findings);

// JUnit: a test case for each finding and for each rule that found nothing. An error that nobody
// waived has failed, a waived finding is skipped, a warning has passed and says so.
std::string kv_findings_junit(const kv_findings_t& findings, const kv_severities_t& severities);
