// Texts of Lepton EDA; those of the form "name=value" are attributes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Thousandths of an inch, y upwards.
struct gxi_lepton_point_t {
  std::int32_t x = 0, y = 0;
  friend bool operator==(const gxi_lepton_point_t&, const gxi_lepton_point_t&) = default;
};

// Where a record stands; records of different lines may be equal.
struct gxi_lepton_line_t {
  int number = 0;
  friend bool operator==(gxi_lepton_line_t, gxi_lepton_line_t) { return true; }
};

struct gxi_lepton_text_t {
  enum class show_t { both, value, name };  // of an attribute
  gxi_lepton_line_t line{};
  gxi_lepton_point_t at{};
  int color = 9;
  int size = 10;  // points
  bool visible = true;
  show_t show = show_t::both;
  int rotate = 0;     // quarter turns counterclockwise
  int alignment = 0;  // 3 * across + up: lower left 0, middle left 1, upper left 2, lower middle 3
  std::string text{};

  // "name=value" is an attribute: its name, "" when the text is none; and its value.
  std::string_view name() const;
  std::string_view value() const;
  friend bool operator==(const gxi_lepton_text_t&, const gxi_lepton_text_t&) = default;
};
using gxi_lepton_texts_t = std::vector<gxi_lepton_text_t>;

// Values of the attributes of a name, in their order.
std::vector<std::string_view> gxi_lepton_values(const gxi_lepton_texts_t& texts,
                                                std::string_view name);
// The first of them; "" when there is none.
std::string_view gxi_lepton_value(const gxi_lepton_texts_t& texts, std::string_view name);
