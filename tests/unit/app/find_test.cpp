// Finding a place of the design and going there.
#include <fcntl.h>
#include <unistd.h>

#include <set>

#include "app/find/aside.h"
#include "app/find/expanded.h"
#include "app/find/go_to.h"
#include "app/find/next_names.h"
#include "app/find/readings.h"
#include "expand/store.h"
#include "gx/db/place/geometry.h"
#include "gx/display/viewports.h"
#include "tests/support/counting_screen.h"
#include "tests/support/design_session.h"

namespace {

constexpr char hierarchy[] = R"(
symbol leaf
  pin A 0,0 IN
  prop CLASS=R
symbol block
  pin A 0,0 IN
symbol nosheet
  pin A 0,0 IN
sheet top
  part X1 block 5,5
  part X2 block 9,5
  part R1 leaf 15,5
  part N1 nosheet 19,5
  net A
    wire X1.A 5,8 9,8 X2.A
sheet block
  part Y1 deep 5,5
  part Y2 leaf 9,5
symbol deep
  pin A 0,0 IN
sheet deep
  part Z1 leaf 5,5
)";

std::string level_and_path() {
  return std::to_string(kv_pext.file_level_cur) + " " + std::string(gx_view(kv_pext.cur_sim_path));
}

TEST(GoTo, BackIsDrawnOnce) {
  design_session s(hierarchy);
  gx_vext.bitmap_size = gx_nominal_size;
  for (const auto& viewport : set_viewports()) gx_viewport_create(viewport.bounds, viewport.border);
  kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
  const gx_shown_t top = gx_viewport_shown(gx_vext.viewport_edit);
  EXPECT_EQ(kv_go_to("/X1/Y1", 0), "");
  const counting_screen screen;
  EXPECT_EQ(s.run("view last"), lines_t{" VIEw LASt "});
  EXPECT_EQ(screen.pictures, 1);
  EXPECT_EQ(level_and_path(), "1 ");
  EXPECT_EQ(gx_viewport_shown(gx_vext.viewport_edit), top);
}

TEST(GoTo, WalksUpAndDownSelectsAndSaysWhatIsMissing) {
  design_session s(hierarchy);
  const int net = s.net("A"), block = s.inst("X2");
  EXPECT_EQ(kv_go_to("/x1/Y1", 0), "");
  EXPECT_EQ(level_and_path(), "3 X1/Y1/");
  const int leaf = s.inst("Z1");
  ASSERT_NE(leaf, 0);
  EXPECT_EQ(kv_go_to("/", block), "");
  EXPECT_EQ(level_and_path(), "1 ");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), block));
  EXPECT_EQ(kv_go_to("", net), "");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), net));
  EXPECT_FALSE(gx_inq_object_selected(s.file(), block));

  EXPECT_EQ(kv_go_to("X2/Y1/", leaf), "");
  EXPECT_EQ(level_and_path(), "3 X2/Y1/");
  const int pin = s.pin(leaf, 1).pinpropfam;
  EXPECT_EQ(kv_go_to("/X2/Y1", pin), "");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), pin));
  EXPECT_FALSE(gx_inq_object_selected(s.file(), leaf));
  EXPECT_EQ(gx_vext.num_file_open, 3);

  // What cannot be reached leaves all as it was.
  EXPECT_EQ(kv_go_to("/X2/Y9", 0), "no such sheet : \"/X2/Y9\"");
  EXPECT_EQ(kv_go_to("/N1", 0), "no such sheet : \"/N1\"");
  for (const int id : {-1, 1, 30000}) {
    EXPECT_EQ(kv_go_to("/X1", id), "no such object : " + std::to_string(id));
  }
  EXPECT_EQ(level_and_path(), "3 X2/Y1/");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), pin));
}

// A sheet with a bus, used twice, and the run of it.
constexpr char registers[] = R"(
symbol leaf
  pin D 0,0 IN
  pin Q 2,0 OUT
  prop CLASS=R
symbol bit
  pin D 0,0 IN
  pin Q 4,0 OUT
symbol in
  pin P 0,0 IXO NET=D
  prop CLASS=PORTIN
symbol out
  pin P 0,0 IXO NET=Q
  prop CLASS=PORTOUT
sheet bit
  part P1 in 2,2
  part P2 out 20,2
  part MP1 leaf 8,2
  part MP2 leaf 14,2
  net
    wire P1.P MP1.D
  net MID
    wire MP1.Q MP2.D
  net
    wire MP2.Q P2.P
sheet top
  part XR bit 5,5
  part XS bit 15,5
  net D
    wire XR.D 2,5
  net LINK
    wire XR.Q XS.D
  net GROUND
    wire XS.Q 22,5
  net L%2FN%2520
    wire 2,20 22,20
)";

