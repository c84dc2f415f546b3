// Selecting by area, handle and name; marking; and what the status commands tell of the selection.
#include "app/sheet/select_area.h"
#include "expand/run/record_status.h"
#include "gx/db/undo.h"
#include "gx/edit/undo_replay.h"
#include "gx/vext.h"
#include "tests/support/design_session.h"

namespace {

// Two resistors side by side, their nets above and below, and a frame at the right.
constexpr char sheet[] = R"(
symbol res
  rect -1,0 1,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  prop CLASS=R
  show INST 2,2
sheet top
  part R1 res 5,5
  part R2 res 15,5
  net A at 8,4.5
    wire R1.1 5,4 15,4 R2.1
  net B
    wire R1.2 R2.2
  frame for3
    rect 25,2 30,12
)";

struct selecting : ::testing::Test {
  selecting() : s(sheet), r1(s.inst("R1")), r2(s.inst("R2")), a(s.net("A")), b(s.net("B")) {}
  int frame() const { return lb_inq_first_frame_id(s.file()).member; }
  bool is(int id) const { return gx_inq_object_selected(s.file(), id); }
  // The selected ones of R1, R2, A, B and the frame, in letters.
  std::string shown() const {
    std::string text;
    for (const auto& [id, letter] :
         {std::pair{r1, '1'}, {r2, '2'}, {a, 'A'}, {b, 'B'}, {frame(), 'F'}}) {
      if (is(id)) text += letter;
    }
    return text;
  }
  design_session s;
  int r1, r2, a, b;
};

TEST_F(selecting, AreaKinds) {
  struct {
    std::string_view kind, corners, taken;
  } cases[] = {
      {"all", "0.1 0.1 1.9 1.0", "12ABF"},
      {"inst", "0.1 0.1 1.9 1.0", "12"},
      {"net", "0.1 0.1 1.9 1.0", "AB"},
      {"frame", "0.1 0.1 1.9 1.0", "F"},
      {"FIRST", "0.1 0.1 1.9 1.0", "1"},
      {"first", "1.24 0.1 1.9 1.0", "F"},
      {"al", "0.1 0.1 0.4 0.3", "1A"},
      {"net", "0.45 0.15 0.5 0.22", "A"},
      {"inst", "0.70 0.3 0.74 0.4", "2"},
      {"net", "0.3 0.23 0.7 0.42", ""},  // between the two wires of the loop
      {"vertex", "0.1 0.1 1.9 1.0", ""},
      {"prop", "0.1 0.1 1.9 1.0", ""},
  };
  for (const auto& c : cases) {
    s.run("unselect all");
    const auto words = std::string(c.kind) + " edit " + std::string(c.corners) + " ";
    const auto lines = s.run("sel area " + words);
    EXPECT_EQ(shown(), c.taken) << words;
    if (s.selected().empty()) {
      EXPECT_EQ(lines, (lines_t{"# SELect AREa " + words, "# !! Warning : Nothing Selected  ? "}));
    } else {
      EXPECT_EQ(lines, lines_t{" SELect AREa  Edit " + words});
    }
  }
}

TEST_F(selecting, VerticesPropertiesAndPins) {
  s.run("sel are ver edit 0.2 0.15 0.3 0.22");
  ASSERT_EQ(s.selected().size(), 1U);
  EXPECT_EQ(gx_object_id_ptr(s.file(), s.selected()[0]).object_type, gx_type::vertex_2d);
  EXPECT_EQ(gx_vext.base_point, (gx_pointreal_t{25000, 20000}));

  s.run("uns all");
  s.run("sel are prop edit 0.3 0.3 0.5 0.4");  // R1's name
  ASSERT_EQ(s.selected().size(), 1U);
  const int name = s.selected()[0];
  EXPECT_EQ(gx_view(gx_property_info_ptr(s.file(), name).nvalue), "R1");
  EXPECT_EQ(s.run("change property switches novisible"),
            lines_t{" CHAnge PROperty SWItches  Novisible "});
  EXPECT_TRUE(gx_inq_object_unvisible(s.file(), name));
  s.run("uns all");
  EXPECT_EQ(s.run("sel are prop edit 0.3 0.3 0.5 0.4").back(),
            "# !! Warning : Nothing Selected  ? ");  // hidden ones are not taken

  s.run("sel are inst edit 0.22 0.22 0.28 0.28");
  EXPECT_TRUE(is(s.pin(r1, 1).pinpropfam));
  EXPECT_FALSE(is(s.pin(r1, 2).pinpropfam));
  EXPECT_EQ(gx_vext.base_point, (gx_pointreal_t{25000, 25000}));
}

