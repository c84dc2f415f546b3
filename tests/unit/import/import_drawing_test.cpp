// What the readers of all formats use: lines of netlists, numbers, names, wires.
#include "import/build/wiring.h"
#include "import/drawing/names.h"
#include "import/drawing/netlist_text.h"
#include "import/drawing/numbers.h"
#include "import/drawing/text_devices.h"
#include "tests/support/joined_words.h"

TEST(ImportDrawing, DevicesAmongTheLinesOfANetlist) {
  const struct {
    const char *text, *devices;  // name, (nodes), value, and the line
  } cases[] = {
      {"R1 a b 1k TC = 2", "R1 (a b) 1k TC=2: R1 @1 @2 1k TC = 2"},
      {"  r1\ta b\n* note\n+ 1k\n\n+w=@x", "r1 (a b) 1k w=@x: r1\t@1 @2  1k w=@@x"},
      {"M1 d g s b nch L=1u", "M1 (d g s b) nch L=1u: M1 @1 @2 @3 @4 nch L=1u"},
      {"Q1 c b e npn", "Q1 (c b e) npn: Q1 @1 @2 @3 npn"},
      {"J1 d g s jn\nz1 d g s mes",
       "J1 (d g s) jn: J1 @1 @2 @3 jn; z1 (d g s) mes: z1 @1 @2 @3 mes"},
      {"E1 p m c d 5", "E1 (p m c d) 5: E1 @1 @2 @3 @4 5"},
      {"G1 p m value={V(a)}", "G1 (p m) value={V(a)}: G1 @1 @2 value={V(a)}"},
      {"E1 table p TABLE {V(a)} = 1", "E1 (table p) TABLE {V(a)}=1: E1 @1 @2 TABLE {V(a)} = 1"},
      {"E1 p m delay 2\nE2 p m Cur",
       "E1 (p m) delay 2: E1 @1 @2 delay 2; E2 (p m) Cur: E2 @1 @2 Cur"},
      {"S1 a b c d sw\nT1 a b c d",
       "S1 (a b c d) sw: S1 @1 @2 @3 @4 sw; T1 (a b c d): T1 @1 @2 @3 @4"},
      {"O1 a b c d l", "O1 (a b c d) l: O1 @1 @2 @3 @4 l"},
      {"X1 a b sub", "X1 (a b) sub: X1 @1 @2 sub"},
      {"U1 a sub params: w=1", "U1 (a) sub params: w=1: U1 @1 sub params: w=1"},
      {"A1 [a ~b] %vd(c d) null g", "A1 (a b c d null) g: A1 [@1 ~@2] %vd(@3 @4) @5 g"},
      {"V1 [a b~ 1 PWL(0 1)", "V1 ([a b~) 1 PWL(0 1): V1 @1 @2 1 PWL(0 1)"},
      // None: too few words, what has no nodes, commands, and what is within others.
      {"R1 a\nK1 L1 L2 1\nX1 sub\n* R2 a b\n.model R3 a b\n.", ""},
      {".control\nR1 a b\n.endc\n.SUBCKT s\nR1 a b\n.subckt t\n.ends\nR1 a b\n.ends\nR2 a b",
       "R2 (a b): R2 @1 @2"},
      {".ends\n.endc\nR2 a b", "R2 (a b): R2 @1 @2"},
      {"+ 1k\nR1 a b 1", "R1 (a b) 1: R1 @1 @2 1"},
  };
  for (const auto& [text, devices] : cases) {
    std::string found;
    for (const auto& device : gxi_netlist_devices(text))
      found += (found.empty() ? "" : "; ") + device.name + " (" + joined_words(device.nodes) + ")" +
               (device.value.empty() ? "" : " " + device.value) + ": " + device.line;
    EXPECT_EQ(found, devices);
  }
  std::string rest;
  gxi_netlist_devices("  .tran 1\n+ 2\n\n*x\nR1 a b\nR1 a\n.control\nR1 a b\n.endc", &rest);
  EXPECT_EQ(rest, "  .tran 1\n+ 2\n*x\nR1 a\n.control\nR1 a b\n.endc\n");
  const std::string ports =
      ".subckt a q\n.SUBCKT B X Y\n+ Z w = 1 v=2\n.ends\n.subckt c x params: w\n";
  EXPECT_EQ(joined_words(gxi_netlist_ports(ports, "b")), "X Y Z");
  EXPECT_EQ(joined_words(gxi_netlist_ports(ports, "C")), "x");
  EXPECT_EQ(joined_words(gxi_netlist_ports(".subckt\n.subckt d", "d")), "");
}

