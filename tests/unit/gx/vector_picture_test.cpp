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
#include "tests/support/session_case.h"

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

// Streams as they are.
std::string pdf_of(std::string_view description, const gx_sheet_labels_t& labels = {},
                   int pages = 1) {
  const auto sheet = sheet_of(description);
  gx_pdf_document document(pages, gx_colours::print, {}, {});
  for (int i = 0; i < pages; ++i) document.add_page(*sheet, labels);
  return document.finish("a (title)");
}

// "svg" or "pdf": what is drawn, without the looks before and the fonts after.
class vector_session {
 public:
  explicit vector_session(std::string design) : design_(std::move(design)) {}
  lines_t answer(const std::string& line) const {
    if (line == "svg") {
      const std::string svg = svg_of(design_);
      return split_lines(std::string_view(svg).substr(svg.find("</style>\n") + 9));
    }
    const std::string pdf = pdf_of(design_);
    lines_t lines = between(pdf, "/BBox", "\n");
    for (const auto& drawn : split_lines(between(pdf, "stream\n", "\nendstream").front()))
      lines.push_back(drawn);
    return lines;
  }

 private:
  std::string design_;
};

TEST(VectorPicture, ShapesLieWhereTheSheetHasThem) {
  expect_sessions<vector_session>("picture/vector.txt");
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