TEST_F(selecting, UnselectMirrorsSelect) {
  s.run("sel area all edit 0.1 0.1 1.9 1.0");
  EXPECT_EQ(s.run("unselect area net edit 0.3 0.15 0.5 0.22"),
            lines_t{" UNSelect AREa  Edit net edit 0.3 0.15 0.5 0.22 "});
  EXPECT_EQ(shown(), "12BF");
  EXPECT_EQ(s.run("unselect area net edit 0.3 0.15 0.5 0.22"),
            (lines_t{"# UNSelect AREa net edit 0.3 0.15 0.5 0.22 ",
                     "# !! Warning : Nothing UNSELected  ? "}));
  s.run("unselect area first edit 0.1 0.1 1.9 1.0");
  EXPECT_EQ(shown(), "2BF");
  EXPECT_EQ(s.run("unselect all context"), lines_t{" UNSelect ALL "});
  EXPECT_TRUE(s.selected().empty());
  EXPECT_EQ(s.run("unselect area x"),
            (lines_t{"# UNSELect AREa x ", "# !! Error :  3 rd parameter incorrect ? "}));
}

TEST_F(selecting, RefusalsOfAreas) {
  struct {
    std::string_view command;
    std::string_view error;
  } cases[] = {
      {"sel area", "# !! Error : parameter number invalid ? "},
      {"sel area all edit 1 1", "# !! Error : parameter number invalid ? "},
      {"sel area a", "# !! Error :  3 rd parameter incorrect ? "},
      {"sel area all list 1 1 2 2",
       "# !! Error : Invalid Viewport name ( should be Edit/Context) ? "},
      {"sel area all edit 0 1 2 2", "# !! Error : Invalid point (outside of page ...)  ? "},
      {"uns all x", "# !! Error :  3 rd parameter incorrect (should be Edit/Context)  ? "},
      {"uns all edit x", "# !! Error : parameter number invalid ? "},
  };
  for (const auto& c : cases) EXPECT_EQ(s.run(c.command).back(), c.error) << c.command;
  gx_vext.viewport_id = 3;
  EXPECT_EQ(s.run("sel area all").back(), "# !! Error : Viewport Invalid ? ");
  kv_pext.file_id_context = 0;
  gx_vext.viewport_id = 4;
  EXPECT_EQ(s.run("sel area all").back(), "# !! Error :  No sheet available in window ? ");
}