// A session with a design that may be expanded.
struct find_session {
  explicit find_session(bool is_expanded, std::string_view sheets = {},
                        std::string_view top = "top")
      : s(std::string(registers) + std::string(sheets), top) {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.designfile = ::open("/dev/null", O_RDWR);
    if (!is_expanded) return;
    for (const char* line :
         {"primitive class", "prop inst s class", "prop pin s pin", "prop net s net", "run"})
      s.run(line);
  }
  ~find_session() {
    ::close(kv_sext.designfile);
    kv_sext = kv_defref_exp_rec_t{};
  }
  find_session(const find_session&) = delete;
  find_session& operator=(const find_session&) = delete;
  design_session s;
};

// The marks of the sheets, from the top down: "N_id" of the level, with the name of its probe.
lines_t marks(const design_session& s) {
  lines_t lines;
  for (const auto& mark : gx_vext.highlights) {
    const bool is_in_view = mark.file_index == kv_pext.file_id_cur;
    const auto* name = is_in_view ? lb_find_prop_net(s.file(), mark.id, "NET") : nullptr;
    lines.push_back(std::to_string(mark.file_index) + " " +
                    (name != nullptr ? std::string(gx_view(name->nvalue)) : "-") + " " +
                    std::string(gx_view(mark.name)));
  }
  return lines;
}

TEST(Expanded, EveryBlockIsOnTheSheetAboveIt) {
  // Two levels, so that a block follows the inside of another one.
  const find_session deep(true,
                          "symbol two\n pin D 0,0 IN\nsheet two\n part A bit 4,4\n part B bit 4,8\n"
                          "sheet twice\n part X two 4,4\n part Y two 4,8\n part R leaf 4,12\n",
                          "twice");
  lines_t places;
  for (std::int32_t macro = 1; macro <= kv_sext.macros.count; ++macro) {
    const auto place = kv_place_of(kv_sext, kv_sext.origins, {kv_named::macro, macro});
    places.push_back(std::string(kv_text(kv_sext, kv_sext.macros[macro].sim_path)) + " on \"" +
                     std::string(kv_visit_path(kv_sext, kv_sext.origins, place.visit)) + "\"");
  }
  EXPECT_EQ(places, (lines_t{"/X on \"\"", "/X/A on \"/X\"", "/X/B on \"/X\"", "/Y on \"\"",
                             "/Y/A on \"/Y\"", "/Y/B on \"/Y\""}));
}

TEST(Expanded, ANetOfASheetIsAnotherOneInEachOfItsUses) {
  const find_session session(true);
  const auto expanded = kv_expanded();
  ASSERT_TRUE(expanded);
  const auto flat = [&](std::string_view path, int net_id) {
    const auto net = kv_flat_net_of(*expanded, kv_visit_at(*expanded, path), net_id);
    return std::string(expanded->netlist.path({kv_named::net, net}));
  };
  EXPECT_EQ(flat("", session.s.net("LINK")), "/LINK");
  ASSERT_EQ(kv_go_to("/XR", 0), "");
  const int mid = session.s.net("MID");
  std::set<std::string> in_r, in_s;
  for (const int net : lb_nets(session.s.file())) {
    in_r.insert(flat("xr", net));
    in_s.insert(flat("/XS", net));
  }
  EXPECT_EQ(flat("/XR", mid) + flat("/XS", mid), "/XR/MID/XS/MID");
  EXPECT_EQ(in_r, (std::set<std::string>{"/D", "/LINK", "/XR/MID"}));
  EXPECT_EQ(in_s, (std::set<std::string>{"/LINK", "/GROUND", "/XS/MID"}));
  EXPECT_EQ(kv_visit_at(*expanded, "/XQ"), -1);
}

TEST(Readings, AreTheKeysThatATypedPathMayMean) {
  const std::vector<kv_reference_t> references = {{"/XR/MP2", "Q7"}, {"/XS", "U3"}};
  const auto read = [&](std::string_view typed) {
    const auto readings = kv_readings_of(typed, "XU", references);
    std::string line(readings.match == kv_match::whole       ? ""
                     : readings.match == kv_match::beginning ? "* "
                                                             : "** ");
    for (const auto& key : readings.keys) line += key + " ";
    return line;
  };
  EXPECT_EQ(read("/a/b"), "/A/B /A%2FB ");
  EXPECT_EQ(read("a:b"), "/A/B /XA/B /UA/B /B ");
  EXPECT_EQ(read("ab.c"), "/AB/C /XAB/C /UAB/C ");
  EXPECT_EQ(read("a"), "/A ");
  EXPECT_EQ(read("'a'"), "/A ");
  EXPECT_EQ(read("'a"), "/'A /%27A ");
  EXPECT_EQ(read("0"), "/0 /GROUND ");
  EXPECT_EQ(read("/a//"), "/A ");
  EXPECT_EQ(read("/"), "/ ");
  EXPECT_EQ(read("d[12]"), "/D[12] /D_12 ");
  EXPECT_EQ(read("d[]"), "/D[] ");
  EXPECT_EQ(read("d[1"), "/D[1 ");
  EXPECT_EQ(read("u3.1"), "/U3/1 /XU3/1 /UU3/1 /XS/1 ");
  EXPECT_EQ(read("/q7"), "/Q7 /XR/MP2 ");
  EXPECT_EQ(read("/q7*"), "* /Q7 ");
  EXPECT_EQ(read("*ab*"), "** AB ");
  EXPECT_EQ(read("**"), "* /* ");
}

