// What commands draw in the views of a sheet, where they bring the picture, the pointer and the
// panes.
#include "app/sheet/pan.h"
#include "app/sheet/panes.h"
#include "app/sheet/views.h"
#include "app/sheet/walk.h"
#include "gx/db/place/geometry.h"
#include "gx/db/undo.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "tests/support/counting_screen.h"
#include "tests/support/design_session.h"

namespace {
constexpr char two_sheets[] = R"(
symbol res
  rect -1,0 1,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  show INST 2,2
symbol low
  rect 0,0 2,2
  pin A 0,0 IN
sheet low
  page 20,20
sheet top
  page 40,20
  part R1 res 5,5
  part R2 res 15,5
  part X1 low 25,5
  net A
    wire R1.1 5,3 15,3 R2.1
)";

class SheetViews : public ::testing::Test {
 protected:
  void SetUp() override {
    gx_vext.bitmap_size = {1100, 880};
    for (const auto& viewport : set_viewports())
      gx_viewport_create(viewport.bounds, viewport.border);
    kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
    kv_display_picture_all(gx_vext.viewport_context, kv_pext.file_id_cur);
  }
  const gx_viewport_rec_t& edit() const { return gx_viewport_rec(gx_vext.viewport_edit); }
  const gx_viewport_rec_t& context() const { return gx_viewport_rec(gx_vext.viewport_context); }
  std::string last(std::string_view command) { return s.run(command).back(); }
  design_session s{two_sheets};
  counting_screen screen;
};

TEST_F(SheetViews, EachCommandDrawsTheViewsItChanges) {
  const std::string net = "select object edit N_" + std::to_string(s.net("A"));
  const std::pair<std::string, int> cases[] = {
      {"select area all edit 0.1 0.1 1.9 0.9", 2},
      {"unselect area all edit 0.1 0.1 1.9 0.9", 2},
      {"unselect area all edit 0.1 0.1 1.9 0.9", 0},  // nothing
      {net, 2},
      {"unselect all", 2},
      {"select pin edit R1 1", 2},
      {"select property edit NET", 2},
      {"change property switches v", 2},
      {"grid on", 2},
      {"grid step 0.1", 2},
      {"basepoint edit 0.5 0.5", 2},
      {"basepoint edit 9.5 9.5", 0},
      {"view all", 1},
      {"view area edit 0.1 0.1 0.5 0.5", 1},
      {"view sheet low", 1},
      {"pop", 1},
      {"act symbol low", 1},
      {"snap on", 0},
      {"mark edit 0.5 0.5", 0},
      {"status net edit", 0},
  };
  gx_undo_init(kv_pext.file_id_cur);
  for (const auto& [command, pictures] : cases) {
    const int before = counting_screen::pictures;
    s.run(command);
    EXPECT_EQ(counting_screen::pictures - before, pictures) << command;
  }
}

TEST_F(SheetViews, ZoomAndSlideHaveLimitsAndAreRemembered) {
  const auto scale = edit().object_scale;
  const auto part = edit().bounds_part;
  gx_vext.pixel_pos = {300, 300};
  EXPECT_EQ(s.run("$zoom 2 1"), lines_t{});
  EXPECT_EQ(edit().object_scale, scale / 2);
  s.run("$zoom 100 100");
  s.run("$zoom 1 2");
  for (const char* command : {"$zoom 0 1", "$zoom 1 0", "$zoom 101 1", "$zoom 1 101", "$zoom x 1",
                              "$zoom 1 x", "$slide 101", "$slide -101", "$slide x"})
    EXPECT_TRUE(last(command).starts_with("# !! Error")) << command;
  s.run("view all");
  EXPECT_EQ(edit().bounds_part, part);
  const auto moved_by = [&](const char* command) {
    const auto before = edit().bounds_part.xmin;
    s.run(command);
    return (edit().bounds_part.xmin - before) / scale;
  };
  const int width = edit().pixel_bounds.xmax - edit().pixel_bounds.xmin;
  EXPECT_EQ(moved_by("$slide 100"), width);
  EXPECT_EQ(moved_by("$slide -100"), -width);
  EXPECT_EQ(moved_by("$slide 10"), width / 10);
  // VIEw LASt knows each view but one of the turns of a wheel, and none of the context viewport.
  const auto views_after = [&](const char* command) {
    kv_pext.last_views.clear();
    s.run(command);
    return kv_pext.last_views.size();
  };
  for (const char* command : {"$zoom 2 1", "$slide 5", "$vptu5", "view all",
                              "view area edit 0.1 0.1 0.5 0.5", "view down X1", "view up"})
    EXPECT_EQ(views_after(command), 1U) << command;
  kv_pext.hands.turns_wheel = true;
  EXPECT_EQ(views_after("$zoom 2 1") + views_after("$slide 5"), 0U);
  kv_pext.hands.turns_wheel = false;
  gx_vext.viewport_id = gx_vext.viewport_context;
  const auto shown = context().bounds_part;
  EXPECT_EQ(views_after("$zoom 2 1") + views_after("$slide 5") + views_after("$vptl20"), 0U);
  EXPECT_NE(context().bounds_part, shown);
  for (int i = 0; i < 25; ++i) kv_remember_view();
  EXPECT_EQ(kv_pext.last_views.size(), 20U);
  EXPECT_FALSE(kv_take_last_view()) << "all are the one in view";
  // Where nothing is shown nothing moves.
  gx_vext.display_on = false;
  const auto still = context().bounds_part;
  s.run("$zoom 2 1;$slide 50");
  EXPECT_EQ(context().bounds_part, still);
}

