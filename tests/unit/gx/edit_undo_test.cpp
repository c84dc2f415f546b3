// Recording changes and replaying them, step by step.
#include "gx/db/undo.h"
#include "gx/edit/undo_replay.h"
#include "gx/vext.h"
#include "tests/support/fatal_stop.h"
#include "tests/unit/gx/edit_fixture.h"

namespace {

// Two properties, and a net that is no bus yet.
struct undo_story : ::testing::Test {
  undo_story() {
    const auto property = [&](std::string_view name) {
      return f.make(gx_type::property_2d, {}, [&] { gx_property_2dreal(name, "1", {}, {}); });
    };
    f.make(gx_type::main, {}, [&] {
      gx_plain(gx_type::main);
      a = property("A");
      b = property("B");
      net = f.make(gx_type::net, {}, [] { gx_net(); });
    });
  }
  bool selected(int id) const { return gx_inq_object_selected(f.file(), id); }
  bool deleted(int id) const { return gx_inq_object_deleted(f.file(), id); }
  // The operations of the newest entries, oldest first.
  std::vector<int> newest(int count) const {
    std::vector<int> operations;
    for (auto* e = gx_vext.ptrto_undo_cur; e != nullptr && count-- > 0; e = e->previous) {
      operations.insert(operations.begin(), static_cast<int>(e->operation));
    }
    return operations;
  }
  empty_file f;
  int a = 0, b = 0, net = 0;
};

TEST_F(undo_story, OneStepHoldsOneMarkerAndTheRealChanges) {
  gx_undo_init(f.index);
  gx_vext.base_point = {5, 6};
  gx_undo_define_new_step();
  gx_set_object_selected(f.file(), a, true);
  gx_set_object_selected(f.file(), a, true);  // no change
  gx_set_object_selected(f.file(), b, true);
  gx_set_object_unvisible(f.file(), b, true);  // not recorded
  gx_set_object_selected(f.file(), a, false);
  gx_set_object_deleted(f.file(), net, true);
  EXPECT_EQ(newest(6), (std::vector{0, 1, 4, 4, 5, 2}));
  const auto* marker = gx_vext.ptrto_undo_start->following;
  EXPECT_TRUE(marker->new_step);
  EXPECT_EQ(std::get<gx_undo_placement_t>(marker->UU).old_point, (gx_pointreal_t{5, 6}));
  EXPECT_EQ(marker->file_index, 0);
  EXPECT_EQ(marker->following->object_id, a);
}

TEST_F(undo_story, AListBeginsWithWhatItsFileSays) {
  f.file().check_data_done = 5;
  f.file().num_errors = 7;
  gx_undo_init(f.index);
  EXPECT_EQ(gx_vext.check_data_done, 5);
  EXPECT_EQ(gx_vext.num_errors, 7);
  gx_undo_define_new_step();
  EXPECT_EQ(gx_vext.check_data_done, 1);
  gx_vext.num_errors = 3;
  gx_undo_init(0);
  gx_undo_init(2);
  EXPECT_EQ(gx_vext.num_errors, 3);
  expect_stop([] { gx_undo_put_object(0, 1, gx_undo_op::selected); }, gx_code::file_data_invalid);
  expect_stop([] { gx_undo_put_object(1, 0, gx_undo_op::selected); }, gx_code::file_data_invalid);
}

TEST_F(undo_story, ALongSessionDoesNotGrow) {
  gx_undo_init(f.index);
  for (int step = 0; step < 250000; ++step) gx_undo_define_new_step();
  EXPECT_LT(gx_vext.undo_list->entries.size(), 150000U);
  gx_set_object_selected(f.file(), a, true);
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_FALSE(selected(a));
}

TEST_F(undo_story, UndoAndRedoGoStepByStep) {
  gx_undo_init(f.index);
  gx_undo_define_new_step();
  gx_set_object_selected(f.file(), a, true);
  gx_undo_define_new_step();
  gx_set_object_deleted(f.file(), b, true);
  gx_set_object_selected(f.file(), a, false);

  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_TRUE(selected(a));
  EXPECT_FALSE(deleted(b));
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_FALSE(selected(a));
  EXPECT_FALSE(gx_undo_restore_one_step());
  EXPECT_TRUE(gx_redo_restore_one_step());
  EXPECT_TRUE(selected(a));
  EXPECT_TRUE(gx_redo_restore_one_step());
  EXPECT_TRUE(deleted(b));
  EXPECT_FALSE(selected(a));
  EXPECT_FALSE(gx_redo_restore_one_step());

  // A new change after an undo drops what could be done again.
  EXPECT_TRUE(gx_undo_restore_one_step());
  gx_undo_define_new_step();
  gx_set_object_selected(f.file(), b, true);
  EXPECT_FALSE(gx_redo_restore_one_step());
  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_FALSE(selected(b));
  EXPECT_TRUE(selected(a));
}

TEST_F(undo_story, CreationSwitchesAndBusComeBackWithTheirValues) {
  gx_undo_init(f.index);
  gx_undo_define_new_step();
  const int created = f.make(gx_type::frame);
  auto& property = gx_property_info_ptr(f.file(), a);
  auto& switches =
      std::get<gx_undo_placement_t>(gx_undo_put_object(f.index, a, gx_undo_op::switches)->UU);
  switches.old_visible = switches.old_fixed = true;
  property.visible = property.fixed = 0;
  gx_set_object_unvisible(f.file(), a, true);
  auto& bus = std::get<gx_undo_bus_t>(gx_undo_put_object(f.index, net, gx_undo_op::bus)->UU);
  bus.new_is_bus = true;
  bus.new_bus_end = 7;

  EXPECT_TRUE(gx_undo_restore_one_step());
  EXPECT_TRUE(deleted(created));
  EXPECT_EQ(property.visible, 1);
  EXPECT_EQ(property.fixed, 1);
  EXPECT_FALSE(gx_inq_object_unvisible(f.file(), a));
  EXPECT_TRUE(gx_redo_restore_one_step());
  EXPECT_FALSE(deleted(created));
  EXPECT_EQ(property.visible, 0);
  EXPECT_TRUE(gx_inq_object_unvisible(f.file(), a));
  EXPECT_EQ(gx_net_info_ptr(f.file(), net).is_bus, 1);
  EXPECT_EQ(gx_net_info_ptr(f.file(), net).bus_end, 7);
}

}  // namespace
