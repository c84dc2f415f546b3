// Sheets of KiCad: what is refused, names, variables, references, what touches a wire. What a sheet
// becomes as a whole is in tests/cases/import.
#include <functional>
#include <random>
#include <set>

#include "import/kicad/frame.h"
#include "import/kicad/net_names.h"
#include "import/kicad/picture.h"
#include "import/kicad/reader.h"
#include "import/kicad/records.h"
#include "import/kicad/references.h"
#include "import/kicad/signs.h"
#include "import/kicad/touching.h"
#include "import/kicad/variables.h"

namespace {

// What is said of a text that is no sheet; "" of one that is.
std::string refusal(const std::string& text) {
  try {
    gxi_kicad_read_records(text, "n");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

std::string in_sheet(const std::string& lists) {
  return "(kicad_sch (version 20200310)\n" + lists + ")";
}

std::string in_library(const std::string& lists) { return in_sheet("(lib_symbols " + lists + ")"); }

}  // namespace

TEST(ImportKicad, WhatIsNoSheetIsRefusedWithItsLine) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "n:1: no list begins here"},
      {"\n x", "n:2: no list begins here"},
      {"(kicad_sch\n(a)", "n:2: the file ends early: the list of line 1 is open"},
      {"(kicad_sch\n (a\n", "n:3: the file ends early: the list of line 2 is open"},
      {"(kicad_sch)\n)", "n:2: text after the last parenthesis"},
      {"(kicad_sch\n \"a\n\\\"", "n:2: a string is not closed"},
      {"(other)", "n:1: no (kicad_sch begins here"},
      {"(kicad_sch)",
       "n:1: version 0 is older than KiCad 6; open and save it with a newer KiCad first"},
      {"(kicad_sch (version 20200309))",
       "n:1: version 20200309 is older than KiCad 6; open and save it with a newer KiCad first"},
      {"EESchema Schematic File Version 4",
       "n:1: a sheet of KiCad 5; open and save it with KiCad 6 or later first"},
      {"\xEF\xBB\xBF" + in_sheet("(title_block (title \"a\n\\\\\"))"), ""},
      {in_sheet("(text \"two\nlines\") (wire (pts (xy 1 2)))"),
       "n:3: a wire has fewer than two points"},
      {in_sheet("(junction (at 1 2x))"), "n:2: \"2x\" in (at) is no number"},
      {in_sheet("(junction (at 1 1e10))"), "n:2: \"1e10\" in (at) is no number"},
      {in_sheet("(junction (at 1))"), "n:2: \"\" in (at) is no number"},
      {in_sheet("(junction (at -10001 0))"), "n:2: -10001 in (at) is beyond 10 m"},
      {in_sheet("(junction (at -10000 10000))"), ""},
      {in_sheet("(sheet (at 0 0))"), "n:2: a sheet names no file"},
      {in_library("(symbol \"a\" (symbol \"x\"))"),
       "n:2: the unit \"x\" has no numbers in its name"},
      {in_library("(symbol \"a\" (symbol \"_1\"))"),
       "n:2: the unit \"_1\" has no numbers in its name"},
      {in_library("(symbol \"a\" (symbol \"_1_1\"))"), ""},
      {in_library("(symbol \"l:a\" (extends \"b\"))"),
       "n:2: the symbol l:a extends b, which is not here"},
      {in_library("(symbol \"l:a\" (extends \"b\")) (symbol \"l:b\")"), ""},
      {in_library("(symbol \"a\" (extends \"b\")) (symbol \"b\" (extends \"c\")) (symbol \"c\")"),
       "n:2: the symbol a extends b, which extends another one"},
  };
  for (const auto& [text, said] : rows) EXPECT_EQ(refusal(text), said) << text;
  EXPECT_THROW(gxi_read_kicad({{"a.kicad_sch", "b.kicad_sch"}, {}}), std::runtime_error);
}

