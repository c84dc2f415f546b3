// What a page for the browser knows of a design, as JSON: each sheet once with its picture, its
// nets and what its blocks join to them. Uses of a sheet are not there; the page works them out.
// docs/page.md has the form.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "pages/design_pages.h"

// Values of a file of results at some places of its scale: texts, one for each place.
struct kv_page_values_t {
  std::string file;                 // its name
  std::vector<std::string> places;  // "time 58 ns"
  // By the paths of flat nets, and of leaf instances with the names of what is given of them.
  std::vector<std::pair<std::string, std::vector<std::string>>> nets;
  struct device_t {
    std::string path, parameter;
    std::vector<std::string> values;
  };
  std::vector<device_t> devices;
};

// A finding that was looked at and accepted.
struct kv_page_waiver_t {
  std::string_view rule, path, reason, date;
};

struct kv_page_extras_t {
  std::string findings;  // the text of findings.json; "" when there is none
  std::vector<kv_page_waiver_t> waivers;
  kv_page_values_t values;
};

// The data of pages by sheet (kv_pages_by_sheet). Nothing, and why, when the design has no end: a
// sheet is inside itself, or the levels are more than a run takes.
std::string kv_page_data(kv_design_pages_t& pages, const kv_page_extras_t& extras,
                         std::string& why);
