// What is joined because it meets on the sheet.
#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "import/drawing/runs.h"

// Numbers of what can be joined on a sheet: first the wires, then what each component has, in its
// order: pins, and links that nobody drew.
class gxi_members_t {
 public:
  explicit gxi_members_t(std::size_t nb_of_wires) : next_(static_cast<int>(nb_of_wires)) {}
  void add_component(std::size_t nb_of_members);
  int of(std::size_t component, std::size_t member) const {
    return first_[component] + static_cast<int>(member);
  }
  std::size_t count() const { return static_cast<std::size_t>(next_); }

 private:
  int next_;
  std::vector<int> first_;  // by component
};

// Groups of members that are joined; the smallest member stands for its group.
class gxi_groups_t {
 public:
  explicit gxi_groups_t(std::size_t size);
  int root(int i);
  void join(int a, int b);

 private:
  std::vector<int> parent_;
};

// Groups in the order in which they are asked for.
class gxi_group_numbers_t {
 public:
  struct found_t {
    int number = 0;
    bool is_new = false;
  };
  found_t of(int root);

 private:
  std::unordered_map<int, int> numbers_;
};

struct gxi_met_pin_t {
  gx_pointreal_t at{};
  int member = 0;
};

// Wires are the first members, in their order. Joins members at the same point,
// and points on a wire with the wire; points on a slanted wire only when `slanted` is true.
void gxi_join_places(gxi_groups_t& groups, std::span<const gxi_span_t> wires,
                     std::span<const gxi_met_pin_t> pins, bool slanted);