TEST(ImportKicad, NamesAreBuses) {
  const gxi_kicad_aliases_t aliases{{"AL", {"X", "Y[0..1]"}}, {"LOOP", {"L", "LOOP"}}};
  const std::pair<const char*, const char*> rows[] = {
      {"A[0..2]", "A0 A1 A2"},
      {"A[3..2]", "A2 A3"},
      {"A[12..13]B", ""},
      {"[0..1]", ""},
      {"A", ""},
      {"A[1]", ""},
      {"A[1..x]", ""},
      {"A[-1..1]", ""},
      {"A[0..]", ""},
      {"A]0..1[", ""},
      {"A B[0..1]", ""},
      {"~{A[0..1]}", "~{A0} ~{A1}"},
      {"A{B}[0..1]", ""},
      {"{A B}", "A B"},
      {"G{A,B[0..1]\tC}", "G.A G.B0 G.B1 G.C"},
      {"~{A}", ""},
      {"{A", ""},
      {"{A}B", ""},
      {"G H{A}", ""},
      {"G{~{A}  ^{B}}", "G.A G.^{B}"},
      {"G{~{A B}}", "G.A B"},
      {"P{AL}", "P.X P.Y0 P.Y1"},
      {"{LOOP}", "L L L L L L L L"},
  };
  for (const auto& [name, members] : rows) {
    std::string text;
    for (const auto& member : gxi_kicad_bus(name, aliases).members)
      text += (text.empty() ? "" : " ") + member;
    EXPECT_EQ(text, members) << name;
  }
  EXPECT_EQ(gxi_kicad_bus("A[0..4095]", {}).members.size(), 4096U);
  EXPECT_EQ(gxi_kicad_bus("A[0..4096]", {}).members.size(), 0U);
  EXPECT_EQ(gxi_kicad_bus("{A[0..4095] B C[0..4095]}", {}).members.size(), 4096U);
  EXPECT_EQ(gxi_kicad_bus("G{A}", {}).local, std::vector<std::string>{"A"});
  EXPECT_EQ(gxi_kicad_unescaped("a{slash}{lt}{x}{space}{brace"), "a/<{x} {brace");
}

TEST(ImportKicad, VariablesOfAProject) {
  const auto of = [](std::string_view json, std::string_view name) {
    const auto variables = gxi_kicad_read_variables(json);
    const auto found = variables.find(name);
    return found == variables.end() ? "none" : found->second;
  };
  const std::string_view json = R"({"x": 1, "text_variables" : { "A": "1", "B\"" :
    "\n\t\/\u0041\u00e9\u20AC\\", "C": "3" }, "D": "4"})";
  EXPECT_EQ(of(json, "A") + of(json, "B\"") + of(json, "C") + of(json, "D"),
            "1\n\t/A\u00e9\u20ac\\3none");
  for (const auto* const broken :
       {"", "{}", "{\"text_variables\"", "{\"text_variables\": {\"A\"",
        "{\"text_variables\": {\"A\": 1}}", "{\"text_variables\": {\"A\": \"\\"})
    EXPECT_TRUE(gxi_kicad_read_variables(broken).empty()) << broken;
  EXPECT_EQ(gxi_kicad_read_variables("{\"text_variables\": {\"A\": \"1\" \"B\": \"2\"}}").size(),
            1U);
  int asked = 0;
  const auto value = [&](std::string_view name) -> std::optional<std::string> {
    ++asked;
    if (name == "A") return "<${A}>";
    if (name == "B") return "b";
    return {};
  };
  EXPECT_EQ(gxi_kicad_substitute("x${B}y${C}z${", value), "xby${C}z${");
  EXPECT_EQ(gxi_kicad_substitute("${A}", value), "<<<<<<<<${A}>>>>>>>>");
}

TEST(ImportKicad, References) {
  EXPECT_EQ(gxi_kicad_letters(1) + ' ' + gxi_kicad_letters(26) + ' ' + gxi_kicad_letters(27) + ' ' +
                gxi_kicad_letters(702) + ' ' + gxi_kicad_letters(703),
            "A Z AA ZZ AAA");
  gxi_kicad_file_t top;
  top.id = "t";
  top.all_uses = {{.path = "/b/old", .reference = "R7", .unit = 3}};
  const gxi_kicad_references_t references(top);
  gxi_kicad_placed_t placed{.id = "p"}, old{.id = "old"};
  placed.fields = {{"Value", {.text = "v"}}, {"Reference", {.text = "R1"}}};
  EXPECT_EQ(references.reference(placed, "/t/b"), "R1");
  placed.uses = {{.path = "/t", .reference = "R2"}, {.path = "/t/b", .reference = "R3", .unit = 2}};
  EXPECT_EQ(references.reference(placed, "/t") + references.reference(placed, "/t/b"), "R2R3");
  EXPECT_EQ(references.reference(placed, "/t/c"), "R1");
  placed.fields[1].value.text.clear();
  EXPECT_EQ(references.reference(placed, "/t/c"), "R2");
  EXPECT_EQ(references.unit(placed, "/t") * 10 + references.unit(placed, "/t/b"), 12);
  EXPECT_EQ(references.reference(old, "/t/b"), "R7");
  EXPECT_EQ(references.unit(old, "/t/b"), 3);
  EXPECT_EQ(references.reference(old, "/t"), "");
  // Two uses of each sheet in the one above: 2^n - 1 sheets.
  gxi_kicad_block_t a{.id = "a"}, b{.id = "b"};
  gxm_messages_t warnings;
  const auto lines = [&](int levels) {
    std::vector<gxi_kicad_cell_use_t> cells(static_cast<std::size_t>(levels));
    for (int i = 0; i + 1 < levels; ++i)
      cells[static_cast<std::size_t>(i)].blocks = {{&a, "A", i + 1}, {&b, "B", i + 1}};
    cells.back().parts = {{&placed, "R3"}};
    return gxi_kicad_reference_lines(cells, references, "/t", warnings);
  };
  EXPECT_EQ(lines(2), "/A/R3 R2\n");
  EXPECT_EQ(warnings.size(), 0U);
  EXPECT_EQ(lines(17).substr(0, 4), "/A/A");
  EXPECT_EQ(warnings.size(), 0U);
  lines(18);
  EXPECT_EQ(warnings,
            gxm_messages_t{
                "more than 200000 sheets in use: the references of further ones are left out"});
}

