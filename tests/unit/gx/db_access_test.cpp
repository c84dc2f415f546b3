// The checked accessors, and the flags of objects.
#include <gtest/gtest.h>

#include "gx/db/file/file_slots.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/queries.h"
#include "gx/vext.h"
#include "tests/support/db_builder.h"
#include "tests/support/fatal_stop.h"

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

TEST_F(db_access, slots_without_a_file_stop) {
  gx_vext.num_file_open = 2;
  gx_vext.filear[1].start_buf_ptr = std::make_shared<gx_file_gene_recf_t>();
  EXPECT_EQ(&gx_ptrto_gene_file_buf(1), gx_vext.filear[1].start_buf_ptr.get());
  gx_file_select(1);
  EXPECT_EQ(gx_vext.cur_file, 1);
  expect_stop([] { gx_file_select(2); }, gx_code::file_index_invalid, "error 2 in");
  for (const int outside : {-1, 0, 3})
    expect_stop([&] { gx_file_select(static_cast<gx_file_index_t>(outside)); },
                gx_code::init_or_open_file_not_done, "error 1 in");
  expect_stop([] { gx_file_create_new(3); }, gx_code::too_many_files);
  expect_stop([] { gx_file_create_new(0); }, gx_code::too_many_files);
  expect_stop([] { gx_file_close(0); }, gx_code::file_data_invalid);
  gx_file_set_primary_object(sheet.file, 2);
  EXPECT_EQ(gx_file_inq_primary_object(sheet.file), 2);
  for (const int id : {0, sheet.file.object_id_max + 1})
    expect_stop([&] { gx_file_set_primary_object(sheet.file, id); }, gx_code::object_id_invalid);
  EXPECT_EQ(gx_type_name(gx_type::main), "main");
  EXPECT_EQ(gx_type_name(gx_type::property_2d), "property_2d");
  EXPECT_EQ(gx_type_name(static_cast<gx_type>(gx_max_type + 1)), "nil");
}

TEST_F(db_access, the_properties_of_a_holder_are_selected_with_it) {
  const auto& f = sheet.file;
  const int pin = nth_object(f, gx_type::pin);
  sheet.add(gx_type::graphics, pin);
  sheet.add_property(pin, "PINTYPE", "I");
  gx_set_child_selected(f, pin, true);
  for (int id = 1; id <= f.object_id_max; ++id) {
    const auto& object = gx_object_id_ptr(f, id);
    EXPECT_EQ(gx_inq_object_selected(f, id),
              object.father == pin && object.object_type == gx_type::property_2d);
  }
}

TEST_F(db_access, what_a_sheet_lacks_for_its_queries_is_told) {
  EXPECT_EQ(gx_sheet_fault(small_sheet().file), "");
  EXPECT_EQ(gx_sheet_fault(gx_builder().file), "no main object");
  const auto fault = [](void (*damage)(gx_builder&)) {
    auto damaged = small_sheet();
    damage(damaged);
    return gx_sheet_fault(damaged.file);
  };
  EXPECT_EQ(fault([](auto& s) { gx_object_id_ptr(s.file, 5).following = 0; }), "no net_family");
  EXPECT_EQ(fault([](auto& s) { gx_object_id_ptr(s.file, 10).following = 0; }),
            "object 9: symbol without pins");
  static const auto instance = [](gx_builder & s) -> auto& {
    return nth_record<gx_object_instance_rec_t>(s.file);
  };
  const auto object = "object " + std::to_string(nth_object(sheet.file, gx_type::instance));
  EXPECT_EQ(fault([](auto& s) { instance(s).symbol = 0; }), object + ": instance without symbol");
  EXPECT_EQ(fault([](auto& s) { instance(s).gene.child1 = 0; }),
            object + ": instance without pins");
  EXPECT_EQ(fault([](auto& s) { s.file.grid_obj_id = 0; }), "no grid");
  // Families are found behind any other child.
  EXPECT_EQ(fault([](auto& s) {
              const int tag = s.add(gx_type::tag);
              gx_object_id_ptr(s.file, tag).following = instance(s).gene.child1;
              instance(s).gene.child1 = static_cast<gx_object_id_t>(tag);
            }),
            "");
}

}  // namespace
