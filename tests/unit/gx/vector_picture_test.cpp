// Sheets as SVG and PDF: where things lie, what is left out, texts that must not break the file.
#include <gtest/gtest.h>

#include <algorithm>

#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/queries.h"
#include "gx/text/characters.h"
#include "gx/vector/pdf_picture.h"
#include "gx/vector/svg_picture.h"
#include "tests/support/design_session.h"
#include "tests/support/make_design.h"

namespace {
std::shared_ptr<gx_file_gene_recf_t> sheet_of(std::string_view description) {
  const auto sheet = build_design(description).back().file;
  gx_hide_invisible(*sheet);
  return sheet;
}

std::string svg_of(std::string_view description, const gx_svg_page_t& page = {}) {
  return gx_svg_picture(*sheet_of(description), page);
}

// What stands between two texts, each time.
lines_t between(std::string_view text, std::string_view begin, std::string_view end) {
  lines_t found;
  for (auto at = text.find(begin); at != text.npos; at = text.find(begin, at)) {
    at += begin.size();
    found.emplace_back(text.substr(at, text.find(end, at) - at));
  }
  return found;
}

bool holds(const lines_t& lines, std::string_view line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

// Streams as they are.
std::string pdf_of(std::string_view description, const gx_sheet_labels_t& labels = {},
                   int pages = 1) {
  const auto sheet = sheet_of(description);
  gx_pdf_document document(pages, gx_colours::print, {}, {});
  for (int i = 0; i < pages; ++i) document.add_page(*sheet, labels);
  return document.finish("a (title)");
}

TEST(VectorPicture, ShapesLieWhereTheSheetHasThem) {
  const std::string svg = svg_of(
      "sheet top\n page 24,20\n line 2,4 3,4\n line 2,4 3,5 color red width 3 style 2\n"
      " rect 2,2 4,3 filled color green\n polyline 1,1 2,1 2,2\n circle 6,6 1\n"
      " text HELLO at 6,8 height 0.5\n text ASIDE at 7,8 vertical\n");
  const auto paths = between(svg, " d=\"", "\"");
  EXPECT_TRUE(holds(paths, "M100 200H150")) << svg;
  EXPECT_TRUE(holds(between(svg, "<path class=\"c1 s2\"", "/>"),
                    " stroke-width=\"6\" d=\"M100 200L150 250\""));
  EXPECT_TRUE(holds(between(svg, "<path class=\"f2\" d=\"", "\""), "M100 100H200V150H100Z"));
  EXPECT_TRUE(std::ranges::any_of(paths, [](const auto& d) {
    return d.ends_with("M50 50H100V100M250 300A50 50 0 1 1 350 300A50 50 0 1 1 250 300");
  })) << svg;
  EXPECT_EQ(between(svg, "x=\"300\" y=\"400\" font-size=\"35\" ", "</text>"),
            lines_t{"textLength=\"150\" lengthAdjust=\"spacingAndGlyphs\">HELLO"});
  EXPECT_EQ(between(svg, " transform=\"", "\""), lines_t{"rotate(-90 350 400)"});
  // The page and the room for its title above.
  EXPECT_EQ(between(svg, "<rect x=\"0\" ", " fill"),
            (lines_t{"y=\"-60\" width=\"1200\" height=\"1060\"",
                     "y=\"0\" width=\"1200\" height=\"1000\" class=\"c6\""}));
}

// An arc over the upper half of a circle from the right to the left, in every placement: its ends,
// and on which side of them it bulges.
TEST(VectorPicture, ArcsTurnWithTheirPart) {
  const char* const expected[2][4] = {
      {"M450 400A50 50 0 0 0 350 400", "M400 350A50 50 0 0 0 400 450",
       "M350 400A50 50 0 0 0 450 400", "M400 450A50 50 0 0 0 400 350"},
      {"M450 400A50 50 0 0 1 350 400", "M400 450A50 50 0 0 1 400 350",
       "M350 400A50 50 0 0 1 450 400", "M400 350A50 50 0 0 1 400 450"}};
  for (const int mirrored : {0, 1})
    for (int rotate = 0; rotate < 4; ++rotate) {
      const std::string svg =
          svg_of("symbol s\n arc 1,0 0,-1 -1,0\nsheet top\n page 20,20\n part U s 8,8 rotate " +
                 std::to_string(rotate) + (mirrored != 0 ? " mirror\n" : "\n"));
      EXPECT_TRUE(holds(between(svg, " d=\"", "\""), expected[mirrored][rotate]))
          << mirrored << rotate << svg;
    }
}

TEST(VectorPicture, WhatIsHiddenOrOverriddenIsNotWritten) {
  const auto sheet = sheet_of(
      "symbol s\n prop VALUE=old at 0,0\n prop KIND=kept at 0,1\n"
      "sheet top\n page 20,20\n part U s 8,8 HIDDEN=secret\n  prop OTHER=own at 0,2\n");
  const auto texts = [&] {
    return between(gx_svg_picture(*sheet, {}), "spacingAndGlyphs\">", "<");
  };
  EXPECT_EQ(texts(), (lines_t{"old", "kept", "own"}));
  for (auto* object : sheet->ptr_to_ar_objindex) {
    if (object->object_type != gx_type::property_2d) continue;
    auto& property = gx_property_info_ptr(*sheet, object->object_id);
    if (gx_view(property.nvalue) == "own")
      std::ranges::copy(std::string_view("VALUE"), property.name.char_);
  }
  EXPECT_EQ(texts(), (lines_t{"kept", "own"}));
}

TEST(VectorPicture, TextsStayTexts) {
  const std::string description =
      "sheet top\n page 20,20\n text 'a<b>&\"c\"</script><script>' at 1,1\n"
      " text 'f(x)\\' at 1,2\n";
  const std::string svg = svg_of(description);
  EXPECT_NE(svg.find(">a&lt;b&gt;&amp;&quot;c&quot;&lt;/script&gt;&lt;script&gt;</text>"),
            std::string::npos)
      << svg;
  EXPECT_EQ(svg.find("<script"), std::string::npos);
  EXPECT_NE(pdf_of(description).find("(f\\(x\\)\\\\)Tj"), std::string::npos);
  EXPECT_EQ(gx_xml("\xC3\xA9 \xE2\x84\xA6 \xF0\x9D\x84\x9E"),
            "\xC3\xA9 \xE2\x84\xA6 \xF0\x9D\x84\x9E");
  for (const char* character : {"\xC2\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"})
    EXPECT_EQ(gx_characters(character).size(), 1U) << character;
  // No UTF-8: overlong, cut short, a surrogate, beyond the last one; then Latin-1.
  for (const char* bytes : {"\xC0\xAF", "\xE2\x84", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xE9"})
    EXPECT_EQ(gx_characters(bytes).size(), std::string_view(bytes).size()) << bytes;
  EXPECT_EQ(gx_xml("\xE9"), "\xC3\xA9");
  EXPECT_EQ(gx_pdf_shown("\xC3\xA9\xE2\x84\xA6\x01"), "(\xE9? )");
  EXPECT_EQ(gx_pdf_text("\xE2\x84\xA6\xF0\x9D\x84\x9E"), "<FEFF2126D834DD1E>");
}

TEST(VectorPicture, LengthsHaveNoMoreDecimalsThanTheyNeed) {
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0"}, {5000, "50"}, {-5, "-0.05"}, {150, "1.5"}, {-12345, "-123.45"}, {101, "1.01"}};
  for (const auto& [length, written] : cases) {
    std::string text;
    gx_append_units(text, length);
    EXPECT_EQ(text, written);
  }
}

// What an instance draws is written from its origin; its colours, pens and fonts end with it.
TEST(VectorPicture, ThePdfOfATurnedPart) {
  const std::string description =
      "symbol s\n arc 1,0 0,-1 -1,0\n prop KIND=up at 0,1 vertical\n"
      "sheet top\n page 20,20\n line 1,1 2,1 color red\n part U s 8,8 rotate 2 mirror\n"
      " net\n  wire 2,15 4,15 style 1 width 2\n";
  EXPECT_EQ(between(pdf_of(description), "/BBox", "]").front(), "[-1 -1 1001 1001");
  EXPECT_EQ(between(pdf_of(description), "stream\n", "\nendstream").front(),
            "1 j\n0.56 0 0.56 RG\n2 w\n1 J [] 0 d\n0 0 1000 1000 re\nS\n"
            "0.75 0 0 RG\n50 50 m\n100 50 l\nS\n"
            "q 1 0 0 1 400 400 cm\n0.5 0.31 0 RG\n2 w\n1 J [] 0 d\n-50 0 m\n"
            "-50 -27.61 -27.61 -50 0 -50 c\n27.61 -50 50 -27.61 50 0 c\nS\n"
            "0 0 0 rg\nBT\n/F 35 Tf\n142.86 Tz\n0 -1 -1 0 12.5 50 Tm\n(up)Tj ET\nQ\n"
            "0 0.38 0.5 RG\n4 w\n0 J [12 12 ] 0 d\n100 750 m\n200 750 l\nS\n");
  EXPECT_EQ(between(svg_of(description), " transform=\"", "\""), lines_t{"rotate(-90 412.5 450)"});
}

TEST(VectorPicture, LinksAndFlatNamesAreThoseOfThePage) {
  const std::string description =
      "symbol s\n rect 0,0 2,1\n pin A 0,0\nsheet top\n page 20,20\n part U s 8,8\n part V s 8,12\n"
      " net N\n  wire U.A 2,8\n  wire 2,8 2,9\n net M\n  wire V.A 8,15\n";
  const auto sheet = sheet_of(description);
  gx_sheet_labels_t labels{.path = "/X", .title = "/X & co", .above = 0};
  labels.below = [&](int inst) { return lb_inst_name(*sheet, inst) == "U" ? 1 : -1; };
  std::string flat;
  labels.net_name = [&](int net) -> std::string_view {
    return flat = "/X/" + lb_net_name(*sheet, net);
  };
  const std::string files[] = {"up.svg", "down.svg"};
  gx_svg_page_t page;
  page.labels = labels;
  page.files = files;
  const std::string svg = gx_svg_picture(*sheet, page);
  EXPECT_EQ(between(svg, "href=\"", "\""), (lines_t{"up.svg", "down.svg"}));
  EXPECT_EQ(between(svg, "<a href=\"down.svg\">\n<title>", "</title>"),
            lines_t{"/X &amp; co: U: s"});
  // On the middle of the longest segment, along it.
  EXPECT_EQ(between(svg, "class=\"f6\" x=\"", "textLength").size(), 2U);
  EXPECT_NE(svg.find("class=\"f6\" x=\"250\" y=\"396\" font-size=\"14\""), std::string::npos)
      << svg;
  EXPECT_NE(svg.find("class=\"f6\" x=\"396\" y=\"675\" font-size=\"14\""), std::string::npos)
      << svg;

  gx_pdf_document document(2, gx_colours::print, {}, {});
  document.add_page(*sheet, labels);
  document.add_page(*sheet, {.path = "/X/U", .title = "/X/U"});
  const std::string pdf = document.finish("t");
  EXPECT_EQ(between(pdf, "/Subtype/Form", "/").size(), 1U) << "the sheet is there once";
  EXPECT_EQ(between(pdf, "/Subtype/Link", ">>").size(), 2U);
  // U's box, in points from the lower left corner of the page.
  EXPECT_EQ(between(pdf, "/Rect[", "]").back(), "74.16 97.2 90 105.84 ");
  EXPECT_EQ(between(pdf, "(/X/N)", " "), lines_t{"Tj"});
  EXPECT_EQ(between(pdf, "/Title (", ")"), (lines_t{"/X", "U", "t"}));
}

TEST(VectorPicture, PlotFileWritesTheSheetInView) {
  design_session session(
      "symbol s\n rect 0,0 2,1\nsheet s\n page 20,20\n part V s 8,8\nsheet top\n page 20,20\n"
      " part U s 8,8\n");
  EXPECT_EQ(session.run("PLOT FILE 'a b.svg'"), lines_t{" PLOt FILe 'a b.svg' "});
  EXPECT_NE(read_file("a b.svg").find("<title>top: U: s</title>"), std::string::npos);
  EXPECT_EQ(session.run("plo fil B.PDF"), lines_t{" PLOt FILe B.PDF "});
  EXPECT_TRUE(read_file("B.PDF").starts_with("%PDF-"));
  EXPECT_EQ(session.run("PLOT FILE a.plt"),
            (lines_t{"# PLOt FILE a.plt ", "# !! Error : The name must end with .svg or .pdf ? "}));
  std::filesystem::create_directory("d.svg");
  EXPECT_EQ(session.run("PLOT FILE d.svg").back(), "# !! Error : Cannot write : Is a directory ? ");
  EXPECT_NE(read_file("B.PDF").find("/Title (top)"), std::string::npos);
  EXPECT_NE(read_file("B.PDF").find("/MediaBox[0 0 595"), std::string::npos);
  session.run("view down U");
  for (const char* path : {"U/", "/U/"}) {
    kv_pext.cur_sim_path = gx_string(path);
    session.run("PLOT FILE a.svg");
    EXPECT_NE(read_file("a.svg").find("<title>/U: V: s</title>"), std::string::npos) << path;
  }
}
}  // namespace
