// What all formats share: where texts lie below mirrored and turned instances, and the limits of
// the hierarchy. What a drawing becomes as a whole is in tests/cases/import.
#include <filesystem>

#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/at.h"
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

// A text and a line of a symbol, in all their turns and alignments, below an instance in all of
// its: the text is drawn in the box that it has when it is moved with the symbol, to be read from
// the left or from below, and the line where the pins of the instance are.
TEST(ImportBuild, TextsKeepTheirBoxesBelowTurnedAndMirroredInstances) {
  gxi_design_t design;
  design.cells.resize(2);
  design.cells[0].name = "top";
  design.cells[1].symbol.shapes.push_back(
      {.type = gx_type::line_2d, .points = {{0, 0}, {300, 70}}});
  auto& sheet = design.cells[0].sheet.emplace();
  std::vector<gx_boundsreal_t> expected;
  std::vector<gx_pointreal_t> line_ends;
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
    const auto placed = [&](gx_pointreal_t p) {
      if (instance.mirror) p.x = -p.x;
      p = counterclockwise(p, instance.rotate);
      return gx_pointreal_t{instance.at.x + p.x, instance.at.y + p.y};
    };
    expected.push_back(box_of(look, placed));
    line_ends.push_back(placed({300, 70}));
    EXPECT_EQ(gxi_on_sheet(instance, gx_pointreal_t{300, 70}), line_ends.back());
    instance.properties.push_back({"TEXT", "abcd", gxi_on_sheet(instance, look)});
    sheet.instances.push_back(std::move(instance));
  }
  const auto file = gxi_build_sheet(design, design.cells[0], [](int) {
    return gxi_symbol_path_t{"s/symbol.gx_7", 7};
  });

  for (const int id : lb_instances(*file))
    ASSERT_EQ(gx_instance_info_ptr(*file, id).n0_version, 7) << id;
  std::size_t lines = 0, texts = 0;
  gx_pointreal_t page{};  // how far all is moved, as the first line is
  lb_all_instance_shapes(*file, {.draw = [&](const gx_shape_t& shape) {
    if (shape.kind == gx_shape_kind::line) {
      const auto wanted = gx_at(line_ends, lines);
      if (lines == 0) page = {shape.points[1].x - wanted.x, shape.points[1].y - wanted.y};
      EXPECT_EQ(shape.points[1], (gx_pointreal_t{wanted.x + page.x, wanted.y + page.y})) << lines;
      ++lines;
    } else if (shape.kind == gx_shape_kind::text && shape.text == "abcd") {
      const auto& wanted = gx_at(expected, texts);
      const bool upwards = wanted.xmax - wanted.xmin == height;
      EXPECT_EQ(shape.rotation == 1, upwards) << texts;
      EXPECT_NE(shape.rotation, 3) << texts;
      // It begins at the left end of its baseline, or at the lower one.
      const gx_pointreal_t start{upwards ? wanted.xmax : wanted.xmin, wanted.ymax};
      EXPECT_EQ(shape.points[0], (gx_pointreal_t{start.x + page.x, start.y + page.y})) << texts;
      ++texts;
    }
  }});
  EXPECT_EQ(lines, line_ends.size());
  EXPECT_EQ(texts, expected.size());
}

TEST(ImportBuild, LinesOfATextStandAboveEachOther) {
  const auto places = [](std::string_view text, const gxi_look_t& look) {
    std::string told;
    for (const auto& line : gxi_lines(text, look))
      told += line.text + '@' + std::to_string(line.at.x) + ',' + std::to_string(line.at.y) + ' ';
    return told;
  };
  gxi_look_t look{.at = {100, 200}, .height = 1000};
  EXPECT_EQ(places("ab \n\nc", look), "ab@100,-3000 c@100,200 ");
  look.line_step = 1100;
  EXPECT_EQ(places("ab\nc", look), "ab@100,-900 c@100,200 ");
  look.up = gxi_align::end;
  EXPECT_EQ(places("ab\nc", look), "ab@100,1200 c@100,2300 ");
  look.rotate = 1;
  EXPECT_EQ(places("ab\nc", look), "ab@1100,200 c@2200,200 ");
  look.flush = true;
  look.across = gxi_align::end;
  EXPECT_EQ(places("ab \nc", look), "ab@1100,2600 c@2200,2600 ");
  look.rotate = 3;
  look.up = gxi_align::middle;
  EXPECT_EQ(places("ab\nc\n", look), "ab@-500,200 c@600,200 ");
  // A longer line goes on in its place, where a word ends; a wide text does not leave the drawing.
  const std::string word(30, 'w'), longest(60, 'w');
  look = {.height = 10};
  EXPECT_EQ(places(longest, look), longest + "@0,0 ");
  EXPECT_EQ(places(longest + "w " + word, look), longest + "@0,0 w " + word + "@720,0 ");
  EXPECT_EQ(
      places(word + ' ' + word + "\n" + longest.substr(1) + ' ' + word, look),
      word + "@0,-16  " + word + "@360,-16 " + longest.substr(1) + "@0,0  " + word + "@708,0 ");
  std::string signs;
  for (int i = 0; i < 20; ++i) signs += "\\u{B5}";
  EXPECT_EQ(places(signs, look), std::string(20, 'u') + "@0,0 ");
  EXPECT_EQ(places(signs.substr(6 * 5), look), signs.substr(6 * 5) + "@0,0 ");
  look.height = 1'000'000'000;
  EXPECT_EQ(places("a\nb" + longest, look).substr(0, 15), "a@0,-100000000 ");
  look.across = gxi_align::end;
  EXPECT_EQ(places(longest, look), longest + "@-100000000,0 ");
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
