#include "deck/write/visits.h"

#include <algorithm>
#include <array>

#include "deck/letters.h"
#include "deck/statements.h"
#include "gx/text/strings.h"

namespace {

// Of "cells/inv/sheet.gx_1": "inv".
std::string_view directory_of(std::string_view file) {
  file = file.substr(0, std::min(file.rfind('/'), file.size()));
  return file.substr(file.rfind('/') + 1);
}

void set(dk_values_t& values, std::string_view name, std::string value) {
  const std::string capitals = gx_upper(name);
  for (auto& known : values)
    if (known.first == capitals) {
      known.second = std::move(value);
      return;
    }
  values.emplace_back(capitals, std::move(value));
}

dk_names_t only_parameters(const dk_values_t& values) {
  dk_names_t names;
  names.parameter = [&values](std::string_view name) { return dk_find(values, name); };
  names.node = names.device = [](std::string_view name) { return std::string(name); };
  names.pin = [](int, std::string&) {};
  return names;
}

}  // namespace

std::optional<std::string> dk_find(const dk_values_t& values, std::string_view name) {
  for (const auto& [known, value] : values)
    if (gx_iden(known, name)) return value;
  return std::nullopt;
}

dk_sheet_t::dk_sheet_t(const dk_cell_t& cell) : cell_(&cell) {
  for (const auto& instance : cell.instances)
    drawn_.try_emplace(instance.name,
                       dk_drawn_t{.instance = &instance, .place = &instance - &cell.instances[0]});
}

const dk_drawn_t* dk_sheet_t::drawn(std::string_view name) {
  const auto found = drawn_.find(name);
  if (found == drawn_.end()) return nullptr;
  auto& drawn = found->second;
  if (drawn.lines.empty()) {
    const std::string_view lines = drawn.instance->lines;
    drawn.lines = dk_compile(lines);
    drawn.parameters = dk_parameters(lines.substr(0, lines.find('\n')));
  }
  return drawn.instance->lines.empty() ? nullptr : &drawn;
}

std::string_view dk_sheet_t::device(std::string_view called) {
  if (called_.empty())
    for (const auto& instance : cell_->instances)
      for (std::string_view lines = instance.lines; !lines.empty();) {
        const auto line = dk_take_line(lines);
        called_.try_emplace(gx_upper(line.substr(0, line.find(' '))), instance.name);
      }
  const auto found = called_.find(gx_upper(called));
  return found == called_.end() ? std::string_view() : found->second;
}

dk_visits_t::dk_visits_t(kvi_netlist_t netlist, const dk_cells_t& cells) : netlist_(netlist) {
  const std::int32_t macros = netlist_.count(kv_named::macro);
  const std::int32_t leaves = netlist_.count(kv_named::inst);
  visits_.resize(static_cast<std::size_t>(macros) + 1);
  of_leaf_.resize(static_cast<std::size_t>(leaves) + 1);
  std::unordered_map<std::string_view, std::int32_t> by_path{{"", 0}};
  by_path.reserve(visits_.size());
  for (std::int32_t macro = 1; macro <= macros; ++macro) {
    auto& visit = gx_at(visits_, macro);
    visit.macro = visit.whole = macro;
    visit.path = netlist_.path({kv_named::macro, macro});
    by_path.try_emplace(visit.path, macro);
  }
  const auto parent_of = [&](std::string_view path) {
    const auto found = by_path.find(path.substr(0, std::min(path.rfind('/'), path.size())));
    return found == by_path.end() ? 0 : found->second;
  };
  const auto draw_in = [&](std::int32_t visit, kv_object_t object) {
    auto& directory = gx_at(visits_, visit).directory;
    if (directory.empty()) directory = directory_of(netlist_.file_path(object));
  };
  for (std::int32_t macro = 1; macro <= macros; ++macro) {
    auto& visit = gx_at(visits_, macro);
    visit.parent = parent_of(visit.path);
    draw_in(visit.parent, {kv_named::macro, macro});
  }
  std::int32_t last = 0;
  for (std::int32_t inst = 1; inst <= leaves; ++inst) {
    const std::string_view path = netlist_.path({kv_named::inst, inst}), in = at(last).path;
    const bool same = path.size() > in.size() && path[in.size()] == '/' && path.starts_with(in) &&
                      path.find('/', in.size() + 1) == path.npos;
    if (!same) last = parent_of(path);
    gx_at(of_leaf_, inst) = last;
    draw_in(last, {kv_named::inst, inst});
  }
  take_cells(cells);
  take_values();
}

void dk_visits_t::take_cells(const dk_cells_t& cells) {
  for (auto& visit : visits_) {
    const auto cell = cells.find(visit.directory);
    if (cell == cells.end()) continue;
    auto& sheet = sheets_[visit.directory];
    if (!sheet) sheet = std::make_unique<dk_sheet_t>(cell->second);
    visit.sheet = sheet.get();
    visit.is_part = cell->second.is_part && visit.macro != 0;
  }
  drawn_.resize(of_leaf_.size());
  if (sheets_.empty()) return;
  for (std::int32_t inst = 1; inst < static_cast<std::int32_t>(drawn_.size()); ++inst)
    if (at(of_leaf(inst)).sheet != nullptr)
      gx_at(drawn_, inst) = drawn(of_leaf(inst), last_name(netlist_.path({kv_named::inst, inst})));
}

