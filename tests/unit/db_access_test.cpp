// The checked accessors, and the flags of objects.
#include <gtest/gtest.h>

#include "gx/db/queries.h"
#include "gx/text/state.h"
#include "tests/unit/db_builder.h"
#include "tests/unit/fatal_stop.h"

namespace {

class db_access : public testing::Test {
 protected:
  void SetUp() override { gx_reset_state(); }
  gx_builder sheet = small_sheet();
};

TEST_F(db_access, ids_outside_the_file_stop_with_their_own_line) {
  const int max = sheet.file.object_id_max;
  expect_stop([&] { gx_object_id_ptr(sheet.file, 0); }, gx_code::object_id_invalid,
              "obj_id < 1 (.|\n)*obj_id : 0\n");
  expect_stop([&] { gx_object_id_ptr(sheet.file, 30001); }, gx_code::object_id_invalid,
              "obj_id > gx_max_object_id (.|\n)*obj_id : 30001\n");
  expect_stop([&] { gx_object_id_ptr(sheet.file, max + 1); }, gx_code::object_id_invalid,
              "obj_id > object_id_max (.|\n)*obj_id : " + std::to_string(max + 1) + "\n");
  expect_stop([&] { gx_net_info_ptr(sheet.file, 1); }, gx_code::object_type_invalid);
}

TEST_F(db_access, slots_that_are_not_open_stop) {
  expect_stop([] { gx_ptrto_gene_file_buf(1); }, gx_code::init_or_open_file_not_done,
              "error 1 in gx_ptrto_gene_file_buf ");
  gx_vext.num_file_open = 1;
  expect_stop([] { gx_ptrto_gene_file_buf(1); }, gx_code::file_index_invalid,
              "error 2 in gx_ptrto_gene_file_buf ");
}

TEST_F(db_access, each_flag_is_a_bit_of_its_own) {
  const auto& f = sheet.file;
  struct flag_case {
    void (*set)(const gx_file_gene_recf_t&, int, bool);
    bool (*inq)(const gx_file_gene_recf_t&, int);
    int bit;
  };
  const flag_case flags[] = {
      {gx_set_object_selected, gx_inq_object_selected, 1},
      {gx_set_object_temporary, gx_inq_object_temporary, 2},
      {gx_set_object_create, gx_inq_object_create, 4},
      {gx_set_object_open, gx_inq_object_open, 8},
      {gx_set_object_picked, gx_inq_object_picked, 16},
      {gx_set_object_deleted, gx_inq_object_deleted, 32},
      {gx_set_object_unvisible, gx_inq_object_unvisible, 64},
      {gx_set_object_fixed, gx_inq_object_fixed, 128},
  };
  auto& word = gx_object_id_ptr(f, 3).status;
  for (const auto& flag : flags) {
    flag.set(f, 3, true);
    EXPECT_EQ(word, flag.bit);
    EXPECT_TRUE(flag.inq(f, 3));
    flag.set(f, 3, false);
    EXPECT_EQ(word, 0);
    word = static_cast<std::int16_t>(0xff & ~flag.bit);
    EXPECT_FALSE(flag.inq(f, 3));
    word = 0;
  }
}

TEST_F(db_access, the_properties_of_a_holder_are_selected_with_it) {
  const auto& f = sheet.file;
  const int pin = gx_object_id_ptr(f, gx_object_id_ptr(f, 10).child1).object_id;
  ASSERT_EQ(gx_object_id_ptr(f, pin).object_type, gx_type::pin);
  sheet.add(gx_type::graphics, pin);
  sheet.add_property(pin, "PINTYPE", "I");
  gx_set_child_selected(f, pin, true);
  for (int id = 1; id <= f.object_id_max; ++id) {
    const auto& object = gx_object_id_ptr(f, id);
    EXPECT_EQ(gx_inq_object_selected(f, id),
              object.father == pin && object.object_type == gx_type::property_2d);
  }
}

TEST_F(db_access, a_fathers_box_becomes_that_of_the_object_without_overflow) {
  auto& object = gx_object_id_ptr(sheet.file, 2);
  object.origin = {10, 2000000000};
  object.bounds = {-1, -2, 3, 2000000000};
  gx_update_father_bounds(sheet.file, 2, 1);
  EXPECT_EQ(gx_file_inq_bounds(sheet.file), (gx_boundsreal_t{9, 1999999998, 13, INT32_MAX}));
}

TEST_F(db_access, what_a_sheet_lacks_for_its_queries_is_told) {
  EXPECT_EQ(gx_sheet_fault(small_sheet().file), "");
  EXPECT_EQ(gx_sheet_fault(gx_builder().file), "no main object");
  const auto fault = [](void (*damage)(gx_builder&)) {
    auto damaged = small_sheet();
    damage(damaged);
    return gx_sheet_fault(damaged.file);
  };
  EXPECT_EQ(fault([](auto& s) { gx_object_id_ptr(s.file, 3).following = 0; }), "no net_family");
  EXPECT_EQ(fault([](auto& s) { gx_object_id_ptr(s.file, 8).following = 0; }),
            "object 7: symbol without pins");
  const auto at = [](gx_builder & s) -> auto& {
    return gx_instance_info_ptr(s.file, gx_symbol_info_ptr(s.file, 7).instance);
  };
  static const auto instance = at;
  EXPECT_EQ(fault([](auto& s) { instance(s).symbol = 0; }), "object 16: instance without symbol");
  EXPECT_EQ(fault([](auto& s) { instance(s).gene.child1 = 0; }),
            "object 16: instance without pins");
}

}  // namespace
