// What a run reports, and that it gets through designs that are not as they should be.
#include "expand/run/run.h"
#include "gx/db/file/record_codec.h"
#include "gx/vext.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

// A design whose files are changed before they are written, and what RUN answers then.
struct bad_design_t {
  const char* description;
  const char* sheets;
  void (*damage)(std::vector<gxm_file_t>& files);
  std::vector<std::string> answers;
  int errors, warnings;
};

constexpr char block[] =
    "symbol s\n pin A 0,0 IN\n"
    "sheet s\n port A p 0,0\n part R r 2,0\n net A\n  wire A R.1\n net Z\n  wire R.2 9,0\n"
    "sheet top\n part X s 2,0\n net T\n  wire X.A 0,0\n";
constexpr char one_part[] =
    "sheet top\n part R r 2,0\n net A\n  wire R.1 0,0\n net B\n  wire R.2 9,0\n";

const bad_design_t bad_designs[] = {
    {"port without a name",
     "sheet top\n port A p 0,0\n part R r 2,0\n net A\n  wire A R.1\n net Z\n  wire R.2 9,0\n",
     [](auto& files) { rename_property(file_of(files, "top", "sheet"), "NET", "NAT"); },
     {"# !! Error : PORT without property NET : I_"},
     1,
     0},
    {"two ports on one net",
     "symbol s\n pin A 0,0 IN\n pin B 0,4 IN\n"
     "sheet s\n port A p 0,0\n port B p 0,4\n net N\n  wire A B\n"
     "sheet top\n part X s 2,0\n net T\n  wire X.A 0,0\n net U\n  wire X.B 0,4\n",
     nullptr,
     {"# !! Error :2 differents ports connected on same equipot: N_"},
     1,
     0},
    {"two globals on one net",
     "sheet top\n global VDD g 0,0\n global GND g 0,4\n net N\n  wire 0,0 0,4\n",
     nullptr,
     {"# !! Error :2 differents globals connected on same equipot: N_"},
     1,
     0},
    {"bus pin used for a global",
     "sheet top\n global VDD g 0,0\n bus D 0:3\n  wire 0,0 9,0\n",
     [](auto& files) {
       change_each<gx_object_pinpropfam_rec_t>(file_of(files, "top", "sheet"),
                                               [](auto& pin) { pin.pin_end = 3; });
     },
     {"# !! Error : pin bus used for global : P_"},
     1,
     0},
    {"port without its pin",
     block,
     [](auto& files) { rename_property(file_of(files, "top", "sheet"), "PIN", "PAN"); },
     {"# !! Pin of INStance : \"/X/A\"    :   not found ? "},
     1,
     0},
    {"port of another width",
     "symbol s\n pin A 0,0 IN bits 0:1\n"
     "sheet s\n port A p 0,0 bits 0:2\n bus A 0:2\n  wire A 9,0\n"
     "sheet top\n part X s 2,0\n bus T 0:1\n  wire X.A 0,0\n",
     nullptr,
     {"# !! Pin of INStance : \"/X/A\"    :   not compatible at level -1 ? "},
     1,
     0},
    {"port with a range on a plain net",
     "symbol s\n pin A 0,0 IN\n"
     "sheet s\n port A p 0,0 bits 0:3\n net A\n  wire A 9,0\n"
     "sheet top\n part X s 2,0\n net T\n  wire X.A 0,0\n",
     nullptr,
     {"# !! Pin of INStance : \"/X/A\"    :   not compatible at level -1 ? "},
     1,
     0},
    {"initial state on the net of a port",
     "symbol s\n pin A 0,0 IN\n"
     "sheet s\n port A p 0,0\n part R r 2,0\n net A INIT=Q\n  wire A R.1\n net Z\n  wire R.2 9,0\n"
     "sheet top\n part X s 2,0\n net T\n  wire X.A 0,0\n",
     nullptr,
     {"# !! INIT property on NET of PORT Invalid ", "# !! Port name  : \"A\"",
      "# !! INIT value  : \"Q\""},
     1,
     0},
    {"symbol path without a version",
     one_part,
     [](auto& files) {
       change_each<gx_object_symbol_rec_t>(file_of(files, "top", "sheet"), [](auto& symbol) {
         symbol.path = gx_string("r/symbol.gx_");
       });
     },
     {"# !! Error : Invalid Version in pathname of : ", "# !! : \"r/symbol.gx_\"",
      "# !! using old symbol version  "},
     1,
     0},
    {"old version of a leaf's symbol",
     one_part,
     [](auto& files) {
       change_each<gx_object_symbol_rec_t>(file_of(files, "top", "sheet"), [](auto& symbol) {
         symbol.path = gx_string("r/symbol.gx_7");
       });
     },
     {"# !! Error on Version (not the current) of : ", "# !! : \"r/symbol.gx_7\"",
      "# !! using old symbol version  "},
     1,
     0},
    {"old version of a block's symbol",
     block,
     [](auto& files) {
       change_each<gx_object_symbol_rec_t>(file_of(files, "top", "sheet"), [](auto& symbol) {
         symbol.path = gx_string("s/symbol.gx_7");
       });
     },
     {"# !! Error on Version (not the current) of : ", "# !! : \"s/symbol.gx_7\"",
      "# !! using old symbol version  ", "!! Warning : using old version of : \"s/symbol.gx_7\""},
     1,
     1},
    {"symbol that is not there",
     one_part,
     [](auto&) { std::filesystem::remove("r/symbol.gx"); },
     {"# !! Error : Symbol of : \"r/symbol.gx_1\"  not found ? "},
     1,
     0},
    {"link without a number",
     one_part,
     [](auto&) { write_file("r/symbol.gx", "_x        \n"); },
     {"# !! Error : Symbol of : \"r/symbol.gx_1\"  not found ? "},
     1,
     0},
    {"block without a sheet",
     block,
     [](auto&) { std::filesystem::remove("s/sheet.gx"); },
     {"!! Error : Sheet of INStance  \"s/symbol.gx_1\"  not found ? ",
      "# !! Error no sheet found for : ", "# !! : \"/X\""},
     1,
     0},
    {"block with a damaged sheet",
     block,
     [](auto&) { write_file("s/sheet.gx_1", "not a sheet"); },
     {"!! Error : Sheet of INStance \"s/symbol.gx_1\"  not found ? ",
      "# !! : ", "# !! Error no sheet found for : ", "# !! : \"/X\""},
     1,
     0},
    {"sheet with errors that was changed since its check",
     block,
     [](auto& files) {
       file_of(files, "s", "sheet").check_data_done = 1;
       file_of(files, "s", "sheet").num_errors = 2;
     },
     {"#  !! Error : Sheet of INStance \"s/symbol.gx_1\"  NOT CHECKED ? ",
      "#  !! Error : Sheet of INStance \"s/symbol.gx_1\"  WITH Error(s) ? "},
     2,
     0},
    {"sheet without a primary object",
     block,
     [](auto& files) { file_of(files, "s", "sheet").primary_object = 0; },
     {"!! Error : Sheet of INStance \"s/symbol.gx_1\"  Invalid ? "},
     1,
     0},
    {"pins without a type and with an unknown one",
     "symbol q\n pin 1 0,0\n pin 2 4,0 inward\n pin 3 8,0 weak\n prop CLASS=Q\n"
     "sheet top\n part Q q 2,0\n net A\n  wire Q.1 0,9\n net B\n  wire Q.2 6,9\n"
     " net C\n  wire Q.3 10,9\n",
     nullptr,
     {"# ? Warning Pintype Not Defined so \"OUTPUT\" assumed FOR pin : /Q/1",
      "# ? Error : Invalid Pintype on Pin : ", "#  Pin Path : \"/Q/3\""},
     1,
     1},
    {"pin without a net",
     "sheet top\n part R r 2,0\n net A\n  wire R.1 0,0\n",
     nullptr,
     {"# !! Error : Pin without Net : \"/R/2\""},
     1,
     0},
    {"bus that ends before it starts",
     one_part,
     [](auto& files) {
       change_each<gx_object_net_rec_t>(file_of(files, "top", "sheet"), [](auto& net) {
         net.is_bus = 1, net.bus_start = 3, net.bus_end = 3;
       });
     },
     {"# !! Error : Range of Bus Invalid : \"/A\"", "# !! Error : Range of Bus Invalid : \"/B\""},
     2,
     0},
    {"pin beyond its bus",
     "sheet top\n part R r 2,0\n bus A 0:3\n  wire R.1 0,0\n"
     " net B\n  wire R.2 9,0\n",
     [](auto& files) {
       change_each<gx_object_pinpropfam_rec_t>(file_of(files, "top", "sheet"),
                                               [](auto& pin) { pin.pin_net_start = 900; });
     },
     {"# !! Error : Pin out of the range of its Bus : \"/R/1\""},
     1,
     0},
};

