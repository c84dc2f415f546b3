// What all formats share: where texts lie below mirrored and turned instances, and the limits of
// the hierarchy. What a drawing becomes as a whole is in tests/cases/import.
#include <filesystem>
#include <fstream>

#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/at.h"
#include "import/build/builder.h"
#include "import/build/flat_size.h"
#include "import/build/output.h"
#include "import/build/plain_symbol.h"
#include "import/build/wiring.h"
#include "import/drawing/hierarchy.h"
#include "import/drawing/placement.h"
#include "platform/files.h"
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

TEST(ImportBuild, WiresAreCutAtPinsAndAtEachOther) {
  const std::vector<gxi_segment_t> segments{{{0, 0}, {100, 0}, gxm_red, 2},
                                            {{50, 0}, {50, 50}},
                                            {{30, 0}, {30, 0}},
                                            {{90, 0}, {120, 0}, gxm_white}};
  const std::vector<gx_pointreal_t> pins{{0, 0}, {70, 0}, {9, 9}, {70, 0}, {30, 0}};
  const auto wiring = gxi_wire(segments, pins);
  std::string text;
  for (const auto& end : wiring.ends)
    text += std::to_string(end.at.x) + "," + std::to_string(end.at.y) + " pin " +
            std::to_string(end.pin) + " degree " + std::to_string(end.degree) + "\n";
  for (const auto& piece : wiring.pieces)
    text += std::to_string(piece.end1) + "-" + std::to_string(piece.end2) + " color " +
            std::to_string(piece.color) + " width " + std::to_string(piece.width) + "\n";
  EXPECT_EQ(text, R"(50,0 pin -1 degree 3
50,50 pin -1 degree 1
0,0 pin 0 degree 1
30,0 pin 4 degree 2
70,0 pin 1 degree 2
90,0 pin -1 degree 2
100,0 pin -1 degree 2
120,0 pin -1 degree 1
0-1 color 4 width 1
2-3 color 1 width 2
3-0 color 1 width 2
0-4 color 1 width 2
4-5 color 1 width 2
5-6 color 1 width 2
6-7 color 7 width 1
)");
}

// Of paths and texts, and of their letters, each with its end, what is more.
TEST(ImportBuild, TheRoomThatAnExpansionTakes) {
  gxi_design_t design;
  design.cells.resize(3);
  auto &top = design.cells[0], &block = design.cells[1], &leaf = design.cells[2];
  leaf.symbol.properties = {{"CLASS", "RES", {}}};
  leaf.symbol.defaults = {{"D", "1234567", {}}};
  leaf.symbol.pins = {{.name = "A", .properties = {{"Q", "12", {}}}}, {.name = "BB"}};
  block.name = "blk";
  auto& below = block.sheet.emplace();
  below.instances = {{.name = "R1", .symbol = 2, .properties = {{"value", "10", {}}}}};
  below.nets = {{.name = "N", .properties = {{"P", "xyz", {}}}}, {}};
  top.name = "top";
  top.sheet.emplace().instances = {{.name = "b1", .symbol = 1},
                                   {.name = "b22", .symbol = 1},
                                   {.kind = gxi_kind::port, .symbol = 2}};
  top.sheet->nets = {{.name = "T"}};
  const int part = 3 + (3 + 16) + 2 + 3 + 7, pins = (3 + 2) + 2 + 2 + (3 + 3) + 2;
  const int nets = 2 + 1 + 3 + 1 + 9 + 8, letters = part + pins + nets;
  const int both = 2 * (3 + 16 + letters) + 3 + 4 + 5 * (3 + 4) + 2 + 1 + 1;
  EXPECT_EQ(gxi_flat_size(design), both + both / 8);
  below.instances[0].properties.resize(300);
  EXPECT_EQ(gxi_flat_size(design), 2 * (2 + 2 + 300 + 2 + 3 + 2 + 4 + 3) + 3);
}