// Names in the values of a call are those of the cell, but each in its own value, and those that
// the cell has not.
void dk_visits_t::take_call(const dk_drawn_t& call, const dk_values_t& above, dk_values_t& values) {
  // Twice, as a value may have a name that is set after it.
  for (auto passes = std::min<std::size_t>(call.parameters.size(), 2); passes > 0; --passes)
    for (const auto& [name, value] : call.parameters) {
      auto names = only_parameters(above);
      names.parameter = [&, &self = name](std::string_view of) {
        const auto own = gx_iden(of, self) ? std::nullopt : dk_find(values, of);
        return own ? own : dk_find(above, of);
      };
      set(values, name, dk_value(value, names));
    }
}

// From above to below, in whatever order the macros are.
void dk_visits_t::take_values() {
  std::vector<std::int32_t> open;
  const auto take = [&](dk_visit_t& visit) {
    if (visit.is_part) {
      visit.whole = at(visit.parent).whole;
      visit.values = at(visit.parent).values;
    } else {
      visit.values = std::make_shared<const dk_values_t>(values_of(visit));
    }
  };
  take(visits_.front());
  for (auto& visit : visits_) {
    for (std::int32_t i = visit.macro; !at(i).values; i = at(i).parent) open.push_back(i);
    for (; !open.empty(); open.pop_back()) take(gx_at(visits_, open.back()));
  }
}

dk_values_t dk_visits_t::values_of(const dk_visit_t& visit) const {
  dk_values_t values;
  if (visit.sheet == nullptr) return values;
  const auto& cell = visit.sheet->cell();
  const dk_drawn_t* call = nullptr;
  if (visit.macro != 0) call = drawn(visit.parent, last_name(visit.path));
  const auto own = only_parameters(values);
  for (const auto& [name, value] : cell.parameters) set(values, name, dk_value(value, own));
  if (call != nullptr) take_call(*call, *at(visit.parent).values, values);
  for (const auto& statement : dk_statements(cell.header + cell.statements)) {
    if (statement.kind != dk_statement_t::kind_t::parameter) continue;
    for (const auto& [name, value] : dk_parameters(statement.text)) {
      // At the top the simulator reads them itself.
      if (visit.macro == 0)
        std::erase_if(values, [&own_name = name](const auto& known) {
          return gx_iden(known.first, own_name);
        });
      else
        set(values, name, dk_value(value, own));
    }
  }
  return values;
}

std::ptrdiff_t dk_visits_t::place_of(kv_object_t object) const {
  const auto* const drawn =
      object.what == kv_named::inst
          ? drawn_leaf(object.index)
          : this->drawn(at(object.index).parent, last_name(netlist_.path(object)));
  return drawn == nullptr ? PTRDIFF_MAX : drawn->place;
}

std::vector<std::vector<kv_object_t>> dk_visits_t::instances() const {
  std::vector<std::vector<kv_object_t>> all(visits_.size());
  for (std::int32_t inst = 1; inst <= netlist_.count(kv_named::inst); ++inst)
    gx_at(all, at(of_leaf(inst)).whole).push_back({kv_named::inst, inst});
  for (std::int32_t macro = 1; macro < count(); ++macro) {
    const auto& visit = at(macro);
    if (!visit.is_part && !visit.directory.empty())
      gx_at(all, at(visit.parent).whole).push_back({kv_named::macro, macro});
  }
  std::vector<std::pair<std::ptrdiff_t, kv_object_t>> places;
  for (std::int32_t visit = 0; visit < count(); ++visit) {
    if (at(visit).sheet == nullptr) continue;
    places.clear();
    for (const auto& object : gx_at(all, visit)) places.emplace_back(place_of(object), object);
    std::ranges::stable_sort(places, {}, &std::pair<std::ptrdiff_t, kv_object_t>::first);
    std::ranges::transform(places, gx_at(all, visit).begin(),
                           &std::pair<std::ptrdiff_t, kv_object_t>::second);
  }
  return all;
}

std::int32_t dk_visits_t::net(std::int32_t visit, std::string_view name) const {
  if (!paths_) paths_ = std::make_unique<kv_path_index_t<kvi_design_t>>(netlist_);
  for (std::int32_t in = visit;; in = at(in).parent) {
    const std::string key = kv_path_key(std::string(at(in).path) + "/" + std::string(name));
    for (const auto& object : paths_->find({&key, 1}, SIZE_MAX)) {
      if (object.what == kv_named::net) return object.index;
      if (object.what == kv_named::net_child) return paths_->net_of_child(object.index);
    }
    if (in == 0 || !at(in).is_part) return 0;
  }
}