// Compared with each wire and each point, one by one.
TEST(ImportKicad, PointsJoinTheWiresThatTheyLieOn) {
  std::mt19937 random(1);
  const auto any = [&](int most) {
    return static_cast<int>(random() % static_cast<unsigned>(most));
  };
  for (int run = 0; run < 200; ++run) {
    std::vector<gxi_kicad_wire_t> wires;
    std::vector<gxi_kicad_touch_t> touches;
    for (int i = 0; i < 8; ++i) {
      const gxi_kicad_point_t from{any(6), any(6)};
      const int way = i == 0 ? 4 : any(4);  // a single slanted one: others could lie along it
      wires.push_back({0, from,
                       way < 2   ? gxi_kicad_point_t{any(6), from.y}
                       : way < 4 ? gxi_kicad_point_t{from.x, any(6)}
                                 : gxi_kicad_point_t{from.x + 2, from.y + 2}});
    }
    for (int i = 0; i < 5; ++i) touches.push_back({{any(6), any(6)}, 8 + i});
    gxi_groups_t expected(13), groups(13);
    std::vector<bool> on;
    std::vector<gxi_kicad_point_t> points;
    for (const auto& touch : touches) {
      const auto p = touch.at;
      points.push_back(p);
      on.push_back(false);
      for (int i = 0; i < 8; ++i) {
        const auto& [line, a, b] = wires[static_cast<std::size_t>(i)];
        if ((b.x - a.x) * (p.y - a.y) != (b.y - a.y) * (p.x - a.x) || p.x < std::min(a.x, b.x) ||
            p.x > std::max(a.x, b.x) || p.y < std::min(a.y, b.y) || p.y > std::max(a.y, b.y))
          continue;
        expected.join(i, touch.member);
        on.back() = true;
      }
    }
    gxi_kicad_join_touching(groups, wires, touches);
    for (int i = 0; i < 13; ++i) ASSERT_EQ(groups.root(i), expected.root(i)) << run << ' ' << i;
    ASSERT_EQ(gxi_kicad_on_wires(wires, points), on) << run;
  }
}

// A sheet of a series is half of the next larger one.
TEST(ImportKicad, SizesOfPaper) {
  const auto paper = [](const std::string& words) {
    return gxi_kicad_read_records(in_sheet("(paper " + words + ")"), "n").paper;
  };
  const auto is_half = [](gxi_kicad_point_t small, gxi_kicad_point_t large) {
    const int half = large.x / 20'000 * 10'000;  // a whole millimetre, of inches exactly
    return small.x == large.y && (small.y == half || small.y == large.x / 2);
  };
  const std::vector<std::string> series[] = {{"A5", "A4", "A3", "A2", "A1", "A0"},
                                             {"A", "B", "C", "D", "E"}};
  for (const auto& names : series)
    for (std::size_t i = 1; i < names.size(); ++i)
      EXPECT_TRUE(is_half(paper(names[i - 1]), paper(names[i]))) << names[i];
  EXPECT_EQ(paper("A0"), (gxi_kicad_point_t{11'890'000, 8'410'000}));
  EXPECT_EQ(paper("A0 portrait"), (gxi_kicad_point_t{8'410'000, 11'890'000}));
  EXPECT_EQ(paper("A"), (gxi_kicad_point_t{2'794'000, 2'159'000}));
  EXPECT_EQ(paper("USLetter"), paper("A"));
  EXPECT_EQ(paper("USLedger"), paper("B"));
  EXPECT_EQ(paper("USLegal"), (gxi_kicad_point_t{3'556'000, 2'159'000}));
  EXPECT_EQ(paper("User 1.5 2"), (gxi_kicad_point_t{15'000, 20'000}));
  EXPECT_EQ(paper("none"), gxi_kicad_point_t{});
}