TEST_F(SheetViews, AMarkTakesThePointerAlongAndAClickIsNoArea) {
  const auto pixel = [](gx_vpid_t vpid, gx_pointreal_t p) {
    return gx_viewport_pt_real_to_pixel(vpid, p);
  };
  s.run("mark edit 0.5 0.6");
  EXPECT_EQ(gx_vext.obj_pos, (gx_pointreal_t{50000, 60000}));
  EXPECT_EQ(gx_vext.pixel_pos, pixel(gx_vext.viewport_edit, {50000, 60000}));
  s.run("mark context 0.5 0.5");
  EXPECT_EQ(gx_vext.viewport_id, gx_vext.viewport_context);
  EXPECT_EQ(gx_vext.pixel_pos, pixel(gx_vext.viewport_context, {50000, 50000}));
  s.run("mark rect edit 0.3 0.3");
  EXPECT_TRUE(kv_pext.mark_rect_done);
  EXPECT_EQ(kv_pext.obj_ptr1, (gx_pointreal_t{30000, 30000}));
  EXPECT_EQ(gx_vext.viewport_id_start, gx_vext.viewport_edit);
  EXPECT_EQ(gx_vext.pixel_ptr1, pixel(gx_vext.viewport_edit, {30000, 30000}));
  EXPECT_EQ(gx_vext.pixel_mark, gx_vext.pixel_ptr1);
  EXPECT_EQ(last("mark edit 9 9"), "# !! Error : Invalid point (outside of page ...)  ? ");
  const auto zooms = [&](int dx, int dy) {
    s.run("view all");
    s.run("mark rect edit 0.3 0.3");
    const auto before = edit().bounds_part;
    gx_vext.pixel_pos.x = static_cast<std::int16_t>(gx_vext.pixel_pos.x + dx);
    gx_vext.pixel_pos.y = static_cast<std::int16_t>(gx_vext.pixel_pos.y + dy);
    gx_vext.obj_pos = {70000, 70000};
    EXPECT_EQ(s.run("view area"), lines_t{" VIEw AREa  Edit "});
    return edit().bounds_part != before;
  };
  EXPECT_FALSE(zooms(3, -3));
  EXPECT_TRUE(zooms(4, 0));
  EXPECT_TRUE(zooms(0, -4));
  EXPECT_FALSE(zooms(0, 0));
}

TEST_F(SheetViews, TheContextKeepsWhatItShows) {
  const auto top = kv_pext.file_id_cur;
  s.run("view sheet low");
  const auto low = kv_pext.file_id_context;
  s.run("act symbol res");
  const auto symbol = kv_pext.file_id_act;
  s.run("pop");
  EXPECT_EQ(kv_pext.file_id_context, low);
  kv_leave_slot(symbol);
  EXPECT_EQ(kv_pext.file_id_context, low) << "another one left";
  kv_leave_slot(low);
  EXPECT_EQ(kv_pext.file_id_context, top);
  EXPECT_EQ(context().file_index, top);
  // All of a symbol with a cross at its origin, or the part that was marked.
  s.run("act symbol res");
  gx_vext.kept_marks.clear();
  s.run("view all context");
  ASSERT_GE(gx_vext.kept_marks.size(), 1U);
  EXPECT_EQ(gx_vext.kept_marks[0].vpid, gx_vext.viewport_context);
  EXPECT_FALSE(gx_vext.kept_marks[0].is_link);
  const auto whole = context().bounds_part;
  gx_viewport_translate(gx_vext.viewport_context, 1, 1, 5000);
  s.run("view all context");
  EXPECT_EQ(context().bounds_part, whole);
  s.run("view sheet low");
  s.run("view area context 0.1 0.1 0.2 0.2");
  EXPECT_TRUE(kv_pext.disp_pic_area);
  EXPECT_NE(context().bounds_part, whole);
}