TEST_F(FlattenTest, WhatIsWrongIsToldAndTheRunGoesOn) {
  for (const auto& design : bad_designs) {
    SCOPED_TRACE(design.description);
    gx_vext.num_errors = gx_vext.num_warnings = 0;
    gx_vext.num_file_open = 0;
    kv_sext.primitive.count = kv_sext.property_instance.count = 0;
    kv_sext.property_pin.count = kv_sext.property_net.count = 0;
    auto files = build(design.sheets);
    write(files);
    if (design.damage != nullptr) {
      design.damage(files);
      for (const auto& file : files) {
        const auto path = directory.path() / file.directory / (file.base + ".gx_1");
        if (read_file(path) != "not a sheet") write_file(path, gx_encode_file(*file.file));
      }
    }
    declare();
    open_top();
    const lines_t lines = answers();
    EXPECT_EQ(gx_vext.num_errors, design.errors);
    EXPECT_EQ(gx_vext.num_warnings, design.warnings);
    // Lines that end in an id or a reason are compared by what stands before it.
    lines_t heads;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const bool open_end = i < design.answers.size() &&
                            (design.answers[i].ends_with("_") || design.answers[i] == "# !! : ");
      heads.push_back(open_end ? lines[i].substr(0, design.answers[i].size()) : lines[i]);
    }
    EXPECT_EQ(heads, design.answers);
  }
}

