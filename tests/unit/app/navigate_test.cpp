// Walking the hierarchy and choosing what the two viewports show.
#include "app/language/completion.h"
#include "app/sheet/walk.h"
#include "gx/db/file/record_codec.h"
#include "gx/display/viewports.h"
#include "gx/vext.h"
#include "tests/support/design_session.h"

namespace {

constexpr char walked[] = R"(
symbol leaf
  pin A 0,0 IN
symbol block
  pin A 0,0 IN
symbol lost
  pin A 0,0 IN
sheet top
  part X1 block 5,5
  part X2 block 9,5
  part X3 lost 15,5
  part X3 lost 19,5
sheet block
  part Y1 leaf 5,5
  part Y2 nosheet 9,5
symbol nosheet
  pin A 0,0 IN
sheet leaf
  part Z1 lost 5,5
)";

// Where the session stands: level, deepest level, path.
std::string levels_and_path() {
  return std::to_string(kv_pext.file_level_cur) + "/" + std::to_string(kv_pext.file_level_max) +
         " " + std::string(gx_view(kv_pext.cur_sim_path));
}

TEST(Navigate, DownAndUpByNameAndBySelection) {
  design_session s(walked);
  EXPECT_EQ(s.run("view down x1"), lines_t{" VIEw DOWn  X1"});
  EXPECT_EQ(levels_and_path(), "2/2 X1/");
  EXPECT_EQ(s.run("VIEW DOWN Y1"), lines_t{" VIEw DOWn  Y1"});
  EXPECT_EQ(levels_and_path(), "3/3 X1/Y1/");
  EXPECT_EQ(s.run("view up"), lines_t{" VIEw UP  "});
  EXPECT_EQ(levels_and_path(), "2/3 X1/");
  EXPECT_EQ(s.run("view up"), lines_t{" VIEw UP  "});
  EXPECT_EQ(levels_and_path(), "1/3 ");
  EXPECT_EQ(s.run("view up"),
            (lines_t{"# VIEw UP ", "# !! Error : impossible to VIEw UP ( already at TOP ) "}));
  EXPECT_EQ(gx_vext.num_file_open, 3);

  EXPECT_EQ(s.run("view down"),
            (lines_t{"# VIEw DOWn ", "# !! Error : No Instance Found selected "}));
  gx_set_object_selected(s.file(), s.inst("X2"), true);
  EXPECT_EQ(s.run("view down"), lines_t{" VIEw DOWn  X2"});
  EXPECT_EQ(levels_and_path(), "2/3 X2/");
  EXPECT_EQ(gx_vext.num_file_open, 3);  // the slots are used again
  s.run("view up");
  EXPECT_EQ(s.selected(), std::vector{s.inst("X2")});  // selections survive the walk
  gx_set_object_selected(s.file(), s.inst("X1"), true);
  EXPECT_EQ(s.run("view down"),
            (lines_t{"# VIEw DOWn ", "# !! Error : More Than 1 Instance Found selected "}));
}

TEST(Navigate, RefusalsLeaveAllAsItWas) {
  design_session s(walked);
  const lines_t no_instance = {"# VIEw DOWn \"X9\"   ", "# !! Error : No Instance  with \"INST\" "};
  EXPECT_EQ(s.run("view down X9"), no_instance);
  EXPECT_EQ(s.run("view down X3"),
            (lines_t{"# VIEw DOWn \"X3\"   ",
                     "# !! Error : More Than 1 Instance Found selected with \"INST\" "}));
  EXPECT_EQ(s.run("view down a b"),
            (lines_t{"# VIEw DOWn \"a\"   \"b\"   ", "# !! Error : parameter number invalid ? "}));
  EXPECT_EQ(s.run("view all aside"),
            (lines_t{"# VIEw ALL aside ",
                     "# !! Error :  3 rd parameter incorrect (should be Edit/Context)  ? "}));
  s.run("view down X1");
  const auto files = gx_vext.num_file_open;
  EXPECT_EQ(s.run("view down Y2"),
            (lines_t{"# VIEw DOWn \"Y2\"   ",
                     "# !! Error : Sheet not found or Invalid ? : ", "# !! : \"nosheet\" "}));
  EXPECT_EQ(levels_and_path(), "2/2 X1/");
  EXPECT_EQ(gx_vext.num_file_open, files);
  // Once the level has a file, it is told by the reopening.
  s.run("view down Y1");
  EXPECT_EQ(s.run("view down Z1"),
            (lines_t{"# VIEw DOWn \"Z1\"   ",
                     "# !! Error : Sheet not found or Invalid ? : ", "# !! : \"lost\" "}));
  s.run("view up");
  EXPECT_EQ(
      s.run("view down Y2"),
      (lines_t{"# VIEw DOWn \"Y2\"   ", "# !! Error : Sheet not found ? : ", "# !! \"nosheet\" "}));
  // A damaged sheet and one that holds nothing.
  s.directory().write("nosheet/sheet.gx", "_1\n");
  s.directory().write("nosheet/sheet.gx_1", "damaged");
  auto lines = s.run("view down Y2");
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_NE(lines[3].find("nosheet/sheet.gx_1"), std::string::npos) << lines[3];
  EXPECT_EQ(levels_and_path(), "2/3 X1/");
  s.directory().write("nosheet/sheet.gx_1", gx_encode_file(gx_file_gene_recf_t{}));
  EXPECT_EQ(s.run("view down Y2"),
            (lines_t{"# VIEw DOWn  Y2 ", "# !! Error : No Sheet Available ? : "}));
  EXPECT_EQ(levels_and_path(), "2/3 X1/");
  EXPECT_EQ(s.run("view down Y1"), lines_t{" VIEw DOWn  Y1"});
}

