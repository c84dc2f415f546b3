// What all formats share: where texts lie below mirrored and turned instances, and the limits of
// the hierarchy. What a drawing becomes as a whole is in tests/cases/import.
#include <filesystem>

#include "gx/db/object_access.h"
#include "gx/db/placement.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/build/builder.h"
#include "import/build/output.h"
#include "import/drawing/hierarchy.h"
#include "import/drawing/placement.h"
#include "tests/support/scratch_directory.h"

namespace {

constexpr std::int32_t height = 1000, letters = 4, width = letters * height * 6 / 5;

gx_pointreal_t counterclockwise(gx_pointreal_t p, int quarters) {
  for (; quarters > 0; --quarters) p = {p.y, -p.x};
  return p;
}

// The box of the capitals of a text that lies as `look` says, by its corners.
gx_boundsreal_t box_of(const gxi_look_t& look, auto placed) {
  const std::int32_t left = look.across == gxi_align::start    ? 0
                            : look.across == gxi_align::middle ? -width / 2
                                                               : -width;
  const std::int32_t bottom = look.up == gxi_align::start    ? 0
                              : look.up == gxi_align::middle ? height / 2
                                                             : height;
  gx_boundsreal_t box = gx_empty_bounds;
  for (const std::int32_t x : {left, left + width})
    for (const std::int32_t y : {bottom - height, bottom}) {
      const auto turned = counterclockwise({x, y}, look.rotate);
      const gx_pointreal_t p = placed(gx_pointreal_t{look.at.x + turned.x, look.at.y + turned.y});
      box = {std::min(box.xmin, p.x), std::min(box.ymin, p.y), std::max(box.xmax, p.x),
             std::max(box.ymax, p.y)};
    }
  return box;
}

}  // namespace

// A text of a symbol, in all its turns and alignments, below an instance in all of its: the sheet
// shows it in the box that it has when it is moved with the symbol, to be read from the left or
// from below.
TEST(ImportBuild, TextsKeepTheirBoxesBelowTurnedAndMirroredInstances) {
  gxi_design_t design;
  design.cells.resize(2);
  design.cells[0].name = "top";
  auto& sheet = design.cells[0].sheet.emplace();
  std::vector<gx_boundsreal_t> expected;
  constexpr gxi_align aligns[] = {gxi_align::start, gxi_align::middle, gxi_align::end};
  for (int i = 0; i < 8 * 4 * 9; ++i) {
    gxi_instance_t instance{.name = "I" + std::to_string(i), .symbol = 1};
    instance.at = {i * 5000, 20000};
    instance.rotate = static_cast<std::uint8_t>(i % 4);
    instance.mirror = i / 4 % 2 == 1;
    gxi_look_t look{.at = {3000, -700}, .height = height};
    look.rotate = static_cast<std::uint8_t>(i / 8 % 4);
    look.across = gx_at(aligns, i / 32 % 3);
    look.up = gx_at(aligns, i / 96);
    expected.push_back(box_of(look, [&](gx_pointreal_t p) {
      if (instance.mirror) p.x = -p.x;
      p = counterclockwise(p, instance.rotate);
      return gx_pointreal_t{instance.at.x + p.x, instance.at.y + p.y};
    }));
    instance.properties.push_back({"TEXT", "abcd", gxi_on_sheet(instance, look)});
    sheet.instances.push_back(std::move(instance));
  }
  const auto file = gxi_build_sheet(design, design.cells[0], [](int) {
    return gxi_symbol_path_t{"s/symbol.gx_1", 1};
  });

  std::size_t seen = 0;
  gx_boundsreal_t moved{};  // of the page: as the first text is
  for (const auto* const object : file->ptr_to_ar_objindex) {
    if (object->object_type != gx_type::property_2d) continue;
    const auto& property = gx_property_info_ptr(*file, object->object_id);
    if (gx_view(property.name) != "TEXT") continue;
    const int body = object->father, inst = gx_object_id_ptr(*file, body).father;
    const auto at = gx_object_abs_origin_bounds(*file, object->object_id, inst).origin;
    const bool upwards = gx_at(expected, seen).xmax - gx_at(expected, seen).xmin == height;
    const auto box = upwards ? gx_boundsreal_t{at.x - height, at.y - width, at.x, at.y}
                             : gx_boundsreal_t{at.x, at.y - height, at.x + width, at.y};
    const auto& wanted = gx_at(expected, seen);
    if (seen == 0) moved = {box.xmin - wanted.xmin, box.ymin - wanted.ymin, 0, 0};
    EXPECT_EQ(box.xmin - moved.xmin, wanted.xmin) << seen;
    EXPECT_EQ(box.ymin - moved.ymin, wanted.ymin) << seen;
    ++seen;
  }
  EXPECT_EQ(seen, expected.size());
}

TEST(ImportBuild, TwentyEightLevelsAndNoSheetWithinItself) {
  gxi_design_t design;
  gxi_hierarchy_t hierarchy(design);
  const std::function<void(int)> go_down = [&](int level) {
    const std::vector<std::filesystem::path> sheet{"s" + std::to_string(level)};
    const auto open = hierarchy.enter(sheet);
    EXPECT_THROW(hierarchy.cell(nullptr, "", sheet, {"f", 1}), std::runtime_error);
    if (level < 28) go_down(level + 1);
    if (level < 28) return;
    EXPECT_THROW(static_cast<void>(hierarchy.enter(sheet)), std::runtime_error);
  };
  go_down(1);
  const std::vector<std::filesystem::path> first{"s1"};
  EXPECT_TRUE(hierarchy.cell(nullptr, "", first, {"f", 1}).is_new);
  EXPECT_FALSE(hierarchy.cell(nullptr, "", first, {"f", 1}).is_new);
  EXPECT_EQ(design.cells.size(), 1U);
}

TEST(ImportBuild, ThePathOfASymbolHolds199Characters) {
  const scratch_directory scratch;
  const auto write = [&](std::size_t length) {
    gxi_design_t design;
    design.cells.resize(1);
    design.cells[0].name = "c";
    const auto rest = scratch.path().string().size() + std::string("//c/symbol.gx_1").size();
    const auto root = scratch.path() / std::string(length - rest, 'd');
    gxi_write(design, {.root = root, .date = {}, .absolute = true});
  };
  EXPECT_NO_THROW(write(199));
  EXPECT_THROW(write(200), std::runtime_error);
}