TEST_F(selecting, MarkedRectangleEndsAtTheObjectPosition) {
  EXPECT_EQ(s.run("mark rect edit 0.1 0.1"), lines_t{" MARK RECtangle Edit 0.10 0.10 "});
  EXPECT_TRUE(kv_pext.mark_rect_done);
  EXPECT_EQ(kv_pext.obj_ptr1, (gx_pointreal_t{10000, 10000}));
  EXPECT_EQ(s.run("mark edit 0.5 0.6"), lines_t{" MARK Edit 0.50 0.60 "});
  EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{50000, 60000}));
  EXPECT_EQ(s.run("select area all"), lines_t{" SELect AREa  Edit all "});
  EXPECT_FALSE(kv_pext.mark_rect_done);
  EXPECT_EQ(shown(), "1AB");
  gx_vext.obj_pos = {12400, 12600};
  gx_vext.viewport_id = 4;
  EXPECT_EQ(s.run("mark"), lines_t{" MARK Context 0.10 0.15 "});
  struct {
    std::string_view command;
    lines_t lines;
  } refused[] = {
      {"mark list 1 1",
       {"# MARK list 1 1 ", "# !! Error : Invalid Viewport name (should be Edit/Context) ? "}},
      {"mark edit 9 9",
       {"# MARK edit 9 9 ", "# !! Error : Invalid point (outside of page ...)  ? "}},
      {"mark rect edit 1",
       {"# MARK RECTangle edit 1 ", "# !! Error : parameter number invalid ? "}},
      {"mark edit 1 2 3 4", {"# MARK edit 1 2 3 4 ", "# !! Error : parameter number invalid ? "}},
  };
  s.run("mark rect context 0.1 0.1; mark context 0.5 0.6");
  EXPECT_EQ(s.run("unselect area all"), lines_t{" UNSelect AREa  Context all "});
  kv_pext.file_id_context = 0;
  for (const auto& c : refused) EXPECT_EQ(s.run(c.command), c.lines) << c.command;
  EXPECT_EQ(s.run("mark context 1 1").back(), "# !! Error :  No sheet available in window ? ");
}

TEST_F(selecting, ByHandle) {
  for (const auto& [letter, id] : {std::pair{"I_", r1}, {"N_", b}, {"F_", frame()}}) {
    const auto word = letter + std::to_string(id);
    EXPECT_EQ(s.run("sel obj edit " + word), lines_t{" SELect OBJect edit " + word + " "});
  }
  EXPECT_EQ(shown(), "1BF");
  const auto net = std::to_string(a);
  struct {
    std::string words;
    std::string_view error;
  } refused[] = {
      {"edit X_12", "# !! Error : 4th parameter incorrect (I_ , F_ or N_) ? "},
      {"list I_12", "# !! Error : 3rd parameter incorrect (should be Edit/Context) ? "},
      {"edit I_1x", "# !! Error : 4th parameter incorrect ? (invalid number)"},
      {"edit I_", "# !! Error : 4th parameter incorrect ? (invalid number)"},
      {"edit I_0", "# !! Error : 4th parameter incorrect ( handle Invalid) ? "},
      {"edit I_30000", "# !! Error : 4th parameter incorrect ( handle Invalid) ? "},
      {"edit I_" + net, "# !! Error : 4th parameter incorrect (type/handle Invalid) ? "},
      {"edit", "# !! Error : parameter number invalid ? "},
  };
  for (const auto& c : refused) {
    EXPECT_EQ(s.run("sel obj " + c.words),
              (lines_t{"# SELect OBJect " + c.words + " ", std::string(c.error)}));
  }
}

TEST_F(selecting, ByNameOfPinAndProperty) {
  EXPECT_EQ(s.run("sel pin edit R* 2"), lines_t{" SELect PIN edit R* 2 "});
  EXPECT_EQ(s.selected(), (std::vector<int>{s.pin(r1, 2).pinpropfam, s.pin(r2, 2).pinpropfam}));
  EXPECT_EQ(s.run("sel pin edit R 2"),
            (lines_t{"# SELect PIN edit R 2 ", "# !! Nothing Selected  ? "}));
  s.run("uns all");
  EXPECT_EQ(s.run("sel prop edit inst r2"), lines_t{" SELect PROperty edit inst r2 "});
  EXPECT_EQ(shown(), "2");
  EXPECT_TRUE(kv_pext.act_prop_exist);
  EXPECT_EQ(gx_view(kv_pext.act_prop_value), "R2");
  s.run("uns all");
  s.run("sel prop edit net");
  EXPECT_EQ(shown(), "AB");
  s.run("sel prop context frexp f*");
  EXPECT_EQ(shown(), "ABF");
  EXPECT_EQ(s.run("sel prop edit insts"),
            (lines_t{"# SELect PROperty edit insts ", "# !! Nothing Selected  ? "}));
  EXPECT_EQ(s.run("sel prop x insts").back(),
            "# !! Error :  3 rd parameter incorrect (should be Edit/Context)  ? ");
}

