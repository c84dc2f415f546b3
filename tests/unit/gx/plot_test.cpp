// A sheet on paper: what the strokes of a plot file draw.
#include <algorithm>

#include "app/sheet/views.h"
#include "gx/db/object_flags.h"
#include "gx/plot/plot_pen.h"
#include "gx/plot/plot_shape.h"
#include "gx/plot/plot_sheet.h"
#include "gx/vext.h"
#include "tests/support/design_session.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/session_case.h"

namespace {
// The plot of a sheet, command by command, without ";".
class plot_session {
 public:
  explicit plot_session(std::string_view design) : session_(design) {
    gx_hide_invisible(gx_ptrto_gene_file_buf(kv_pext.file_id_cur));
  }
  static lines_t answer(const std::string& line) {
    gx_plot_t plot;
    plot.path = "out.plt";
    plot.landscape = line == "plot landscape";
    lb_plotfile_all_frame(plot, kv_pext.file_id_cur);
    lb_plotfile_all_inst(plot, kv_pext.file_id_cur);
    lb_plotfile_all_net(plot, kv_pext.file_id_cur);
    EXPECT_TRUE(gx_plotfile_end() && plot.plot_ok);
    lines_t commands = split_lines(read_file("out.plt"));
    for (auto& command : commands)
      if (command.ends_with(';')) command.pop_back();
    return commands;
  }

 private:
  design_session session_;
};
}  // namespace

TEST(Plot, DrawsWhatTheSheetHolds) { expect_sessions<plot_session>("picture/plot.txt"); }

TEST(Plot, FitsThePageWithAMargin) {
  EXPECT_EQ(gx_plot_scale({19800, 27300}, false), 1050);
  EXPECT_EQ(gx_plot_scale({27300, 19800}, true), 1050);
  EXPECT_EQ(gx_plot_scale({27300, 19800}, false), 1378 + 68);  // the width decides
  EXPECT_EQ(gx_plot_scale({0, 0}, false), 1);
}

TEST(Plot, AnArcOfSeveralTurnsIsAFullCircle) {
  const design_session session("sheet top\n page 198,273\n arc 0,-21 21,0 0,21\n");
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
