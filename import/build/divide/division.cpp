// Moves instances into sub-sheets until the rest fits one file.
#include "import/build/divide/division.h"

#include <algorithm>
#include <functional>
#include <map>

#include "gx/text/at.h"
#include "import/build/divide/grouping.h"
#include "import/build/divide/object_count.h"
#include "import/build/divide/parts.h"
#include "import/drawing/placement.h"

namespace {

constexpr std::size_t most_objects = gxi_most_objects - 1000;  // wires are cut into more
constexpr std::size_t part_objects = 24000;
constexpr std::size_t drawn_objects = 10000;  // of the pictures that stay in their place

using wires_t = std::vector<std::vector<gxi_wire_place_t>>;  // by instance

bool is_part(const gxi_instance_t& instance) { return instance.kind == gxi_kind::part; }
bool nobody_drew(const gxi_instance_t& instance) { return is_part(instance) && !instance.drawn; }

// The wires that leave with each instance: those at its pins, and its share of the others.
wires_t wires_of_instances(const gxi_design_t& design, const gxi_sheet_t& sheet) {
  wires_t wires(sheet.instances.size());
  std::vector<std::map<std::pair<std::int32_t, std::int32_t>, std::size_t>> pins(sheet.nets.size());
  std::vector<std::vector<std::size_t>> parts(sheet.nets.size());
  for (std::size_t i = 0; i < sheet.instances.size(); ++i) {
    const auto& instance = sheet.instances[i];
    if (!is_part(instance)) continue;
    const auto& symbol = gx_at(design.cells, instance.symbol).symbol;
    for (std::size_t pin = 0; pin < instance.nets.size(); ++pin) {
      if (instance.nets[pin] < 0) continue;
      const auto net = static_cast<std::size_t>(instance.nets[pin]);
      const auto at = gxi_on_sheet(instance, symbol.pins[pin].at);
      pins[net].emplace(std::pair(at.x, at.y), i);
      parts[net].push_back(i);
    }
  }
  for (std::size_t net = 0; net < sheet.nets.size(); ++net) {
    const auto& segments = sheet.nets[net].segments;
    for (std::size_t k = 0; k < segments.size() && !parts[net].empty(); ++k) {
      auto at = pins[net].find({segments[k].from.x, segments[k].from.y});
      if (at == pins[net].end()) at = pins[net].find({segments[k].to.x, segments[k].to.y});
      const auto with =
          at != pins[net].end() ? at->second : parts[net][k * parts[net].size() / segments.size()];
      wires[with].emplace_back(static_cast<int>(net), k);
    }
  }
  return wires;
}

class divider {
 public:
  divider(gxi_design_t& design, std::size_t cell, gxi_part_maker_t& maker)
      : design_(design), cell_(cell), maker_(maker) {}

  void run() {
    const bool is_large = size() > most_objects;
    if (!is_large && count(is_part) <= gxi_most_names) return;
    if (count(nobody_drew) > 0) move_undrawn();
    const bool all_move = size() > most_objects && count(is_part) > 0;
    // Parts may move into parts, too, while that helps.
    for (std::size_t before = SIZE_MAX; size() > most_objects && size() < before;) {
      before = size();
      move_all();
    }
    if (nb_of_parts_ == 0) return;
    gxm_complain(design_.warnings, sheet().source,
                 "the sheet of " + design_.cells[cell_].name + " would hold more " +
                     (is_large ? "objects than a file can: " : "names than a check compares: ") +
                     (all_move ? "its instances" : "its instances that nobody drew") + " are in " +
                     std::to_string(nb_of_parts_) + " parts of one more level");
  }

 private:
  gxi_sheet_t& sheet() { return *design_.cells[cell_].sheet; }
  std::size_t size() const { return gxi_count_objects(design_, design_.cells[cell_]); }
  std::size_t count(bool (*belongs)(const gxi_instance_t&)) {
    return static_cast<std::size_t>(
        std::count_if(sheet().instances.begin(), sheet().instances.end(), belongs));
  }

  // Once parts are moved, their many nets may be more than a check compares.
  std::vector<std::vector<gxi_movable_t>> group(const std::vector<gxi_movable_t>& movable) {
    return gxi_group(design_, sheet(), movable,
                     {.objects = part_objects,
                      .instances = gxi_most_names,
                      .names = nb_of_parts_ == 0 ? gxi_most_names : SIZE_MAX});
  }

  void move_undrawn() {
    std::vector<gxi_movable_t> movable;
    for (std::size_t i = 0; i < sheet().instances.size(); ++i)
      if (nobody_drew(sheet().instances[i])) movable.push_back({.instance = i});
    std::vector<gxi_part_t> parts;
    for (const auto& group : group(movable)) {
      auto& part = parts.emplace_back();
      for (const auto& one : group) part.instances.push_back(one.instance);
    }
    nb_of_parts_ += parts.size();
    maker_.make(cell_, std::move(parts), false);
  }

  void move_all() {
    auto& sheet = this->sheet();
    const auto wires = wires_of_instances(design_, sheet);
    const auto nb_of_movable = count(is_part);
    const std::size_t drawn = sheet.shapes.size() + 2 * sheet.texts.size();
    const bool divides_picture = drawn > drawn_objects;
    const std::size_t share =
        divides_picture ? drawn / std::max<std::size_t>(nb_of_movable, 1) + 1 : 0;
    std::vector<gxi_movable_t> movable;
    for (std::size_t i = 0; i < sheet.instances.size(); ++i)
      if (is_part(sheet.instances[i])) movable.push_back({i, 3 * wires[i].size() + share});
    std::vector<gxi_part_t> parts;
    std::size_t done = 0;
    for (const auto& group : group(movable)) {
      auto& part = parts.emplace_back();
      for (const auto& one : group) {
        part.instances.push_back(one.instance);
        part.wires.insert(part.wires.end(), wires[one.instance].begin(), wires[one.instance].end());
      }
      if (!divides_picture) continue;
      // What is drawn follows the instances in its order.
      const auto before = std::exchange(done, done + group.size());
      const auto take = [&](const auto& from, auto& to) {
        const auto begins = [&](std::size_t place) {
          return from.begin() + static_cast<std::ptrdiff_t>(from.size() * place / nb_of_movable);
        };
        to.assign(begins(before), begins(done));
      };
      take(sheet.shapes, part.shapes);
      take(sheet.texts, part.texts);
    }
    if (divides_picture && !parts.empty()) {
      sheet.shapes.clear();
      sheet.texts.clear();
    }
    nb_of_parts_ += parts.size();
    maker_.make(cell_, std::move(parts), true);
  }

  gxi_design_t& design_;
  std::size_t cell_;
  gxi_part_maker_t& maker_;
  std::size_t nb_of_parts_ = 0;
};

}  // namespace

void gxi_divide(gxi_design_t& design) {
  gxi_part_maker_t maker(design);
  const auto described = design.cells.size();
  for (std::size_t i = 0; i < described; ++i)
    if (design.cells[i].sheet) divider(design, i, maker).run();
}