TEST_F(selecting, SmashTakesTheBodyWithItsProperties) {
  s.run("sel obj edit I_" + std::to_string(r1));
  EXPECT_EQ(s.selected(), std::vector{r1});
  EXPECT_EQ(s.run("smash on"), lines_t{" SMAsh ON "});
  s.run("sel obj edit I_" + std::to_string(r2));
  const int body = lb_inq_inst_child_id(s.file(), r2).bodpropfam;
  EXPECT_TRUE(is(body));
  for (const int property : lb_inst_properties(s.file(), r2)) EXPECT_TRUE(is(property));
  EXPECT_EQ(s.run("smash offx"), lines_t{" SMAsh OFF "});
  EXPECT_EQ(s.run("smash o"), (lines_t{"# SMASh o ", "# !! Error :  2nd parameter incorrect ? "}));
}

TEST_F(selecting, EachCommandIsOneUndoStep) {
  gx_undo_init(kv_pext.file_id_cur);
  s.run("sel area inst edit 0.1 0.1 1.9 1.0");
  const auto taken = s.selected();
  s.run("sel prop edit net");
  s.run("uns all");
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_EQ(s.selected(), taken);
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_TRUE(s.selected().empty());
}

TEST_F(selecting, StatusOfObjects) {
  const auto handle = [](int id, std::string_view type) {
    return "#  OBJect : Handle = " + std::to_string(id) + " ;  type = " + std::string(type) + " ";
  };
  EXPECT_EQ(s.run("status object"),
            (lines_t{"# STAtus OBJect ", "# !! Error : No Valid Object selected ? "}));
  const int symbol = gx_instance_info_ptr(s.file(), r1).symbol;
  s.run("sel obj edit I_" + std::to_string(r1));
  EXPECT_EQ(s.run("status object edit"),
            (lines_t{handle(r1, "INSTANCE "), "# path = \"res/symbol.gx_1\" ",
                     handle(symbol, "SYMBOL "), " STAtus OBJect  Edit "}));
  s.run("uns all");
  s.run("sel pin edit R2 1");
  s.run("sel obj edit F_" + std::to_string(frame()));
  s.run("sel obj edit N_" + std::to_string(a));
  const auto pin = s.pin(r2, 1);
  EXPECT_EQ(
      s.run("status object context"),
      (lines_t{handle(pin.pinpropfam, "PIN (of instance)"), handle(pin.pin, "PIN (of symbol)"),
               handle(a, "NET "), handle(frame(), "FRAME "), " STAtus OBJect  Context "}));
  // By id, with its owners.
  const int name = *lb_inst_properties(s.file(), r1).begin();
  EXPECT_EQ(
      s.run("status object edit " + std::to_string(name)),
      (lines_t{handle(name, "property_2d"), handle(r1, "instance"), " STAtus OBJect  Edit "}));
  EXPECT_EQ(s.run("status object edit x").back(),
            "# !! Error :  4 th  parameter incorrect ? \"x\" ");
  gx_set_object_deleted(s.file(), name, true);
  for (const int id : {0, 30000, name}) {
    EXPECT_EQ(s.run("status object edit " + std::to_string(id)).back(),
              "# !! Error :  4 th  parameter incorrect ( object handle Invalid ) ? ");
  }
}