TEST(ImportDrawing, DevicesOfATextLieInRowsBelowTheOthers) {
  gxi_design_t design;
  gxi_text_devices_t devices(design);
  gxi_sheet_t sheet;
  sheet.instances.push_back({.at = {7, 12345}});
  std::string text;
  for (int i = 0; i < 41; ++i) text += (i == 1 ? "r b a\n" : "Q a b c x\n");
  std::string nets;
  EXPECT_EQ(devices.add(text + ".end\n", sheet,
                        [&](const std::string& node) {
                          nets += node;
                          return static_cast<int>(nets.size());
                        }),
            ".end\n");
  EXPECT_EQ(nets.substr(0, 9), "abcbaabca");
  EXPECT_EQ(sheet.instances.at(2).nets, (std::vector<int>{4, 5}));
  const auto at = [&](std::size_t i) { return sheet.instances.at(i).at; };
  EXPECT_EQ(at(1), (gx_pointreal_t{0, 60000}));
  EXPECT_EQ(at(40), (gx_pointreal_t{390000, 60000}));
  EXPECT_EQ(at(41), (gx_pointreal_t{0, 90000}));
  ASSERT_EQ(design.cells.size(), 2U);  // the same for all of a kind
  EXPECT_EQ(sheet.instances[2].symbol, 1);
  EXPECT_EQ(sheet.instances[41].symbol, 0);
  const auto& symbol = design.cells[0].symbol;
  EXPECT_EQ(symbol.name + symbol.properties.at(0).value, "text_Q3text_Q3");
  EXPECT_EQ(symbol.pins.at(2).name, "N3");
  EXPECT_EQ(symbol.pins[2].at, (gx_pointreal_t{0, 10000}));
  gxi_sheet_t empty;
  devices.add("R1 a b", empty, [](const auto&) { return 0; });
  EXPECT_EQ(empty.instances.at(0).at, (gx_pointreal_t{0, 60000}));
}

TEST(ImportDrawing, NumbersAreWrittenWithoutASuffix) {
  const std::pair<const char*, const char*> numbers[] = {{"4.7k", "4700"},
                                                         {"10uF", "0.00001"},
                                                         {"2meg", "2000000"},
                                                         {"1.50e-1", "0.15"},
                                                         {"1e+3", "1000"},
                                                         {"1.5E2m", "0.15"},
                                                         {"0", "0"},
                                                         {"0.0", "0"},
                                                         {"007", "7"},
                                                         {"100.", "100"},
                                                         {".5", "0.5"},
                                                         {"00.25", "0.25"},
                                                         {"3T", "3000000000000"},
                                                         {"2g", "2000000000"},
                                                         {"5n", "0.000000005"},
                                                         {"6p", "0.000000000006"},
                                                         {"7f", "0.000000000000007"},
                                                         {"8a", "0.000000000000000008"},
                                                         {"2ohm_x", "2"},
                                                         {"1e59", "1"},
                                                         {"-1", ""},
                                                         {"+1", ""},
                                                         {"", ""},
                                                         {".", ""},
                                                         {"k", ""},
                                                         {"5mil", ""},
                                                         {"1.2.3", ""},
                                                         {"1 k", ""},
                                                         {"3k3", ""}};
  for (const auto& [text, number] : numbers) {
    std::string expected = number;
    if (std::string_view(text) == "1e59") expected += std::string(59, '0');
    EXPECT_EQ(gxi_plain_number(text).value_or(""), expected) << text;
  }
  const std::pair<const char*, const char*> expressions[] = {
      {"'@w * 4.4u'", "(w*0.0000044)"},
      {"{2k+(a_1-3)/\"b\"}", "(2000+(a_1-3)/b)"},
      {"((x))*.5", "(((x))*0.5)"},
      {"@9", "(9)"},
      {"sqrt(2)", ""},
      {"a**2", ""},
      {"a b", ""},
      {"a 2", ""},
      {"2 a", ""},
      {"(a", ""},
      {"a)", ""},
      {"()", ""},
      {"a+", ""},
      {"*a", ""},
      {"-a", ""},
      {"a(", ""},
      {"2(a)", ""},
      {"@", ""},
      {"@ a", ""},
      {"", ""},
      {"a<b", ""},
      {"5mil", ""},
      {"(a)(b)", ""},
      {"a+-b", ""}};
  for (const auto& [text, expression] : expressions)
    EXPECT_EQ(gxi_plain_expression(text).value_or(""), expression) << text;
}

