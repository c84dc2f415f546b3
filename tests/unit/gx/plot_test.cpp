// A sheet on paper: what the strokes of a plot file draw.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "app/sheet/views.h"
#include "gx/db/object_flags.h"
#include "gx/plot/plot_pen.h"
#include "gx/plot/plot_shape.h"
#include "gx/plot/plot_sheet.h"
#include "gx/vext.h"
#include "tests/support/design_session.h"
#include "tests/support/fatal_stop.h"

namespace {
// 21 grid steps are 200 plotter units on this page, whose upper edge is at 2600.
constexpr const char* sheet_on_paper = R"(
symbol D
  line 0,0 21,0
  arc 0,-21 21,0 0,21
  pin A 0,0 IO
sheet top
  page 198,273
  line 21,21 42,21
  rect 21,42 42,63 filled
  circle 63,63 21
  text HELLO at 21,84 height 2
  text ASIDE at 42,84 vertical
  part U1 D 84,84 rotate 1 mirror HIDDEN=secret
  net
    wire 21,126 84,126 width 3
  net
    wire 21,147 22.5,147 width 3
  net
    wire 21,157.5 22.6,157.5 width 3
  net
    wire 21,168 42,168 63,168
    wire 42,168 42,189
)";

// The plot of the sheet, command by command, without ";" and line ends.
lines_t plot_of(std::string_view description, bool landscape = false) {
  const design_session session(description);
  gx_hide_invisible(gx_ptrto_gene_file_buf(kv_pext.file_id_cur));
  gx_plot_t plot;
  plot.path = "out.plt";
  plot.landscape = landscape;
  lb_plotfile_all_frame(plot, kv_pext.file_id_cur);
  lb_plotfile_all_inst(plot, kv_pext.file_id_cur);
  lb_plotfile_all_net(plot, kv_pext.file_id_cur);
  EXPECT_TRUE(gx_plotfile_end() && plot.plot_ok);
  lines_t commands = split_lines(read_file("out.plt"));
  for (auto& command : commands)
    if (command.ends_with(';')) command.pop_back();
  return commands;
}

bool holds_run(const lines_t& commands, const lines_t& wanted) {
  return std::search(commands.begin(), commands.end(), wanted.begin(), wanted.end()) !=
         commands.end();
}
}  // namespace

TEST(Plot, BeginsAndEndsAsThePaperWantsIt) {
  const lines_t portrait = plot_of("sheet top\n page 19.8,27.3\n");
  EXPECT_EQ(portrait, (lines_t{"\033E", "\033%0B", "IN", "IP0,0,7920,10920", "SC0,1980,0,2730",
                               "SP1", "PW 0.4", "\033%0A"}));
  const lines_t landscape = plot_of("sheet top\n page 27.3,19.8\n", true);
  EXPECT_TRUE(holds_run(landscape, {"IN", "RO90", "IP0,0,10920,7920", "SC0,2730,0,1980", "SP1"}));
}

TEST(Plot, FitsThePageWithAMargin) {
  EXPECT_EQ(gx_plot_scale({19800, 27300}, false), 1050);
  EXPECT_EQ(gx_plot_scale({27300, 19800}, true), 1050);
  EXPECT_EQ(gx_plot_scale({27300, 19800}, false), 1378 + 68);  // the width decides
  EXPECT_EQ(gx_plot_scale({0, 0}, false), 1);
}