TEST(ImportKicad, IsKnownByItsFirstWords) {
  EXPECT_TRUE(gxi_is_kicad("(kicad_sch (version 1))"));
  EXPECT_TRUE(gxi_is_kicad("\xEF\xBB\xBF\n (kicad_sch"));
  EXPECT_TRUE(gxi_is_kicad("EESchema Schematic File Version 4"));
  for (const auto* const other : {"", " ", "kicad_sch", "v {xschem}", "(kicad_pcb"})
    EXPECT_FALSE(gxi_is_kicad(other)) << other;
}

TEST(ImportKicad, AFrameHasRoomForItsTexts) {
  const auto frame = [](int x, int y, const gxi_kicad_title_t& title) {
    gxi_sheet_t sheet;
    gxi_kicad_draw_frame({x, y}, title, "f", sheet);
    return sheet;
  };
  // Where the block has no room, or no screen shows it, there is none.
  constexpr int least = 1'320'000, most = 50'000'000;
  EXPECT_EQ(frame(least, most, {}).shapes.size(), 1U);
  EXPECT_EQ(frame(least - 1, most, {}).shapes.size(), 0U);
  EXPECT_EQ(frame(most + 1, least, {}).shapes.size(), 0U);
  const std::string many(100, 'm');
  std::vector<std::int32_t> heights;
  for (const auto& text : frame(2'970'000, 2'100'000,
                                {{"comment1", many}, {"date", many}, {"rev", many}, {"title", "t"}})
                              .texts)
    heights.push_back(text.look.height);
  const auto fits = [](int room, int letters) {
    return gxi_kicad_length(room) * 5 / (6 * letters);
  };
  EXPECT_EQ(heights, (std::vector<std::int32_t>{fits(1'060'000, 100), 4429, 5906,
                                                fits(820'000, 106), fits(230'000, 105)}));
}

// Instances share the cell of their sign only where nothing at all is different.
TEST(ImportKicad, KeysOfDifferentSignsDiffer) {
  gxi_symbol_t base{.name = "s"};
  base.shapes = {{.type = gx_type::circle_2d, .points = {{1, 2}}, .radius = 3}};
  base.texts = {{"t", {.at = {4, 5}}}};
  base.properties = {{"P", "v", {}}};
  base.pins = {{.name = "A", .at = {6, 7}, .properties = {{"Q", "w", {}}}}};
  const std::vector<std::function<void(gxi_symbol_t&)>> changes{
      [](auto&) {},
      [](auto& s) { s.name = "z"; },
      [](auto& s) { s.shapes[0].type = gx_type::arc3p_2d; },
      [](auto& s) { s.shapes[0].points[0].x = 0; },
      [](auto& s) { s.shapes[0].points[0].y = 0; },
      [](auto& s) { s.shapes[0].radius = 0; },
      [](auto& s) { s.shapes[0].color = 0; },
      [](auto& s) { s.shapes[0].width = 0; },
      [](auto& s) { s.shapes[0].style = 1; },
      [](auto& s) { s.shapes[0].filled = true; },
      [](auto& s) { s.texts[0].value = "z"; },
      [](auto& s) { s.texts[0].look.at.x = 0; },
      [](auto& s) { s.texts[0].look.at.y = 0; },
      [](auto& s) { s.texts[0].look.height = 0; },
      [](auto& s) { s.texts[0].look.across = gxi_align::end; },
      [](auto& s) { s.texts[0].look.up = gxi_align::end; },
      [](auto& s) { s.texts[0].look.rotate = 1; },
      [](auto& s) { s.properties[0].name = "z"; },
      [](auto& s) { s.properties[0].value = "z"; },
      [](auto& s) { s.pins[0].name = "z"; },
      [](auto& s) { s.pins[0].type = "z"; },
      [](auto& s) { s.pins[0].at.x = 0; },
      [](auto& s) { s.pins[0].at.y = 0; },
      [](auto& s) { s.pins[0].properties[0].name = "z"; },
      [](auto& s) { s.pins[0].properties[0].value = "z"; }};
  std::set<std::string> keys;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    auto sign = base;
    changes[i](sign);
    EXPECT_TRUE(keys.insert(gxi_kicad_sign_key(sign)).second) << i;
  }
  const std::pair<const char*, const char*> classes[] = {
      {"R1", "R"}, {"uA2", "UA"}, {"#PWR", "DEVICE"}, {"", "DEVICE"}, {"G1", "G_"}, {"Z9", "Z"}};
  for (const auto& [reference, name] : classes) EXPECT_EQ(gxi_kicad_class(reference), name);
}
