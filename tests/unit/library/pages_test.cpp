// The pages of a design: which there are and what they are called, and the data that a browser
// gets.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "expand/sheet/sheet_slots.h"
#include "pages/design_pages.h"
#include "pages/json_text.h"
#include "pages/page_data.h"
#include "pages/web_page.h"
#include "tests/support/case_file.h"
#include "tests/support/make_design.h"

namespace {

namespace fs = std::filesystem;

std::string without_line_ends(std::string_view text) {
  std::string line(text);
  std::erase(line, '\n');
  return line;
}

class Pages : public testing::Test {
 protected:
  Pages() { fs::current_path(directory_.path()); }
  ~Pages() override { fs::current_path("/"); }

  // The pages of a design as lines; "" and why when there are none.
  lines_t pages_of(const std::string& name, bool by_use,
                   std::vector<std::string_view> primitives = {"CLASS"}) {
    pages_ = {};
    if (!kv_open_pages(pages_, name, primitives, why_)) return {};
    if (!by_use)
      kv_pages_by_sheet(pages_);
    else if (!kv_pages_by_use(pages_, why_))
      return {};
    lines_t lines;
    for (std::size_t i = 0; i < pages_.pages.size(); ++i) {
      const auto& page = pages_.pages[i];
      std::string line = page.name + " " + page.path + " above " + std::to_string(page.above);
      for (const auto& [inst, below] : page.below) line += " below " + std::to_string(below);
      lines.push_back(line + " : " + kv_labels_of(pages_, static_cast<int>(i)).title);
    }
    return lines;
  }