TEST_F(SheetViews, LinksLeadFromPropertiesToTheirOwners) {
  const auto link_of = [&](const char* name) {
    s.run("unselect all");
    s.run("select property edit " + std::string(name));
    gx_vext.kept_marks.clear();
    s.run("show link edit");
    return gx_vext.kept_marks;
  };
  const auto of_parts = link_of("INST");
  ASSERT_EQ(of_parts.size(), 3U);
  EXPECT_TRUE(of_parts[0].is_link);
  EXPECT_EQ(of_parts[0].vpid, gx_vext.viewport_edit);
  EXPECT_EQ(of_parts[0].to, lb_inq_inst_origin(s.file(), s.inst("R1")));
  EXPECT_EQ(of_parts[1].to, lb_inq_inst_origin(s.file(), s.inst("R2")));
  const auto* property = lb_find_prop_inst(s.file(), s.inst("R1"), "INST");
  EXPECT_EQ(of_parts[0].from,
            gx_object_abs_origin(s.file(), property->gene.object_id, s.inst("R1")));
  EXPECT_EQ(s.run("show link list").size(), 2U);
}

TEST_F(SheetViews, FramesAndTitleSayWhatIsInView) {
  kv_frame_active(gx_vext.viewport_edit);
  EXPECT_EQ(edit().border.pixel_width, 3);
  EXPECT_EQ(edit().border.border_color, 6);
  kv_frame_quiet(gx_vext.viewport_edit);
  EXPECT_EQ(edit().border.pixel_width, 1);
  EXPECT_EQ(edit().border.border_color, 3);
  s.run("view down X1");
  EXPECT_TRUE(counting_screen::title.ends_with(" /X1")) << counting_screen::title;
  kv_pext.cur_sim_path = gx_string("/X1/");
  kv_show_title();
  EXPECT_TRUE(counting_screen::title.ends_with(" /X1")) << counting_screen::title;
  s.run("view up");
  EXPECT_EQ(counting_screen::title.find('/'), std::string::npos);
}

TEST_F(SheetViews, AListWithMoreLinesTakesFromTheSheet) {
  gx_vext.cmd_height = 11;
  gx_vext.listb_x0 = 4;
  const auto bounds = [](gx_vpid_t vpid) { return gx_viewport_rec(vpid).bounds_vp; };
  kv_set_panes({.lines = 20});
  EXPECT_EQ(bounds(gx_vext.viewport_list), (gx_boundsreal_t{400, 66819, 73300, 95000}));
  EXPECT_EQ(bounds(gx_vext.viewport_context), (gx_boundsreal_t{73700, 66819, 99600, 99500}));
  EXPECT_EQ(bounds(gx_vext.viewport_edit), (gx_boundsreal_t{400, 500, 99600, 66319}));
  EXPECT_EQ(gx_vext.nb_line_in_listviewp, 20);
  EXPECT_EQ(gx_vext.list_height, 6);
  EXPECT_EQ(gx_vext.list_step, 12);
  kv_set_panes({.lines = 99});
  EXPECT_EQ(kv_panes().lines, 40);
  EXPECT_EQ(gx_vext.nb_line_in_listviewp, 36) << "the sheet keeps its half";
  kv_set_panes({.lines = 3, .has_context = false});
  EXPECT_EQ(kv_panes().lines, 7);
  EXPECT_EQ(bounds(gx_vext.viewport_list).xmax, 99600);
  EXPECT_EQ(bounds(gx_vext.viewport_cmd).xmax, 99600);
  EXPECT_EQ(bounds(gx_vext.viewport_context).xmin, 173700);
  EXPECT_EQ(gx_vext.list_height, 8);
  kv_set_panes({});
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(bounds(static_cast<gx_vpid_t>(i + 1)),
              set_viewports()[static_cast<std::size_t>(i)].bounds);
  EXPECT_EQ(gx_vext.list_height, 11);
}
}  // namespace
