// An expanded design as visits of sheets, each with the values of its parameters, and the file
// "deck" with it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "deck/deck_file.h"
#include "deck/line.h"
#include "kvi/load.h"
#include "netlist/path_index.h"

// Values of parameters in a visit; names in capitals.
using dk_values_t = std::vector<std::pair<std::string, std::string>>;
std::optional<std::string> dk_find(const dk_values_t& values, std::string_view name);

// An instance of a sheet that has lines, and those that are devices or commands made ready.
struct dk_drawn_t {
  const dk_instance_t* instance = nullptr;
  std::ptrdiff_t place = 0;  // in the file
  std::vector<dk_line_t> lines{};
  std::vector<std::pair<std::string, std::string>> parameters{};  // "name=value" of the first line
};

// A cell of the file, its instances found by name.
class dk_sheet_t {
 public:
  explicit dk_sheet_t(const dk_cell_t& cell);
  const dk_cell_t& cell() const { return *cell_; }
  // Null when the file says nothing of it.
  const dk_drawn_t* drawn(std::string_view name);
  // The instance that is called so in a deck, letter case ignored; "" for none.
  std::string_view device(std::string_view called);

 private:
  const dk_cell_t* cell_;
  std::unordered_map<std::string_view, dk_drawn_t> drawn_;
  std::unordered_map<std::string, std::string_view> called_;  // in capitals
};

struct dk_visit_t {
  std::int32_t macro = 0;   // 0: the primary sheet
  std::int32_t parent = 0;  // visit
  std::string_view path{};
  std::string_view directory{};  // of its sheet; "": nothing is in it
  dk_sheet_t* sheet = nullptr;   // null: the file does not know it
  bool is_part = false;          // belongs to its parent
  std::int32_t whole = 0;        // itself, or of a part the visit that it belongs to
  std::shared_ptr<const dk_values_t> values{};
};

class dk_visits_t {
 public:
  dk_visits_t(kvi_netlist_t netlist, const dk_cells_t& cells);

  kvi_netlist_t netlist() const { return netlist_; }
  std::int32_t count() const { return static_cast<std::int32_t>(visits_.size()); }
  const dk_visit_t& at(std::int32_t visit) const { return gx_at(visits_, visit); }
  // The visit that an object is drawn in: of a leaf instance by its index, of a macro.
  std::int32_t of_leaf(std::int32_t inst) const { return gx_at(of_leaf_, inst); }
  std::int32_t of_macro(std::int32_t macro) const { return at(macro).parent; }

  // The last part of a path.
  static std::string_view last_name(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
  }
  // What the file says of a leaf instance; null when it says nothing.
  const dk_drawn_t* drawn_leaf(std::int32_t inst) const { return gx_at(drawn_, inst); }
  const dk_drawn_t* drawn(std::int32_t visit, std::string_view name) const {
    auto* const sheet = at(visit).sheet;
    return sheet == nullptr ? nullptr : sheet->drawn(name);
  }
  // What is drawn in each visit, by visit: in the order of the file, then leaves and blocks that it
  // does not know. What is in a part is in the visit that it is a part of; blocks with nothing in
  // them are left out.
  std::vector<std::vector<kv_object_t>> instances() const;
  // The flat net of that name in a visit; 0 for none.
  std::int32_t net(std::int32_t visit, std::string_view name) const;

 private:
  void take_cells(const dk_cells_t& cells);
  void take_values();
  dk_values_t values_of(const dk_visit_t& visit) const;
  static void take_call(const dk_drawn_t& call, const dk_values_t& above, dk_values_t& values);

  std::ptrdiff_t place_of(kv_object_t object) const;

  kvi_netlist_t netlist_;
  std::vector<dk_visit_t> visits_;  // by macro
  std::vector<std::int32_t> of_leaf_;
  std::vector<const dk_drawn_t*> drawn_;  // by leaf
  std::unordered_map<std::string_view, std::unique_ptr<dk_sheet_t>> sheets_;
  mutable std::unique_ptr<kv_path_index_t<kvi_design_t>> paths_;  // made when it is asked
};
