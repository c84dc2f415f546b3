// Attributes of xschem: "name=value" in any number, values in quotes or not; and the texts with
// "@name" that they are put into.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Blanks, tabs, ends of lines.
bool gxi_xschem_is_blank(char c);

// In their order; of a name given twice the first counts.
class gxi_xschem_attributes_t {
 public:
  gxi_xschem_attributes_t() = default;
  explicit gxi_xschem_attributes_t(std::string_view text);

  const std::string* find(std::string_view name) const;
  // "" without one.
  std::string_view get(std::string_view name) const;
  // "true", "1", "yes" and the like.
  bool is_set(std::string_view name) const;
  const std::vector<std::pair<std::string, std::string>>& all() const { return list_; }

 private:
  std::vector<std::pair<std::string, std::string>> list_;
};

// The text with each "@name" (also "@@pin", "@#1:attribute") replaced by what `value` says of the
// name after the first "@". A backslash takes the meaning from the next character.
std::string gxi_xschem_substitute(std::string_view text,
                                  const std::function<std::string(std::string_view)>& value);