TEST(ImportDrawing, NamesDifferWithinTheirLength) {
  gxi_names_t names;
  std::string taken;
  for (const auto* const name : {"a", "A", "a", "a~3", "abcdef", "ABCDEG", "ABC~2", "abcdeh"})
    taken += names.take(name, 5) + " ";
  EXPECT_EQ(taken, "a A~2 a~3 a~3~2 abcde ABC~2 ABC~3 abc~4 ");
  EXPECT_TRUE(names.has("ABC~3"));
  EXPECT_FALSE(names.has("abcd"));
  EXPECT_EQ(gxi_directory_name("a b/\u00e9-_+.9Z"), "a_b_e-_+.9Z");
  EXPECT_EQ(gxi_directory_name(".x"), "_.x");
  EXPECT_EQ(gxi_directory_name("-x"), "_-x");
  EXPECT_EQ(gxi_directory_name(""), "_");
}

// Slanted, overlapping, crossing and doubled wires; with few in a direction and with many.
TEST(ImportDrawing, WiresAreCutWhereTheyMeet) {
  for (const int others : {0, 9}) {
    std::vector<gxi_segment_t> wires{{{0, 0}, {40, 20}},
                                     {{60, 30}, {20, 10}},  // over the first
                                     {{0, 5}, {40, 25}},    // beside them
                                     {{20, 10}, {20, 40}, gxm_red, 3},
                                     {{20, 50}, {20, 40}, gxm_red, 3},
                                     {{20, 60}, {20, 55}},
                                     {{7, 7}, {7, 7}}};
    for (int i = 0; i < others; ++i) {
      wires.push_back({{1000, 10 * i}, {1020, 10 + 10 * i}});
      wires.push_back({{2000, 10 * i}, {2000, 10 * i + 5}});
    }
    const std::vector<gx_pointreal_t> pins{{10, 5}, {20, 30}, {20, 30}, {21, 30}};
    const auto wiring = gxi_wire(wires, pins);
    std::string told;
    for (const auto& piece : wiring.pieces) {
      const auto &a = wiring.ends[piece.end1], &b = wiring.ends[piece.end2];
      if (a.at.x >= 1000) continue;
      for (const auto& end : {a, b})
        told += std::to_string(end.at.x) + ',' + std::to_string(end.at.y) +
                (end.pin >= 0 ? "p" + std::to_string(end.pin) : "") +
                (end.degree > 1 ? "*" + std::to_string(end.degree) : "") + ' ';
      told += std::to_string(piece.color) + (piece.width > 1 ? "w\n" : "\n");
    }
    EXPECT_EQ(told,
              "20,10*3 20,30p1*2 1w\n20,30p1*2 20,40*2 1w\n20,40*2 20,50 1w\n20,55 20,60 4\n"
              "0,0 10,5p0*2 4\n10,5p0*2 20,10*3 4\n20,10*3 40,20*2 4\n40,20*2 60,30 4\n"
              "0,5 40,25 4\n")
        << others;
    EXPECT_EQ(wiring.pieces.size(), 9U + 2U * static_cast<unsigned>(others));
  }
}
