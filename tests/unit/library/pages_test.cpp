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
#include "tests/support/make_design.h"

namespace {

namespace fs = std::filesystem;

// Two levels below the top, a bus, a global, a net of three ends, a part that is wide.
constexpr std::string_view described = R"(
symbol r
 line 0,1 0,3
 circle 1,2 0.5
 text T at 1,1
 show INST 2,2
 pin 1 0,0 IN
 pin 2 0,4 OUT
 prop CLASS=R
symbol p
 pin P 0,0 IXO
 prop CLASS=PORTIN
symbol g
 pin P 0,0 IXO
 prop CLASS=G
symbol low
 pin A 0,0 IN
sheet low
 port A p 0,0
 part R1 r 2,0
 global VDD g 8,4
 net A
  wire A R1.1
 net VDD
  wire 8,4 R1.2
symbol Low
 pin D 0,0 IN bits 0:1
sheet Low
 port D p 0,0 bits 0:1
 part X low 4,0
 bus D 0:1
  wire D X.A
  bit 1 X.A
symbol lost
 pin A 0,0 OUT bits 0:1
 prop CLASS=R
sheet top
 page 20,10
 line 1,1 3,1 style 2
 line 3,1 5,1 width 3
 line 5,1 5,2 style 2 width 3
 circle 15,5 2
 rect 6,6 8,8 filled
 text Note at 1,3 height 0.5 vertical
 part X1 Low 4,0
 part X2 low 8,0 NOTE=own
 part R1 r 12,0
 part L lost 16,2
 net N at 10,-1
  wire X2.A 10,0 R1.1
  wire 10,0 10,5
 bus B 0:3
  wire X1.D 4,5
)";

// What a browser gets of it, a part a line.
constexpr std::string_view browser_data =
    R"({"name":"top","cells":[{"name":"top","file":"top/sheet.gx_1","path":"","ends":0,"size":[1000,
500],
"paths":["s2","M50 50H150","w3","M150 50H250","s2 w3","M250 50V100","",
"M650 250A100 100 0 1 1 850 250A100 100 0 1 1 650 250","f","M300 300H400V400H300Z"],"texts":[50,
150,25,1,"Note"],
"groups":[0,-1,0,0,-1,1,-1,4,0,-1],"ports":[],"globals":[],"joins":[],
"nets":[[71,"N",0,["",[400,0,500,0,500,0,600,0,500,0,500,250]],[500,0,10,500,0,10,500,0,10],[500,
-50,25,0,"N"]],[79,"B",1,["w3",[200,0,200,250]],[],[]]],
"kinds":[["Low/symbol.gx_1",1,1,"",[]],
["low/symbol.gx_1",2,1,"",[]],
["r/symbol.gx_1",-1,1,"",["TEXT1","T","CLASS","R"]],
["lost/symbol.gx_1",-1,0,"its symbol does not exist: left out of the expansion",["CLASS","R"]]],
"insts":[[49,"X1",0,200,0,0,1,[],["INST","X1"],[1],[0,2,0],[0]],
[54,"X2",1,400,0,1,1,[],["INST","X2","NOTE","own"],[0],[],[0]],
[60,"R1",2,600,0,2,0,[100,100,25,0,"R1"],["INST","R1"],[0,-1],[],[]],
[66,"L",3,800,100,3,0,[],["INST","L"],[-1],[0,2,0],[]]]},
{"name":"Low","file":"Low/sheet.gx_1","path":"/X1","ends":0,"size":[3000,2000],"paths":[],
"texts":[],
"groups":[0,0,2,0,-1],"ports":["D[0:1]",0,0,1],"globals":[],"joins":[],
"nets":[[36,"D",0,["w3",[0,0,200,0]],[],[]]],
"kinds":[["low/symbol.gx_1",2,1,"",[]]],
"insts":[[31,"X",1,200,0,0,1,[],["INST","X"],[0],[1,1,0],[0]],
[26,"I_26",4,0,0,-1,2,[],[],[0]]]},
{"name":"low","file":"low/sheet.gx_1","path":"/X1/X","ends":0,"size":[3000,2000],"paths":[],
"texts":[],
"groups":[0,0,0,0,-1,1,-1,0,0,0],"ports":["A",0,0,0],"globals":[0,53,1,1,0],"joins":[],
"nets":[[58,"A",0,["",[0,0,100,0]],[],[]],
[62,"VDD",1,["",[400,200,100,200]],[],[]]],
"kinds":[["r/symbol.gx_1",-1,1,"",["TEXT1","T","CLASS","R"]]],
"insts":[[47,"R1",5,100,0,0,0,[100,100,25,0,"R1"],["INST","R1"],[0,1],[],[]],
[42,"I_42",4,0,0,-1,2,[],[],[0]],
[53,"I_53",4,400,200,-1,3,[],["GLOBAL","VDD"],[1]]]}],
"signs":[[[],[],[0,0,0,0],["D",1,0,0]],
[[],[],[0,0,0,0],["A",1,0,0]],
[["",
"M0 50V150M25 100A25 25 0 1 1 75 100A25 25 0 1 1 25 100M-10 200L0 210L10 200L0 190L-10 200"],[50,
50,25,0,"T"],[-10,0,75,210],["1",1,0,0,"2",2,0,200]],
[["","M-10 0L0 10L10 0L0 -10L-10 0"],[],[-10,-10,10,10],["A",2,0,0]],
[[],[],[0,0,0,0],[]],
[["","M0 50V150M25 100A25 25 0 1 1 75 100A25 25 0 1 1 25 100"],[50,50,25,0,"T"],[0,0,75,200],
["1",1,0,0,"2",2,0,200]]],
"globals":["VDD"],"findings":"f","waivers":["r","/p","why","now"],
"values":{"file":"a.raw","places":["0"],
"nets":["/N",["1 V"]],"devices":["/R1","i",["2 A"]]}}
)";

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

  scratch_directory directory_;
  kv_design_pages_t pages_;
  std::string why_;
};

TEST_F(Pages, AreTheSheetsOrTheirUses) {
  make_design(directory_, described);
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
  make_design(directory_, described);
  fs::remove_all("lost");
  pages_of("top", false);
  kv_page_extras_t extras{"f", {{"r", "/p", "why", "now"}}, {}};
  extras.values = {.file = "a.raw",
                   .places = {"0"},
                   .nets = {{"/N", {"1 V"}}},
                   .devices = {{"/R1", "i", {"2 A"}}}};
  EXPECT_EQ(kv_page_data(pages_, extras, why_), without_line_ends(browser_data));
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
  make_design(directory_, described);
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
