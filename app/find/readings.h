// What a typed path may mean, as keys (netlist/path_key.h).
#pragma once

#include <string>
#include <string_view>
#include <vector>

enum class kv_match : unsigned char {
  whole,
  beginning,  // "...*": of a path
  anywhere,   // "*...*": in the name of an object, or with a separator in its path
};

struct kv_readings_t {
  std::vector<std::string> keys{};  // the plainest first
  kv_match match = kv_match::whole;
};

// A part of a design by the reference that its drawing gives it, as an import writes both into the
// file "references" beside the design directory.
struct kv_reference_t {
  std::string path{}, reference{};
};
// Of a design directory; none where there is no such file.
std::vector<kv_reference_t> kv_read_references(const std::string& design_directory);

// `letters` are the first letters of the names at the top.
kv_readings_t kv_readings_of(std::string_view typed, std::string_view letters,
                             const std::vector<kv_reference_t>& references);
