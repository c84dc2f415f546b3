// Whole decks of expanded designs. The cases are texts in tests/cases/deck: the sheets, the file
// "deck", then what is written in some kinds of decks, without the title.
#include <gtest/gtest.h>

#include <map>

#include "deck/write/deck.h"
#include "kvi/load.h"
#include "tests/support/case_file.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

const std::map<std::string, dk_options_t> kinds = {
    {"without-deck", {}},
    {"saved", {.saved = {{"MJ", "gm"}, {"R", "i"}}, .includes = {"models", "x.inc"}}},
    {"hierarchy", {.hierarchy = true}},
    {"global-ports", {.hierarchy = true, .lvs = true, .global_ports = true}}};

class DeckWriterBareTest : public FlattenTest {
 protected:
  // Keeps these texts of instances.
  void expand(const std::string& sheets, const std::string& kept) {
    constexpr std::string_view more =
        "symbol m\n pin D 0,0 OUT\n pin G 0,1 IN\n pin S 0,2 IXO\n prop CLASS=M\n"
        "symbol u\n pin P 0,0 IXO bits 0:1\n prop CLASS=R\n";
    write(build(std::string(more) + sheets));
    declare({"PRIMI CLASS", "PROP INS S " + kept, "PROP INS R W FOO", "PROP PIN S PIN",
             "PROP NET S NET"});
    open_top();
    answers();
    ASSERT_EQ(kvi_open_design(design_, "design_kv").message, "");
  }
  // Of a flat one what is complained of, too.
  std::string deck(std::string_view text, const dk_options_t& options) {
    dk_cells_t cells;
    if (const auto wrong = dk_read(text, cells); !wrong.empty()) return wrong;
    std::string lines, complaints;
    const bool whole = dk_write_deck(
        design_, cells, options,
        {.line = [&](std::string_view line) { lines.append(line).append("\n"); },
         .complain = [&](const std::string& what) { complaints += "! " + what + "\n"; }});
    return lines.substr(lines.find('\n') + 1) + (options.hierarchy ? "" : complaints) +
           (whole ? "" : "not whole\n");
  }

 private:
  kvi_design_t design_;
};

class DeckWriterTest : public DeckWriterBareTest,
                       public ::testing::WithParamInterface<const char*> {};

TEST_P(DeckWriterTest, DecksAreThoseOfTheCase) {
  const auto sections = sections_of_case(std::string("deck/") + GetParam());
  expand(sections.at("sheets"), "INST VALUE CLASS");
  for (const auto& [kind, options] : kinds) {
    if (!sections.contains(kind)) continue;
    const std::string text = kind == "without-deck" ? "" : sections.at("deck");
    EXPECT_EQ(deck(text, options), sections.at(kind)) << kind;
  }
}
INSTANTIATE_TEST_SUITE_P(Cases, DeckWriterTest, ::testing::Values("stages.txt", "joined.txt"));

TEST_F(DeckWriterBareTest, AnInstanceWithoutALetterIsLeftOut) {
  expand("sheet top\n part R r 0,0\n part S r 4,0\n net\n  wire R.2 S.1\n", "INST");
  EXPECT_EQ(deck("", {}), ".end\n! /R has no CLASS\n! /S has no CLASS\nnot whole\n");
}

}  // namespace