// What an expansion keeps, with numbers first and what can be typed; what is said of the rest.
TEST(ImportBuild, FilesBesideTheDrawing) {
  const scratch_directory scratch;
  gxi_design_t design;
  design.cells.resize(2);
  design.cells[0].name = "a b";
  auto& sheet = design.cells[0].sheet.emplace();
  sheet.nets = {{.name = "N", .port = "N", .port_type = "IN"}};
  sheet.instances = {{.name = "R", .symbol = 1, .nets = {0}, .deck = "line"}};
  design.cells[1].name = "r";
  design.cells[1].symbol.pins = {{.name = "P"}};
  design.kept_of_instances = {"W", "no way", "", "a.b-c_d+9"};
  for (char c = 'A'; c < 'P'; ++c) design.kept_of_instances.push_back({'K', c});
  design.kept_of_pins = {"z"};
  design.kept_of_nets = {"net"};
  const auto summary = gxi_write(design, {.root = scratch.path() / "d", .numbers = {"w", "n"}});
  EXPECT_EQ(summary.top, "a_b");
  EXPECT_EQ((std::vector{summary.cells, summary.sheets, summary.instances, summary.nets,
                         summary.files, summary.written}),
            (std::vector{3, 1, 1, 1, 4, 4}));
  std::string all;
  for (const auto* const name : {"expand.do", "check.do", "gximport.log"}) {
    std::string text;
    ASSERT_TRUE(x_read_regular((scratch.path() / "d" / name).string(), text, SIZE_MAX));
    all += text;
  }
  EXPECT_EQ(all, R"(PRIMitive CLASS
PROPerty INStance S CLASS
PROPerty INStance R w
PROPerty INStance R n
PROPerty INStance S a.b-c_d+9
PROPerty INStance S KA
PROPerty INStance S KB
PROPerty INStance S KC
PROPerty INStance S KD
PROPerty INStance S KE
PROPerty INStance S KF
PROPerty INStance S KG
PROPerty INStance S KH
PROPerty INStance S KI
PROPerty INStance S KJ
PROPerty INStance S KK
PROPerty INStance S KL
PROPerty PIN S PINTYPE
PROPerty PIN S z
PROPerty NET S NET
GENerate DATa ON
RUN
BYE
PRIMitive CLASS
CHEck DESign
BYE
3 cells
1 sheet
1 instance
1 net
1 note
an expansion keeps 16 properties; these are not kept: KM KN KO
)");
}

TEST(ImportBuild, ADirectoryThatCannotBeWrittenIsNamed) {
  const scratch_directory scratch;
  const auto message = [&](const std::filesystem::path& root) {
    gxi_design_t design;
    design.cells.resize(1);
    design.cells[0].name = "c";
    try {
      gxi_write(design, {.root = root});
    } catch (const std::runtime_error& error) {
      return std::string(error.what()).substr(scratch.path().string().size());
    }
    return std::string();
  };
  EXPECT_EQ(message(scratch.path() / "d"), "");
  std::ofstream(scratch.path() / "f") << "x";
  EXPECT_EQ(message(scratch.path() / "f"), "/f: exists and is not a directory");
  const auto within = message(scratch.path() / "f/g/");
  EXPECT_TRUE(within.starts_with("/f/g.new-") && within.ends_with(": Not a directory")) << within;
  std::ofstream(scratch.path() / "d/c/symbol.gx") << "x";
  EXPECT_EQ(message(scratch.path() / "d"), "/d/c/symbol.gx: names no version");
}

// With a margin of four steps, and where it was on the grid.
TEST(ImportBuild, ADrawingIsMovedOntoItsPage) {
  for (const std::int32_t x : {0, 1, -1, 4999, -4999, -5000, 123456}) {
    gxi_design_t design;
    design.cells.resize(1);
    design.cells[0].sheet.emplace().nets = {{.segments = {{{x, -x}, {x + gxm_step, -x}}}}};
    const auto file = gxi_build_sheet(design, design.cells[0], {});
    for (const int net : lb_nets(*file))
      for (const int segment : lb_segments(*file, net)) {
        const auto at = gx_object(*file, segment)->origin;
        for (const auto& [now, before] : {std::pair(at.x, x), std::pair(at.y, -x)}) {
          EXPECT_EQ((now - before) % gxm_step, 0) << x;
          EXPECT_TRUE(now >= 4 * gxm_step && now < 5 * gxm_step) << x << ' ' << now;
        }
      }
  }
}

TEST(ImportBuild, ANameOfAPinIsAsFarFromItAsDrawn) {
  gxi_symbol_t symbol;
  symbol.pins = {{.name = "A", .at = {1000, 2000}, .name_look = gxi_look_t{.at = {1500, 2700}}}};
  EXPECT_EQ(gxi_plain_symbol(symbol).pins[0].name_at, (gx_pointreal_t{500, 700}));
}
