// Reads a data listing back, so that tests can ask for nets and properties by name.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

// Values of a kept property: the text, or the three numbers as they are written.
struct listing_object_t {
  int index = 0;
  std::map<std::string, std::string> properties;  // three numbers are joined by blanks
};

struct listing_net_t : listing_object_t {
  int type = 0, kind = 0;
  std::string name;
  std::set<std::string> pins;      // simulation paths, of both chains
  std::set<std::string> children;  // simulation paths
};

struct listing_t {
  std::map<std::string, int> counts;                          // "nbof_pin", "num_errors", ...
  std::map<std::string, listing_object_t> instances, macros;  // by simulation path
  std::map<std::string, listing_net_t> nets;
  bool complete = false;  // the closing line is there
};

listing_t read_listing(std::string_view text);