TEST_F(selecting, StatusOfNets) {
  EXPECT_EQ(s.run("status net"), (lines_t{"# STAtus NET ", "# !! Error : No NET selected ? "}));
  const int segment = gx_inq_first_net_segment_id(s.file(), b);
  gx_set_object_selected(s.file(), segment, true);  // one segment stands for its net
  const auto number = [](int id) { return std::to_string(id); };
  EXPECT_EQ(s.run("status net edit"),
            (lines_t{"#  OBJect : Handle = " + number(b) + " ;  type = NET  ",
                     "# SEGMENT: " + number(segment) +
                         " ;  VERTEX1_P: " + number(s.pin(r1, 2).pinpropfam) +
                         " ;  VERTEX2_P: " + number(s.pin(r2, 2).pinpropfam) + " ; ",
                     " STAtus NET  Edit "}));
  s.run("uns all; sel obj edit N_" + number(a));
  const auto lines = s.run("status net");
  ASSERT_EQ(lines.size(), 5U);  // three segments
  EXPECT_NE(lines[2].find("VERTEX1  : "), std::string::npos) << lines[2];
  EXPECT_EQ(s.run("status net x").back(),
            "# !! Error :  3 rd parameter incorrect (should be Edit/Context)  ? ");
}

TEST_F(selecting, StatusOfProperties) {
  EXPECT_EQ(s.run("status property edit"),
            (lines_t{"# STAtus PROperty edit ", "# !! Warning : Nothing Valid Selected  ? "}));
  const auto number = [](int id) { return std::to_string(id); };
  s.run("sel obj edit I_" + number(r1) + "; sel pin edit R2 1; sel obj edit N_" + number(a));
  gx_property_info_ptr(s.file(), *lb_inst_properties(s.file(), r1).begin()).fixed = 1;
  const int symbol = gx_instance_info_ptr(s.file(), r1).symbol;
  const auto pin = number(s.pin(r2, 1).pin);
  const lines_t all = {"# I_" + number(r1) + "  I_BODY   Fixed   Visible \"INST\"  \"R1\" ",
                       "# S_" + number(symbol) + " S_BODY   Fixed NOVisible \"CLASS\"  \"R\" ",
                       "# I_" + number(r2) + " INSTANCE : \"R2\" ",
                       "# P_" + pin + " PIN   Fixed NOVisible \"PIN\"  \"1\" ",
                       "# P_" + pin + " PIN   Fixed NOVisible \"PINTYPE\"  \"IXO\" ",
                       "# N_" + number(a) + " NET : ",
                       "# N_" + number(a) + " NET NOFixed   Visible \"NET\"  \"A\" ",
                       " STAtus PROperty  Edit "};
  EXPECT_EQ(s.run("status property"), all);
  // After SMAsh fixed ones are told only when they are selected themselves.
  kv_pext.smash_done = true;
  EXPECT_EQ(s.run("status property"),
            (lines_t{"# Status of Fixed properties ONLY if selected after SMASH ", all[5], all[6],
                     all[7]}));
  s.run("sel obj edit I_" + number(r1));
  EXPECT_EQ(s.run("status property")[1], all[0]);
  gx_vext.viewport_id = 2;
  EXPECT_EQ(s.run("status property").back(), "# !! Error : Viewport Invalid ? (cursor position) ");
}

TEST_F(selecting, SwitchesAndLinksOfSelectedProperties) {
  const lines_t nothing = {"# CHAnge PROperty SWItches VISIBLE ",
                           "# !! Warning : Nothing Valid Selected  ? "};
  EXPECT_EQ(s.run("cha pro swi VISIBLE"), nothing);
  EXPECT_EQ(s.run("cha pro swi on").back(), "# !! Error : switches invalid : \"on\" ");
  EXPECT_EQ(s.run("show link"),
            (lines_t{"# SHOw LINk ", "# !! Warning : Nothing Valid Selected  ? "}));
  gx_undo_init(kv_pext.file_id_cur);
  s.run("sel prop edit NET");
  EXPECT_EQ(s.run("show link edit"), lines_t{" SHOw LINk  Edit "});
  s.run("cha pro swi n");
  EXPECT_EQ(s.run("show link").back(), "# !! Warning : Nothing Valid Selected  ? ");  // hidden
  const auto& net = *lb_find_prop_net(s.file(), a, "NET");
  EXPECT_EQ(net.visible, 0);
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_EQ(net.visible, 1);
  EXPECT_FALSE(gx_inq_object_unvisible(s.file(), net.gene.object_id));
}

}  // namespace