TEST(Plot, DrawsWhatTheSheetHolds) {
  const lines_t plot = plot_of(sheet_on_paper);
  EXPECT_TRUE(holds_run(plot, {"PU200,2400", "PD400,2400"})) << "line";
  EXPECT_TRUE(
      holds_run(plot, {"PU200,2200", "PD400,2200", "PD400,2000", "PD200,2000", "PD200,2200"}))
      << "rectangle";
  EXPECT_TRUE(holds_run(plot, {"PU600,2000", "PD600,2000", "CI200"})) << "circle";
  EXPECT_TRUE(
      holds_run(plot, {"DI1,0", "SI0.013,0.010", "SI 0.147, 0.190", "PU200,1800", "LBHELLO\003"}))
      << "text";
  EXPECT_TRUE(holds_run(plot, {"DI0, 1"})) << "upright text";
  EXPECT_TRUE(holds_run(plot, {"PU800,1800", "PD800,1600"})) << "line of a turned, mirrored part";
  EXPECT_TRUE(holds_run(plot, {"PW 1.2", "PU200,1401", "PD800,1401", "PW 0.4"})) << "wide wire";
  EXPECT_TRUE(holds_run(plot, {"PU200,1200", "PD214,1200"})) << "shorter than five times its width";
  EXPECT_TRUE(holds_run(plot, {"PW 1.2", "PU200,1101", "PD215,1101", "PW 0.4"}))
      << "as long as that";
  EXPECT_TRUE(holds_run(plot, {"PU398,1001", "RA401,998"})) << "junction";
  for (const auto& command : plot) EXPECT_EQ(command.find("secret"), std::string::npos);
}

TEST(Plot, TurnsArcsWithTheirPart) {
  const lines_t plot = plot_of(sheet_on_paper);
  const auto arc = std::find_if(plot.begin(), plot.end(),
                                [](const auto& command) { return command.starts_with("AA"); });
  ASSERT_NE(arc, plot.end());
  int x = 0, y = 0, sweep = 0, start_x = 0, start_y = 0;
  ASSERT_EQ(std::sscanf(arc->c_str(), "AA%d,%d,%d,10", &x, &y, &sweep), 3);
  ASSERT_EQ(std::sscanf((arc - 1)->c_str(), "PD%d,%d", &start_x, &start_y), 2);
  EXPECT_EQ(std::pair(x, y), std::pair(800, 1800));
  EXPECT_EQ(std::abs(sweep), 180);
  EXPECT_EQ(start_y, 1800);
  EXPECT_EQ(std::abs(start_x - 800), 200);
  // Half the way round the arc is below its centre.
  const double half = sweep / 2.0 * std::numbers::pi / 180;
  EXPECT_NEAR(std::sin(half) * (start_x - x), -200, 1);
}

TEST(Plot, AnArcOfSeveralTurnsIsAFullCircle) {
  const design_session session(sheet_on_paper);
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
  const auto arc = std::ranges::find_if(file.ptr_to_ar_objindex, [](const auto* object) {
    return object->object_type == gx_type::arc3p_2d;
  });
  ASSERT_NE(arc, file.ptr_to_ar_objindex.end());
  const int id = (*arc)->object_id;
  for (const auto& [turns, sweep] : {std::pair{2, "360"}, {-2, "-360"}, {1, "360"}}) {
    gx_arc_info_ptr(file, id).angle1 = 0;
    gx_arc_info_ptr(file, id).angle2 = turns * 360 * 64;
    gx_plot_t plot;
    plot.path = "out.plt";
    gx_plotfile_object(plot, kv_pext.file_id_cur, id, 0);
    EXPECT_TRUE(gx_plotfile_end());
    EXPECT_NE(read_file("out.plt").find(std::string(",") + sweep + ",10;"), std::string::npos);
  }
}