TEST(Navigate, DownThroughAnInstanceWithoutInstAndASymbolWithoutVersion) {
  design_session s("symbol leaf\n pin A 0,0 IN\nsheet leaf\nsheet top\n part X1 leaf 5,5\n");
  const int inst = s.inst("X1");
  const std::string name = "I_" + std::to_string(inst);
  auto& symbol = gx_symbol_info_ptr(s.file(), gx_instance_info_ptr(s.file(), inst).symbol);
  const auto path = symbol.path;
  symbol.path = gx_string("leaf/symbol.gx");
  EXPECT_EQ(s.run("view down x1"),
            (lines_t{"# VIEw DOWn \"x1\"   ",
                     "# !! Error : Symbol path without version ? : ", "# !! \"leaf/symbol.gx\" "}));
  symbol.path = path;
  const auto* property = lb_find_prop_inst(s.file(), inst, "INST");
  gx_set_object_deleted(s.file(), property->gene.object_id, true);
  gx_set_object_selected(s.file(), inst, true);
  EXPECT_EQ(s.run("view down"), lines_t{" VIEw DOWn  " + name});
  EXPECT_EQ(levels_and_path(), "2/2 " + name + "/");
}

TEST(Navigate, TwentyEightLevels) {
  design_session s("symbol top\n pin A 0,0 IN\nsheet top\n part X top 5,5\n");
  for (int level = 2; level <= 28; ++level) {
    ASSERT_EQ(s.run("view down X"), lines_t{" VIEw DOWn  X"}) << level;
  }
  EXPECT_EQ(s.run("view down X"),
            (lines_t{"# VIEw DOWn \"X\"   ", "# !! Error : Too many sheet levels ? : "}));
  EXPECT_EQ(kv_pext.file_level_cur, 28);
  for (int level = 28; level > 1; --level) s.run("view up");
  EXPECT_EQ(levels_and_path(), "1/28 ");
}

TEST(Navigate, ContextShowsSheetsSymbolsAndTheCurrentSheetInTurn) {
  design_session s(walked);
  const auto top = kv_pext.file_id_cur;
  EXPECT_EQ(s.run("pop"), (lines_t{"# POP ", "# !! Error : NO window to pop ? "}));
  EXPECT_EQ(s.run("view sheet block"), lines_t{" VIEw SHEet block "});
  const auto sheet = kv_pext.file_id_context;
  EXPECT_NE(sheet, top);
  EXPECT_EQ(s.run("view down X1"),
            (lines_t{"# VIEw DOWn \"X1\"   ",
                     "# !! Error : No valid design Sheet to view down in Context "}));
  EXPECT_EQ(s.run("view up"),
            (lines_t{"# VIEw UP ", "# !! Error : No valid design Sheet to view up in Context "}));
  EXPECT_EQ(s.run("act symbol leaf"), lines_t{" ACTivate SYMbol leaf "});
  const auto symbol = kv_pext.file_id_context;
  EXPECT_EQ(kv_pext.file_id_act, symbol);
  EXPECT_EQ(gx_view(kv_pext.act_file_path), "leaf");
  EXPECT_EQ(
      s.run("select object context I_1"),
      (lines_t{"# SELect OBJect context I_1 ", "# !! You Cannot SELECT the activate symbol ?  "}));
  std::vector<int> shown;
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(s.run("pop"), lines_t{" POP "});
    shown.push_back(kv_pext.file_id_context);
  }
  EXPECT_EQ(shown, (std::vector<int>{sheet, top, symbol, sheet}));

  EXPECT_EQ(s.run("view sheet none"),
            (lines_t{"# VIEw SHEet none ", "# !! Error : Sheet not found ? : \"none\" "}));
  EXPECT_FALSE(kv_pext.view_sheet_done);
  EXPECT_EQ(s.run("act symbol none"),
            (lines_t{"# ACTivate SYMbol none ", "# !! Error : Component not found ? : \"none\" "}));
  EXPECT_FALSE(kv_pext.act_symb_done);
  EXPECT_EQ(s.run("pop"), (lines_t{"# POP ", "# !! Error : NO window to pop ? "}));
}