TEST_F(FlattenTest, TimingIndexesAreInheritedAndLimited) {
  EXPECT_EQ(
      run("symbol s\n pin A 0,0 IN\n"
          "sheet s\n port A p 0,0\n part R r 2,0\n part Q r 2,4 TIMIND=7\n"
          " net A\n  wire A R.1 Q.1\n net Z\n  wire R.2 Q.2\n"
          "sheet top\n part X s 2,0 TIMIND=120\n part Y r 2,9 TIMIND=121\n"
          " part Z r 2,13 TIMIND=x1\n part W r 2,17 TIMIND=99999\n"
          " net T\n  wire X.A 0,0 0,9 Y.1 Z.1 W.1\n net U\n  wire Y.2 Z.2 W.2\n"),
      (lines_t{"# !! Error on Timing Index : \"/Y\"", "# !! : \"121\"",
               "# !! Max value for Timing Index : \"120\"", "# !! Error on Timing Index : \"/Z\"",
               "# !! : \"x1\"", "# !! Error on Timing Index : \"/W\"", "# !! : \"99999\"",
               "# !! Max value for Timing Index : \"120\""}));
  EXPECT_EQ(gx_vext.num_errors, 3);
  EXPECT_EQ(leaves(), (lines_t{"/X/R", "/X/Q", "/Y", "/Z", "/W"}));
  const int expected[] = {120, 7, 0, 0, 0};
  for (std::int32_t i = 1; i <= 5; ++i) {
    EXPECT_EQ(kv_ptrto_inst_rec(i).timing_index, expected[i - 1]) << i;
  }
  EXPECT_EQ(kv_ptrto_macro_rec(1).timing_index, 120);
}

TEST_F(FlattenTest, ExpressionsSeeThePropertiesOfTheirBlock) {
  write(
      build("symbol s\n pin A 0,0 IN\n"
            "sheet s\n port A p 0,0\n part R r 2,0 W=(2*DRIVE*K) N=TEXT\n"
            " net A\n  wire A R.1\n net Z W=(X)\n  wire R.2 9,0\n"
            "sheet top\n part X s 2,0 DRIVE=3\n part Y s 2,9 DRIVE=(K+1)\n"
            " net T\n  wire X.A 0,0 0,9 Y.A\n"));
  declare({"PRIMI CLASS R", "PARAM K 1 2 3", "PROP INS R W DRIVE", "PROP INS I N", "PROP INS S N",
           "PROP PIN S PINTYPE", "PROP NET R W"});
  open_top();
  EXPECT_EQ(answers(),
            (lines_t{"# !! Error found on property value ", "#    Net Path : \"/X/Z\"",
                     "#    Property Name :  \"W\"", "#    Property Value :  \"(X)\"",
                     "# !! Error found on property value ", "#    Instance Path : \"/X/R\"",
                     "#    Property Name :  \"N\"", "#    Property Value :  \"TEXT\"",
                     "# !! Error found on property value ", "#    Net Path : \"/Y/Z\"",
                     "#    Property Name :  \"W\"", "#    Property Value :  \"(X)\"",
                     "# !! Error found on property value ", "#    Instance Path : \"/Y/R\"",
                     "#    Property Name :  \"N\"", "#    Property Value :  \"TEXT\""}));
  const float expected[2][3] = {{6, 12, 18}, {4, 12, 24}};
  for (std::int32_t i = 1; i <= 2; ++i) {
    const auto& inst = kv_ptrto_inst_rec(i);
    ASSERT_EQ(inst.nb_of_property, 4);
    const auto& width = kv_ptrto_prop_rec(inst.first_prop);
    for (int k = 0; k < 3; ++k) EXPECT_FLOAT_EQ(width.valuer[k], expected[i - 1][k]) << i;
    EXPECT_EQ(kv_ptrto_prop_rec(inst.first_prop + 2).valuei[1], 0);
    EXPECT_EQ(text(kv_ptrto_prop_rec(inst.first_prop + 3).valuec), "TEXT");
  }
}