// On a page whose plotter units are design units, 1000 high.
TEST(Plot, ShapesArePenMoves) {
  using points_t = std::vector<gx_pointreal_t>;
  const scratch_directory directory;
  const auto plotted = [&](gx_shape_t shape, const points_t& points) {
    const auto path = directory.file("out.plt").string();
    EXPECT_TRUE(gx_plot_open(path, {1901, 100}, false));
    EXPECT_EQ(gx_vext.lpplot_scale, 100);
    shape.points = points;
    gx_plot_shape(shape, 1000);
    EXPECT_TRUE(gx_plot_close());
    std::string moves = read_file(path);
    const auto begin = moves.find("PW 0.4;\n") + 8;
    moves = moves.substr(begin, moves.rfind("\033%0A") - begin);
    std::erase(moves, '\n');
    return moves;
  };
  const auto shape = [](gx_shape_kind kind, std::int32_t size = 0) {
    gx_shape_t made{};
    made.kind = kind;
    made.size = size;
    return made;
  };
  const auto line = [&](gx_pointreal_t to, int width) {
    gx_shape_t drawn = shape(gx_shape_kind::line);
    drawn.width = width;
    return plotted(drawn, {{0, 0}, to});
  };
  EXPECT_EQ(line({50, 0}, 1), "PU0,1000;PD50,1000;");
  EXPECT_EQ(line({50, 0}, 2), "PW 0.8;PU0,1001;PD50,1001;PW 0.4;");
  EXPECT_EQ(line({0, 50}, 2), "PW 0.8;PU1,1000;PD1,950;PW 0.4;");
  EXPECT_EQ(line({100, 100}, 10), "PW 5.6;PU0,1007;PD100,907;PW 0.4;");  // slanted: wider
  EXPECT_EQ(line({50, -100}, 10), "PW 4.8;PU6,1000;PD56,1100;PW 0.4;");
  EXPECT_EQ(line({25, 25}, 10), "PW 5.6;PU0,1007;PD25,982;PW 0.4;");
  EXPECT_EQ(line({25, 24}, 10), "PU0,1000;PD25,976;");  // too short
  EXPECT_EQ(plotted(shape(gx_shape_kind::polyline), {{1, 1}, {2, 3}, {5, 3}}),
            "PU1,999;PD2,997;PD5,997;");
  EXPECT_EQ(plotted(shape(gx_shape_kind::box), {{1, 1}, {4, 3}}),
            "PU1,999;PD4,999;PD4,997;PD1,997;PD1,999;");
  const std::pair<int, const char*> sweeps[] = {{180, "180"},  {361, "1"},   {-361, "-1"},
                                                {725, "5"},    {720, "360"}, {-720, "-360"},
                                                {-359, "-359"}};
  for (const auto& [degrees, sweep] : sweeps) {
    gx_shape_t arc = shape(gx_shape_kind::arc, 100);
    arc.angle1 = 90 * 64;
    arc.angle2 = (90 + degrees) * 64;
    EXPECT_EQ(plotted(arc, {{}, {}, {}, {300, 300}}),
              std::string("PU300,800;PD300,800;AA300,700,") + sweep + ",10;");
  }
  const auto text = [&](std::int32_t size, int rotation) {
    gx_shape_t written = shape(gx_shape_kind::text, size);
    written.text = "\u00b5";
    written.file_rotation = rotation;
    return plotted(written, {{7, 8}});
  };
  EXPECT_EQ(text(1, 0), "DI1,0;SI0.013,0.010;PU7,992;LBu\003;");
  EXPECT_EQ(text(2, 1), "DI0, 1;SI0.013,0.010;SI 0.015, 0.020;PU7,992;LBu\003;");
  EXPECT_EQ(text(1300, 2), "DI1,0;SI0.013,0.010;SI10.000,13.000;PU7,992;LBu\003;");
  EXPECT_EQ(text(1301, 3), "DI0,-1;SI13,10;SI10.008,13.010;PU7,992;LBu\003;");
  expect_stop([&] { text(1, 4); }, gx_code::coordonate_conversion_overflow, "invalid \\? : 4");
  EXPECT_EQ(plotted(shape(gx_shape_kind::dot, 2), {{10, 10}}), "PU8,992;RA12,988;");
  EXPECT_EQ(plotted(shape(gx_shape_kind::dot), {{10, 10}}), "");
  EXPECT_EQ(plotted(shape(gx_shape_kind::circle, 9), {{10, 10}}), "PU10,990;PD10,990;CI9;");
}

TEST(Plot, SaysThatItsFileCannotBeOpened) {
  const design_session session("sheet top\n page 20,20\n line 1,1 2,2\n");
  gx_plot_t plot;
  plot.path = "no/such/place.plt";
  lb_plotfile_all_frame(plot, kv_pext.file_id_cur);
  lb_plotfile_all_net(plot, kv_pext.file_id_cur);
  EXPECT_FALSE(plot.plot_ok);
  EXPECT_EQ(gx_vext.num_errors, 1);
  EXPECT_TRUE(gx_plotfile_end());
}