TEST(Aside, ADesignIsExpandedBesideTheSession) {
  std::string fault;
  {
    const find_session session(false);
    EXPECT_FALSE(kv_expanded());
    const auto aside = kv_expand_aside(fault);
    ASSERT_NE(aside, nullptr) << fault;
    const auto expanded = aside->expanded();
    EXPECT_EQ(expanded.netlist.count(kv_named::inst), 4);
    const auto kept = [](const auto& list) {
      return std::to_string(list.count) + std::string(gx_view(list.entry[0].name)) + " ";
    };
    EXPECT_EQ(kept(aside->setup.property_instance) + kept(aside->setup.property_pin) +
                  kept(aside->setup.property_net) + kept(aside->setup.primitive),
              "1INST 1PIN 1NET 1CLASS ");
    EXPECT_EQ(kv_sext.primitive.count + kv_sext.insts.count, 0);
    EXPECT_FALSE(kv_expanded());
  }
  const find_session endless(false,
                             "symbol a\n pin D 0,0 IN\nsheet a\n part X a 4,4\n"
                             "sheet loop\n part X a 4,4\n",
                             "loop");
  EXPECT_EQ(kv_expand_aside(fault), nullptr);
  EXPECT_NE(fault, "");
}

TEST(NextNames, BeginAsTheTypedOne) {
  const find_session session(false);
  const auto next = [](std::string_view typed) {
    std::string line;
    for (const auto& [path, goes_on] : kv_next_names(typed)) line += path + (goes_on ? "+ " : " ");
    return line;
  };
  EXPECT_EQ(next("x"), "XR/+ XS/+ ");
  EXPECT_EQ(next("/"), "/XR/+ /XS/+ /D /LINK /GROUND /L%2FN%2520 ");
  EXPECT_EQ(next("/l"), "/LINK /L%2FN%2520 ");
  EXPECT_EQ(next("xr.m"), "xr.MP1 xr.MP2 xr.MID ");
  EXPECT_EQ(next("XS:mp1/"), "XS:mp1/D XS:mp1/Q ");
  EXPECT_EQ(next("XS/MP1/q"), "XS/MP1/Q ");
  EXPECT_EQ(next("XS/MP1/X") + next("XQ/") + next("XQ/M/"), "");
}

TEST(Expanded, AHighlightNamesANetOnceOnASheet) {
  find_session split(true,
                     "sheet split\n part R leaf 4,4\n"
                     " net K\n  wire R.Q 10,4\n"
                     " net K\n  wire 20,4 30,4\n",
                     "split");
  EXPECT_EQ(split.s.run("highlight net /K"), lines_t{" HIGhlight NET /K "});
  EXPECT_EQ(marks(split.s), (lines_t{"1 K /K", "1 K "}));
  split.s.run("highlight off");
}

TEST(Expanded, ANetOfTwoUsesIsMarkedOnceOnTheirSheet) {
  find_session both(true, "sheet both\n part A bit 4,4\n part B bit 4,12\n net K\n  wire A.D B.D\n",
                    "both");
  both.s.run("view sheet bit; highlight net /K");
  EXPECT_EQ(marks(both.s), (lines_t{"1 K /K", "2 - /K"}));
  both.s.run("highlight off");
}

TEST(Expanded, AHighlightFollowsTheViewAndTheRuns) {
  find_session session(true);
  auto& s = session.s;
  EXPECT_EQ(s.run("highlight net /xr/q"), lines_t{" HIGhlight NET /LINK "});
  EXPECT_EQ(marks(s), lines_t{"1 LINK /LINK"});
  s.run("view down XR");
  EXPECT_EQ(marks(s), (lines_t{"1 - /LINK", "2 - /LINK"}));
  gx_set_object_selected(s.file(), s.net("MID"), true);
  EXPECT_EQ(s.run("hig net"), lines_t{" HIGhlight NET /XR/MID "});
  EXPECT_EQ(marks(s).size(), 3U);
  s.run("find path /XS/MP1");  // the same sheet elsewhere: only what comes there is marked
  EXPECT_EQ(marks(s), (lines_t{"1 - /LINK", "2 - /LINK"}));
  s.run("run");
  EXPECT_EQ(marks(s).size(), 2U);
  s.run("view up");
  // A sheet beside the levels stands for all its uses: the net goes out of one, into the other.
  s.run("view sheet bit");
  EXPECT_EQ(marks(s), (lines_t{"1 LINK /LINK", "3 - ", "3 - /XR/MID", "3 - /LINK"}));
  s.run("view sheet top");  // into the same slot
  EXPECT_EQ(marks(s), (lines_t{"1 LINK /LINK", "3 - /LINK"}));
  EXPECT_EQ(s.run("highlight off"), lines_t{" HIGhlight OFF "});
  s.run("view down XR");
  EXPECT_EQ(marks(s), lines_t{});
}

}  // namespace