// A chain of blocks, the last with a leaf: `levels` sheets with the top.
std::string deep_design(int levels) {
  std::string sheets;
  for (int level = levels; level >= 2; --level) {
    const std::string name = "b" + std::to_string(level), below = "b" + std::to_string(level + 1);
    sheets += "symbol " + name + "\n pin A 0,0 IN\nsheet " + name + "\n port A p 0,0\n part X " +
              (level == levels ? "e" : below) + " 2,0\n net A\n  wire A X." +
              (level == levels ? "1 X.2" : "A") + "\n";
  }
  return sheets + "sheet top\n part X b2 2,0\n net A\n  wire X.A 0,0\n";
}

TEST_F(FlattenTest, TwentyEightLevelsAreFlattened) {
  EXPECT_EQ(run(deep_design(28)), lines_t{});
  EXPECT_EQ(kv_sext.insts.count, 1);
  EXPECT_EQ(kv_sext.macros.count, 27);
  EXPECT_NE(std::filesystem::file_size("design_kv"), 0U);
  EXPECT_EQ(gx_view(kv_pext.cur_sim_path), "/");
}

TEST_F(FlattenTest, ADeeperHierarchyEndsTheRunWithoutADesignFile) {
  std::string path;
  for (int i = 0; i < 28; ++i) path += "/X";
  EXPECT_EQ(run(deep_design(29)), lines_t{"# !! Error : Too many sheet levels ? : " + path});
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
  EXPECT_EQ(gx_vext.num_errors, 1);
  // A sheet inside itself has no end either.
  gx_vext.num_file_open = 0;
  EXPECT_EQ(run("symbol self\n pin A 0,0 IN\n"
                "sheet self\n port A p 0,0\n part X self 2,0\n net A\n  wire A X.A\n"
                "sheet top\n part X self 2,0\n net A\n  wire X.A 0,0\n"),
            lines_t{"# !! Error : Too many sheet levels ? : " + path});
}

TEST_F(FlattenTest, APathBeyondAStringOfTheStoreEndsTheRun) {
  const std::string name(50, 'n');
  EXPECT_EQ(run("symbol s\n pin A 0,0 IN\n"
                "sheet s\n port A p 0,0\n part " +
                name + " r 2,0\n net A\n  wire A " + name + ".1\n net Z\n  wire " + name +
                ".2 9,0\n"
                "sheet top\n part " +
                name + " s 2,0\n net T\n  wire " + name + ".A 0,0\n"),
            (lines_t{"# !! Error : Path longer than 100 characters : ",
                     "# !! : \"/" + name + "/" + name + "\""}));
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
}

