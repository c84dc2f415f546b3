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
  for (const auto& [text, value] : {std::pair{"2*3u", 6e-6},
                                    {"-(1+2)**2/3", -3.0},
                                    {"2-3-4", -5.0},
                                    {"1meg + 4.7kOhm", 1004700.0},
                                    {"1 > 2 ? 5 : max(2, 7)", 7.0},
                                    {"1e-3*1e3", 1.0}}) {
    const auto found = dk_evaluate(text);
    ASSERT_TRUE(found) << text;
    EXPECT_NEAR(*found, value, 1e-12 * std::abs(value)) << text;
  }
  for (const auto* const text : {"", "2*w", "1/0", "(1", "1 2", "foo(3)", "v(a)"})
    EXPECT_FALSE(dk_evaluate(text)) << text;
  EXPECT_FALSE(dk_evaluate(std::string(100'000, '(')));
  EXPECT_FALSE(dk_evaluate(std::string(100'000, '-')));
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
        {"R1 @1 x@@y 5", " n1 x@y 5"}})
    EXPECT_EQ(rendered(line), filled) << line;
}

TEST(DeckTest, FileComesBack) {
  dk_cells_t cells;
  auto& cell = cells["inv"];
  cell.subcircuit = "inv_1";
  cell.is_part = true;
  cell.parameters = {{"del", "2 ns"}};
  cell.instances = {{"M 1", "M1 @1\n: odd\n"}};
  cell.end = ".model a b\n";
  dk_cells_t back;
  ASSERT_EQ(dk_read(dk_write(cells), back), "");
  EXPECT_EQ(dk_write(back), dk_write(cells));
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
      ".control\n.tran 1\n.endc\n.ic v(a)=1\n.subckt s a\nR1 a 0 1\n.ends\n.op\n");
  std::string kinds;
  for (const auto& statement : found) kinds += std::to_string(static_cast<int>(statement.kind));
  EXPECT_EQ(kinds, "0113213");
  EXPECT_EQ(found.at(1).text, ".model n nmos\n+ vt=1\n");
  const auto values = dk_parameters(found.at(0).text);
  ASSERT_EQ(values.size(), 2U);
  EXPECT_EQ(values[1].first + values[1].second, "b'2 * a'");
  const auto braced = dk_parameters(".param c={max(1, 2) + 3} d = 4\n");
  ASSERT_EQ(braced.size(), 2U);
  EXPECT_EQ(braced[0].first + braced[0].second, "c{max(1, 2) + 3}");
}

}  // namespace