TEST(Navigate, AViewShowsTheFileThatItHas) {
  design_session s(walked);
  EXPECT_EQ(s.run("view all"), (lines_t{"# VIEw ALL ", "# !! Error : Viewport Invalid ? "}));
  gx_vext.bitmap_size = gx_nominal_size;
  for (const auto& viewport : set_viewports()) gx_viewport_create(viewport.bounds, viewport.border);
  const auto shown = [](gx_vpid_t vpid) { return gx_viewport_rec(vpid).file_index; };
  s.run("view down X1");
  s.run("view sheet top");
  ASSERT_NE(kv_pext.file_id_cur, kv_pext.file_id_context);
  for (const char* command : {"view all", "view area edit 0.1 0.1 0.5 0.5"}) {
    gx_viewport_rec(gx_vext.viewport_edit).file_index = 0;
    EXPECT_FALSE(s.run(command)[0].starts_with('#')) << command;
    EXPECT_EQ(shown(gx_vext.viewport_edit), kv_pext.file_id_cur) << command;
  }
  s.run("act symbol leaf");
  EXPECT_EQ(s.run("view all context"), lines_t{" VIEw ALL "});
  EXPECT_EQ(shown(gx_vext.viewport_context), kv_pext.file_id_act);
  // Other words name no view, and without a sheet there is none.
  const char* const commands[] = {"view all list", "view area list 1 1 2 2", "status property list",
                                  "show link list"};
  for (const char* command : commands) {
    const auto lines = s.run(command);
    EXPECT_TRUE(lines.size() == 2 && lines[1].starts_with("# !! Error")) << command;
  }
  kv_leave_slot(kv_pext.file_id_context);
  EXPECT_EQ(kv_pext.file_id_context, kv_pext.file_id_cur);
  kv_pext.file_id_context = kv_pext.file_id_act;
  kv_leave_slot(0);
  kv_leave_slot(kv_pext.file_id_cur);
  EXPECT_EQ(kv_pext.file_id_context, kv_pext.file_id_act);
}

TEST(Navigate, WithoutASheetThereIsNoView) {
  session_capture empty;
  for (const char* command :
       {"view all", "view area edit 1 1 2 2", "status property", "show link", "list object"}) {
    const auto lines = empty.run(command);
    EXPECT_TRUE(lines.size() == 2 && lines[1].starts_with("# !! Error")) << command;
  }
}

TEST(Navigate, QuotedFileNamesHoldBlanksCommasAndSemicolons) {
  design_session s(walked);
  std::filesystem::rename(s.directory().file("leaf"), s.directory().file("a b,c;d"));
  s.directory().write("a b,c;d/do", "HARDCOPY\n");
  EXPECT_EQ(s.run("view sheet 'a b,c;d'"), lines_t{" VIEw SHEet 'a b,c;d' "});
  EXPECT_EQ(s.run("act symbol \"a b,c;d\""), lines_t{" ACTivate SYMbol \"a b,c;d\" "});
  EXPECT_EQ(s.run("do 'a b,c;d/do'"),
            (lines_t{"# DO 'a b,c;d/do' ", " HARDcopy ", "# End of DO "}));
  EXPECT_EQ(s.run("show file 'a b,c;d/do'").front(), "# \"HARDCOPY\" ");
  EXPECT_EQ(s.run("$pmenu 'a b,c;d/menu';$rmenu 'a b,c;d/menu'"), lines_t{});
  EXPECT_TRUE(std::filesystem::exists("a b,c;d/menu"));
  std::filesystem::create_directory("x");
  std::filesystem::rename("a b,c;d", "x/a b,c;d");
  EXPECT_EQ(s.run("search 'x/a b,c;d'"), lines_t{" SEArch 'x/a b,c;d' "});
  EXPECT_EQ(s.run("view sheet '.'"), lines_t{" VIEw SHEet '.' "});
  EXPECT_EQ(s.run("do 'no;ne'").back(), "# !!! Error : file not found : \"no;ne\" ");
}

TEST(Navigate, SearchPathStandsBeforeTheNames) {
  design_session s(walked);
  const auto here = s.directory().path().string();
  EXPECT_EQ(s.run("search " + here), lines_t{" SEArch " + here + " "});
  std::filesystem::current_path("/");
  EXPECT_EQ(s.run("view sheet leaf"), lines_t{" VIEw SHEet leaf "});
  EXPECT_EQ(s.run("act symbol leaf"), lines_t{" ACTivate SYMbol leaf "});
  EXPECT_EQ(gx_view(kv_pext.act_file_path), here + "/leaf");
  EXPECT_EQ(s.run("search /"), lines_t{" SEArch / "});
  EXPECT_FALSE(kv_pext.search_done);
  EXPECT_EQ(s.run("view sheet leaf").front(), "# VIEw SHEet leaf ");
}