  const std::map<std::string, std::string> case_ = sections_of_case("page/levels.txt");
  scratch_directory directory_;
  kv_design_pages_t pages_;
  std::string why_;
};

TEST_F(Pages, AreTheSheetsOrTheirUses) {
  make_design(directory_, case_.at("design"));
  EXPECT_EQ(pages_of("top", false),
            (lines_t{"top  above -1 below 1 below 2 : top", "Low /X1 above 0 below 2 : /X1  Low",
                     "low-2 /X1/X above 1 : /X1/X  low"}));
  EXPECT_EQ(pages_of("top", true),
            (lines_t{"top  above -1 below 1 below 3 : top", "X1 /X1 above 0 below 2 : /X1  Low",
                     "X1.X /X1/X above 1 : /X1/X  low", "X2 /X2 above 0 : /X2  low"}));
  // The names of flat nets, of those that the sheet has.
  std::string names;
  for (const int page : {0, 2})
    for (int id = 0; id < 100; ++id)
      if (const auto name = kv_labels_of(pages_, page).net_name(id); !name.empty())
        names.append(name).append(" ");
  EXPECT_EQ(names, "/N /B /B_1 /VDD ");
  const auto labels = kv_labels_of(pages_, 2);
  EXPECT_EQ(labels.above, 1);
  EXPECT_EQ(labels.below(1), -1);
  EXPECT_EQ(pages_of("top", false, {"CLASS=G", "PINS"}).size(), 3U);
  EXPECT_EQ(pages_.left_out.size(), 0U);
  fs::remove_all("low");
  EXPECT_EQ(pages_of("top", false).size(), 2U);
  EXPECT_TRUE(pages_of("none", false).empty());
  EXPECT_EQ(why_, "none: no sheet");
  fs::current_path("/");
  const std::string elsewhere = directory_.file("top").string();
  EXPECT_EQ(pages_of(elsewhere, false).size(), 1U);
  ASSERT_FALSE(pages_.left_out.empty());
  EXPECT_EQ(pages_.left_out.front(), "the sheets below: their paths begin in " +
                                         directory_.path().string() +
                                         ", which is the place to work in");
  for (const std::string name : {"...x y", "INDEX"}) {
    fs::current_path(directory_.path());
    fs::copy("top", name);
    EXPECT_EQ(pages_of(name, false)[0].substr(0, 6), name == "INDEX" ? "INDEX-" : "x_y  a") << name;
  }
  fs::current_path("top");
  EXPECT_TRUE(pages_of(".", false)[0].starts_with("sheet "));
}

TEST_F(Pages, HaveTheirDataForABrowser) {
  make_design(directory_, case_.at("design"));
  fs::remove_all("lost");
  pages_of("top", false);
  kv_page_extras_t extras{"f", {{"r", "/p", "why", "now"}}, {}};
  extras.values = {.file = "a.raw",
                   .places = {"0"},
                   .nets = {{"/N", {"1 V"}}},
                   .devices = {{"/R1", "i", {"2 A"}}}};
  EXPECT_EQ(kv_page_data(pages_, extras, why_), without_line_ends(case_.at("data")));
  EXPECT_EQ(why_, "");
}

TEST_F(Pages, OfADesignWithoutEndHaveNone) {
  make_design(directory_,
              "symbol a\n pin A 0,0 IN\nsheet a\n part X a 4,0\nsheet top\n part X a 4,0\n");
  pages_of("top", false);
  EXPECT_EQ(kv_page_data(pages_, {}, why_), "");
  EXPECT_EQ(why_, "/X: contains itself");
  EXPECT_EQ(pages_of("top", true), lines_t{});
  EXPECT_TRUE(why_.starts_with("top: cannot be expanded: Too many sheet levels ? : /X/X/")) << why_;
  // As deep as a run goes, and one deeper; the last one is on the top as well, else no one comes to
  // it.
  std::string deep;
  for (int i = kv_max_levels; i > 0; --i) {
    const std::string n = std::to_string(i);
    deep += "symbol c" + n + "\n pin A 0,0 IN\nsheet c" + n + "\n";
    if (i < kv_max_levels) deep += " part X c" + std::to_string(i + 1) + " 4,0\n";
  }
  make_design(directory_, deep + "sheet top\n part X c1 4,0\n part Y c28 8,0\n");
  pages_of("c1", false);
  EXPECT_NE(kv_page_data(pages_, {}, why_), "") << why_;
  pages_of("top", false);
  EXPECT_EQ(kv_page_data(pages_, {}, why_), "");
  EXPECT_EQ(why_, "top: more than 28 levels");
}

TEST_F(Pages, LeaveOutWhatIsNoSheet) {
  make_design(directory_, case_.at("design"));
  write_file("low/sheet.gx_1", read_file("low/sheet.gx_1").substr(0, 300));
  EXPECT_EQ(pages_of("top", false).size(), 2U);
  EXPECT_EQ(pages_.left_out, lines_t{"low/sheet.gx_1: object 6: the file ends early"});
  write_file("top/sheet.gx_1", "");
  EXPECT_EQ(pages_of("top", false), lines_t{});
  EXPECT_EQ(why_, "top/sheet.gx_1: the file ends early");
}

TEST(PageTexts, AreAscii) {
  kv_json_text json;
  json.open('[');
  json.add(std::string_view("a\"b\\\x1f\x7f\u00e9\u2126\U0001D11E\xff"));
  json.add(-5);
  json.open("n", '{');
  json.close('}');
  json.add_units(-150);
  json.close(']');
  json.add_raw("1");
  EXPECT_EQ(json.text,
            "[\"a\\\"b\\\\\\u001f\\u007f\\u00e9\\u2126\\ud834\\udd1e\\u00ff\",-5,\"n\":{},-1.5],1");
  // The data in base 64.
  const auto data = [](std::string_view bytes) {
    const auto page = kv_web_page("<t>", bytes, [](auto text) { return std::string(text); });
    EXPECT_NE(page.find("<title>&lt;t&gt;</title>"), page.npos);
    const auto begin = page.find("hidden>") + 7;
    return page.substr(begin, page.find("</div>", begin) - begin);
  };
  EXPECT_EQ(data(""), "");
  EXPECT_EQ(data("f") + data("fo") + data("foo") + data("fooba\xff"), "Zg==Zm8=Zm9vZm9vYmH/");
}

}  // namespace