TEST_F(FlattenTest, ADesignBeyondTheStoreIsRefused) {
  // The paths of the members of wide buses are more than the characters that it holds.
  std::string buses;
  for (int i = 0; i < 9; ++i) {
    const std::string n = std::to_string(i);
    buses += " bus D" + n + " 0:3000\n  wire 0," + n + " 9," + n + "\n";
  }
  EXPECT_EQ(run("symbol s\n pin A 0,0 IN\n"
                "sheet s\n port A p 0,30\n part R r 12,30\n net A\n  wire A R.1\n" +
                buses + "sheet top\n part X s 2,0\n part Y s 2,9\n net A\n  wire X.A Y.A\n"),
            (lines_t{"# !! Error : Pin without Net : \"/X/R/2\"",
                     "# !! Error : Design too large : more than 500000 records of the kind : char",
                     "# !! STOre SIZe sets how many ", "# !! Sheet : \"/Y\""}));
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
  EXPECT_EQ(kv_sext.nets.count, 0);
  // It goes on with a larger store.
  EXPECT_EQ(session.run("store size 2000000"), lines_t{" STOre SIZe 2000000 "});
  EXPECT_EQ(answers().size(), 2U);  // both pins without a net
  EXPECT_EQ(kv_sext.nets.count, 1 + 2 * 9 * 3002);
  EXPECT_EQ(kv_string_view(kv_ptrto_net_rec(kv_sext.nets.count).sim_path), "/Y/D8_3000");
  // The session goes on, and so does a smaller design.
  gx_vext.num_file_open = 0;
  EXPECT_EQ(run(one_part), lines_t{});
  EXPECT_EQ(kv_sext.nets.count, 2);
}

TEST_F(FlattenTest, AWatcherSeesALongRunAndMayStopIt) {
  // Each level holds two of the next: 2^18 - 1 sheets.
  std::string sheets;
  for (int level = 18; level >= 2; --level) {
    const std::string name = "b" + std::to_string(level);
    const std::string below = level == 18 ? "e" : "b" + std::to_string(level + 1);
    sheets += "symbol " + name + "\n pin 1 0,0 IN\nsheet " + name + "\n port 1 p 0,0\n part X " +
              below + " 2,0\n part Y " + below + "  12,0\n net A\n  wire 0,0 X.1 Y.1\n";
    if (level == 18) sheets += " net B\n  wire X.2 Y.2\n";
  }
  write(build(sheets + "sheet top\n part X b2 2,0\n part Y b2 12,0\n"
                       " net A\n  wire X.1 Y.1\n"));
  declare();
  open_top();
  ASSERT_EQ(session.run("store size 2000000000").size(), 1U);
  static std::vector<kv_progress_t> seen;
  seen.clear();
  const auto watcher = [](const kv_progress_t& progress) {
    seen.push_back(progress);
    return seen.size() < 2;
  };
  const kv_run_t watched{kv_sext,
                         kv_sext,
                         kv_pext.arrayof_file,
                         kv_pext.expand_level,
                         kv_pext.macro_level,
                         watcher,
                         std::chrono::milliseconds(20)};
  EXPECT_EQ(kv_run_expansion(watched, kv_sext.designfile, false), kv_run_result::stopped);
  EXPECT_EQ(session.take().back(), "# RUN stopped");
  ASSERT_EQ(seen.size(), 3U);
  EXPECT_EQ(seen[0].all_sheets, (1 << 18) - 1);
  EXPECT_GE(seen[1].seconds, 0.04);
  EXPECT_TRUE(seen[2].ended);
  EXPECT_EQ(kv_sext.nets.count, 0);
  EXPECT_EQ(std::filesystem::file_size("design_kv"), 0U);
}

TEST_F(FlattenTest, MoreThanThirtyErrorsEndTheSheets) {
  std::string parts;
  for (int i = 0; i < 40; ++i) {
    const std::string n = std::to_string(i);
    parts += " part R" + n + " r 2," + n + " TIMIND=x\n net A\n  wire R" + n + ".1 R" + n + ".2\n";
  }
  const lines_t lines = run("sheet top\n" + parts);
  EXPECT_EQ(lines.size(), 2U * 31);
  EXPECT_EQ(gx_vext.num_errors, 31);
  EXPECT_EQ(kv_sext.insts.count, 31);
  // The next run counts its own.
  EXPECT_EQ(session.run("RUN").size(), lines.size() + 1 + 1 + 31);
  EXPECT_EQ(kv_sext.insts.count, 31);
}

TEST_F(FlattenTest, ADeletedObjectStopsItsSheet) {
  auto files = build(one_part);
  write(files);
  declare();
  open_top();
  gx_ptrto_gene_file_buf(1).ptr_to_ar_objindex[4]->status = gx_flag_deleted;
  EXPECT_EQ(session.run("RUN"), (lines_t{" RUN ", "# Processing : \"\""}));
  EXPECT_EQ(gx_vext.num_errors, 1);
  EXPECT_EQ(kv_sext.nets.count, 0);
}

}  // namespace
