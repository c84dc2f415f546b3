// Lines and values of decks.
#include <gtest/gtest.h>

#include <cmath>

#include "deck/deck_file.h"
#include "deck/expression.h"
#include "deck/line.h"
#include "deck/statements.h"

namespace {

// The rest of a line with the parameters WP=4u and VT={VX}, nodes and devices in capitals.
std::string rendered(std::string_view line) {
  dk_names_t names;
  names.parameter = [](std::string_view name) {
    return name == "WP"   ? std::optional<std::string>("4u")
           : name == "VT" ? std::optional<std::string>("VX+1")
                          : std::nullopt;
  };
  names.node = [](std::string_view name) { return "top:" + std::string(name); };
  names.device = [](std::string_view name) { return "R." + std::string(name); };
  names.pin = [](int pin, std::string& out) { out += "n" + std::to_string(pin); };
  std::string out;
  const auto lines = dk_compile(line);
  for (const auto& piece : lines.at(0).pieces) {
    if (piece.kind == dk_piece_t::kind_t::text)
      out += piece.text;
    else if (piece.kind == dk_piece_t::kind_t::pin)
      names.pin(piece.pin, out);
    else if (piece.kind == dk_piece_t::kind_t::device)
      out += names.device(piece.text);
    else
      dk_put(piece, names, out);
  }
  return out;
}

TEST(DeckTest, WorksOutExpressions) {
  // Each with its value.
  std::string_view known =
      "2*3u => 6e-6; -(1+2)**2/3 => -3; 2-3-4 => -5; 1meg + 4.7kOhm => 1004700; "
      "1 > 2 ? 5 : max(2, 7) => 7; 1e-3*1e3 => 1; 1t+1g+1K => 1.001000001e12; "
      "1m + 1Mil + 1uF => 1.0264e-3; 1n+1p+1f => 1.001001e-9; 1a => 1e-18; 1 || 1 && 0 => 1; "
      "0 || 2 => 1; 0 || 0 => 0; 0 && 1 == 0 => 0; 2 && 0.5 => 1; 2 && 0 => 0; 2 == 1 < 3 => 0; "
      "1 != 1 < 3 => 0; 1 <= 1 + 3 => 1; 2 >= 2 - 1 => 1; 1 >= 1 => 1; 2 <= 2 => 1; "
      "1 < 1 + 1 => 1; 3 > 3 + 1 => 0; 3 > 3 => 0; 3 < 3 => 0; 1 + 2*3 - 9/3 => 4; "
      "2 * 3 ** 2 => 18; 18 / 3 ^ 2 => 2; 2 ^ 3 ** 2 => 64; 2 ** 3 ^ 2 => 64; "
      "!2 + !0 + +3 => 4; 0 ? 1 : 0 ? 2 : 3 => 3; sqrt(16) => 4; ABS(-2) => 2; ln(exp(3)) => 3; "
      "log(exp(3)) => 3; log10(100) => 2; sin(0.5) => 0.479425538604203; "
      "cos(0.5) => 0.8775825618903728; tan(0.5) => 0.5463024898437905; "
      "tanh(atan(1)) => 0.6557942026326724; int(-1.5) => -1; floor(-1.5) => -2; "
      "ceil(-1.5) => -1; nint(1.6) => 2; sgn(5) + 3*sgn(-5) + sgn(0) => -2; min(2, 3) => 2; "
      "pow( 2 , 3 ) => 8;";
  for (std::size_t end; (end = known.find(';')) != known.npos; known.remove_prefix(end + 1)) {
    const auto text = known.substr(0, end);
    const auto found = dk_evaluate(text.substr(0, text.find("=>")));
    const double value = std::stod(std::string(text.substr(text.find("=>") + 2)));
    ASSERT_TRUE(found) << text;
    EXPECT_NEAR(*found, value, 1e-12 * std::abs(value)) << text;
  }
  for (const auto* const text : {"", "2*w", "1/0", "(1", "1 2", "foo(3)", "v(a)", "sqrt(1, 2)",
                                 "min(1)", "1 ? 2", "sqrt(1", "sqrt 1"})
    EXPECT_FALSE(dk_evaluate(text)) << text;
  EXPECT_FALSE(dk_evaluate(std::string(100'000, '(')));
  EXPECT_FALSE(dk_evaluate(std::string(100'000, '-')));
  // As many one in the other as are read, and any number one after the other.
  EXPECT_EQ(dk_evaluate(std::string(58, '-') + "1"), 1);
  EXPECT_FALSE(dk_evaluate(std::string(59, '-') + "1"));
  std::string many = "0";
  for (int i = 0; i < 99; ++i) many += "+(1)";
  EXPECT_EQ(dk_evaluate(many), 99);
  for (const auto& [text, value] : {std::pair{"-2k", -2000.0}, {"+.5", 0.5}})
    EXPECT_EQ(dk_number(text), value) << text;
  for (const auto* const text : {"", "-", "--5", "inf", "-nan", "1 2", "2*3"})
    EXPECT_FALSE(dk_number(text)) << text;
}

TEST(DeckTest, FillsLines) {
  for (const auto& [line, filled] :
       {std::pair{"M1 @1 @2 @10 nch W='2*WP' L=WP m=2", " n1 n2 n10 nch W=8e-06 L=4u m=2"},
        {"R1 @1 0 {WP} TC=1", " n1 0 4u TC=1"},
        {"R1 @1 0 'VT*2'", " n1 0 '(VX+1)*2'"},
        {"B1 @1 0 V = V(in, @2)*WP + i(V1)", " n1 0 V=V(top:in, n2)*4u + i(R.V1)"},
        {"F1 @1 @2 V1 2", " n1 n2 R.V1 2"},
        {"E1 @1 0 TABLE {V(x)} = (0, 0) (1, 5m)", " n1 0 TABLE {V(top:x)}=(0, 0) (1, 5m)"},
        {"A1 [ @1 ~ @2 ] @3 and", " [ n1 ~ n2 ] n3 and"},
        {"V1 @1 0 pulse(0 1 2n)", " n1 0 pulse(0 1 2n)"},
        {"R1 @1 x@@y 5", " n1 x@y 5"},
        {"R1 @1 @0 {@2+@@+.5WP+x.WP+2WP}", " n1 @0 {n2+@+.5WP+x.4u+2WP}"},
        {"R1 @1 0 R = '-WP' L='L' M=\"VT\"", " n1 0 R=-4u L='L' M=\"(VX+1)\""},
        {"B1 @1 0 I='v( @1 , b) + v (c)/WP(2)+I'", " n1 0 I='v( n1 , top:b) + v(top:c)/WP(2)+I'"},
        {"B1 @1 0 V=2 * WP m=3", " n1 0 V=2 * 4u m=3"},
        {"C1 @1 0 V=2 * WP VT", " n1 0 V=2 * 4u {VX+1}"},
        {"H1 @1 V1 V1 WP", " n1 V1 R.V1 4u"},
        {"W1 @1 WP V1 V1", " n1 4u R.V1 V1"},
        {"K1 L1 L2 0.5", " R.L1 R.L2 0.5"},
        {"X1 @1 s tc=(1, WP) {WP + 1} \" WP\"", " n1 s tc=(1, 4u) 1.000004 4e-06"},
        {"R1 @1 WP = 5", " n1 WP=5"},
        {"\tD1\t@1 x=v(a", " n1 x=v(top:a"}})
    EXPECT_EQ(rendered(line), filled) << line;
}

TEST(DeckTest, FileComesBack) {
  dk_cells_t cells;
  auto& cell = cells["inv"];
  cell.subcircuit = "inv_1";
  cell.is_part = true;
  cell.parameters = {{"del", "2 ns"}};
  cell.instances = {{"M 1", "M1 @1\n: odd\n"}};
  cell.ports = {{"A", "I"}};
  cell.header = ".h\n";
  cell.statements = ".s\n";
  cell.end = ".model a b\n";
  cell.definition = ".d\n";
  cells["nothing"] = {};
  const std::string written = dk_write(cells);
  EXPECT_EQ(written.substr(written.find('\n') + 1),
            "deck 1\n\ncell inv\nsubcircuit inv_1\npart\nparameter del 2 ns\nport A I\n"
            "instance M 1\n: M1 @1\n: : odd\nheader\n: .h\nstatements\n: .s\nend\n"
            ": .model a b\ndefinition\n: .d\n");
  dk_cells_t back;
  ASSERT_EQ(dk_read(written, back), "");
  EXPECT_EQ(dk_write(back), written);
  EXPECT_EQ(back["inv"].instances.at(0).lines, "M1 @1\n: odd\n");
  EXPECT_EQ(back["inv"].parameters.at(0).second, "2 ns");
  for (const auto& [text, wrong] :
       {std::pair{"cell a\n", "line 1: \"deck 1\" is not the first word"},
        {"deck 1\n: R1\n", "line 2: a line of a deck that belongs to nothing"},
        {"deck 2\n", "line 1: \"2\" is no version that is known"},
        {"deck 1\ncell a\nfoo\n", "line 3: \"foo\" is no word of a deck"},
        {"deck 1\ninstance a\n", "line 2: \"instance\" before the first cell"}})
    EXPECT_EQ(dk_read(text, back), wrong) << text;
}

TEST(DeckTest, PartsStatements) {
  const auto found = dk_statements(
      "* none\n.param a = 1 b='2 * a'\n.model n nmos\n* between\n+ vt=1\n.options x\n"
      ".control\n.tran 1\n.end\n.endc\n.ic v(a)=1\n.subckt s a\nR1 a 0 1\n.ENDS s\n.op\n");
  std::string kinds;
  for (const auto& statement : found) kinds += std::to_string(static_cast<int>(statement.kind));
  EXPECT_EQ(kinds, "0113213");
  kinds.clear();
  for (const auto& statement : dk_statements(
           "+ x\n .NODESET v(a)=1\n.save a\n.meas a\n.print a\n.plot a\n.probe a\n.four a\n"
           ".ac a\n.dc a\n.op\n.noise a\n.tf a\n.sens a\n.pz a\n.disto a\n.sp a\n.end\n"
           ".param a=1\n.lib a\n"))
    kinds += std::to_string(static_cast<int>(statement.kind));
  EXPECT_EQ(kinds, "12222222333333333301");
  EXPECT_EQ(found.at(1).text, ".model n nmos\n+ vt=1\n");
  const auto values = dk_parameters(found.at(0).text);
  ASSERT_EQ(values.size(), 2U);
  EXPECT_EQ(values[1].first + values[1].second, "b'2 * a'");
  const auto braced = dk_parameters(".param c={max(1, 2) + 3} d = 4\n");
  ASSERT_EQ(braced.size(), 2U);
  EXPECT_EQ(braced[0].first + braced[0].second, "c{max(1, 2) + 3}");
  const auto spread = dk_parameters("  .param\t a=(1 2)\n+b =\t\"x y\"c='{' d={'}' 1}\te= f\n");
  std::string pairs;
  for (const auto& [name, value] : spread) pairs += name + ":" + value + ";";
  EXPECT_EQ(pairs, "a:(1 2);b:\"x y\"c='{';d:{'}' 1};e:f;");
  EXPECT_TRUE(dk_parameters("=1").empty());
}

}  // namespace