TEST(Navigate, ALineIsCompletedByThePresentSettings) {
  design_session s(walked);
  const auto completed = [](const char* typed) {
    gx_vext.str_cmd = gx_string("-");
    kv_expand_cmd(gx_string(typed));
    return std::string(gx_view(gx_vext.str_cmd));
  };
  s.run("base edit 1 0.5;grid step 0.2;grid off");
  EXPECT_EQ(completed("grid"), " GRId ON ") << "on the primary sheet";
  s.run("view down x1;grid step 0.1;grid off");
  const std::pair<const char*, const char*> cases[] = {
      {"base", " BASEpoint Edit 1.00 0.50 "},
      {"baseline 1", " BASEpoint Edit 1.00 0.50 "},
      {"temp pa", " TEMPlate PAge 3.00 2.00 "},
      {"TEMPLATE PAGE 1", " TEMPlate PAge 3.00 2.00 "},
      {"grid st", " GRId STep 0.10 "},
      {"grid st x", " GRId STep 0.10 "},
      {"grid", " GRId OFF "},
      {"gri # st", " GRId OFF "},
      {"grid on", "-"},
      {"temp", "-"},
      {"bas", "-"},
      {"temp x", "-"},
      {"# grid", "-"}};
  for (const auto& [typed, line] : cases) EXPECT_EQ(completed(typed), line) << typed;
  s.run("grid on");
  EXPECT_EQ(completed("grid"), " GRId ON ");
  completed(" nosuch  x ");
  EXPECT_EQ(s.run("har"), (lines_t{"#  !! Unknown Command or not implemented for expand  ?? ",
                                   "# cmd :  \" nosuch  x \"", " HARDcopy "}));
  kv_pext.file_id_cur = 0;
  EXPECT_EQ(completed("grid"), " GRId ON ");
  EXPECT_EQ(completed("grid st"), "-");
}

TEST(Navigate, DrawingAids) {
  design_session s(walked);
  struct {
    std::string_view command;
    lines_t lines;
  } cases[] = {
      {"grid on", {" GRID ON "}},
      {"grid off", {" GRID OFF "}},
      {"grid or", {"# GRID or ", "# !! Error : 2nd parameter invalid ? "}},
      {"grid step 0.10", {" GRID STEp 0.10 "}},
      {"grid step 0.01",
       {"# ! Grid step : Too Small (change to minimum step) ? ", " GRID STEp 0.05 "}},
      {"grid step 0.x", {"# GRID STEp 0.x ", "# ! Grid step INVALID ? "}},
      {"snap on", {" SNAp ON "}},
      {"snap offx", {" SNAp OFF "}},
      {"snap o", {"# SNAp o ", "# !! Error :  2nd parameter incorrect ? "}},
      {"basepoint edit 0.12 0.13", {" BASEpoint  Edit 0.10 0.15 "}},
      {"basepoint context 1 1", {" BASEpoint  Context 1.00 1.00 "}},
      {"basepoint list 1 1",
       {"# BASEpoint list 1 1 ",
        "# !! Error : Invalid Viewport name ( should be Edit/Context) ? "}},
      {"basepoint edit 0 1",
       {"# BASEpoint edit 0 1 ", "# !! Error : Invalid point (outside of page ...)  ? "}},
  };
  for (const auto& c : cases) EXPECT_EQ(s.run(c.command), c.lines) << c.command;
  EXPECT_EQ(gx_vext.base_point, (gx_pointreal_t{100000, 100000}));
  gx_vext.obj_pos = {-1, -1};
  EXPECT_EQ(s.run("base"), (lines_t{"# BASEpoint ", "# !! Error :  cursor  outside of page ? "}));
  gx_vext.viewport_id = 3;
  EXPECT_EQ(s.run("base"), (lines_t{"# BASEpoint ", "# !! Error :  Invalid window ? "}));
  EXPECT_EQ(gx_vext.base_point, (gx_pointreal_t{100000, 100000}));
  gx_vext.obj_pos = {12000, 13000};
  gx_vext.viewport_id = 4;
  EXPECT_EQ(s.run("base"), lines_t{" BASEpoint  Context 0.10 0.15 "});

  kv_pext.file_id_cur = 0;
  for (const auto* command : {"grid on", "grid step 1", "snap on", "basepoint edit 1 1"}) {
    EXPECT_EQ(s.run(command).back(), "# !! Error :  No sheet available in window ? ") << command;
  }
}

}  // namespace
