// The waivers of a design: findings that its people have looked at and accept. They are lines of
// the text file "waivers" in the design directory:
//
//   rule "path" "reason" date
//
// with \" and \\ for those two in a text. A path that ends with "*" stands for all that begin so.
// "#" begins a comment line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/check/findings/finding.h"

struct kv_waiver_t {
  kv_rule rule = kv_rule::run;
  std::string path, reason, date;
  int line = 0;
};

struct kv_waivers_t {
  std::vector<kv_waiver_t> waivers;
  std::vector<std::string> faults;  // "waivers:3 : unknown rule : nosuch", of lines left out
};

// The waivers of a text. Lines that are none become faults.
kv_waivers_t kv_parse_waivers(std::string_view text);
// Those of a design directory; none when it has no such file.
kv_waivers_t kv_read_waivers(const std::string& directory);

// Marks the findings that are waived; the waivers that meet none.
std::vector<kv_waiver_t> kv_apply_waivers(const std::vector<kv_waiver_t>& waivers,
                                          kv_findings_t& findings);

// The line of a waiver, without its end.
std::string kv_waiver_line(const kv_waiver_t& waiver);
// Adds it to the file of a directory, which is replaced whole. "", or what is wrong.
std::string kv_add_waiver(const std::string& directory, const kv_waiver_t& waiver);
