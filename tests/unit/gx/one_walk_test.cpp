// Sheets of an odd shape that are read without complaint: a run, a request to the simulator and
// navigation see the same in them.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "expand/net_names.h"
#include "expand/store.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/file/sheet_shape.h"
#include "tests/support/design_session.h"

namespace {

constexpr char one_cell[] =
    "symbol r\n pin 1 0,0 IN\n pin 2 4,0 OUT\n prop CLASS=R\n"
    "symbol cell\n pin A 0,0 IXO\n"
    "symbol p\n pin P 0,0 IXO\n prop CLASS=PORTIN\n"
    "sheet cell\n port A p 0,0\n part R1 r 4,0\n net A\n  wire A R1.1\n net B\n  wire R1.2 20,0\n"
    "sheet top\n part X cell 4,0\n net B\n  wire X.A 0,0\n";

// A new object as the first child of another.
gx_object_gene_rec_t& put_first(gx_file_gene_recf_t& file, int father, gx_type type) {
  auto& object = gx_new_object(file, type);
  file.ptr_to_ar_objindex.push_back(&object);
  auto& above = gx_object_id_ptr(file, father);
  object.object_type = type;
  object.object_id = ++file.object_id_max;
  object.father = above.object_id;
  object.following = above.child1;
  if (above.child1 != 0) gx_object_id_ptr(file, above.child1).previous = object.object_id;
  above.child1 = object.object_id;
  return object;
}

// The design with one of its sheets changed, opened and run.
struct odd_session : design_session {
  odd_session(std::string_view sheet, void (*change)(gx_file_gene_recf_t&))
      : design_session(one_cell, "top", [=](auto& files) {
          for (auto& file : files) {
            if (file.directory == sheet && file.base == "sheet") change(*file.file);
          }
        }) {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.designfile = ::open("top/design_kv", O_RDWR | O_CREAT, 0660);
    for (const char* command :
         {"PRIMI CLASS", "PROP INS S CLASS", "PROP PIN S PIN", "PROP NET S NET"})
      run(command);
    answers = run("RUN");
  }
  ~odd_session() {
    ::close(kv_sext.designfile);
    kv_sext = kv_defref_exp_rec_t{};
  }
  lines_t answers;
};

TEST(OneWalk, ARequestAsksForTheNameThatTheRunGave) {
  odd_session s("top", [](auto& file) {
    const int net = lb_nets(file).first();
    auto& direct =
        reinterpret_cast<gx_object_property_rec_t&>(put_first(file, net, gx_type::property_2d));
    direct.name = gx_name("NET");
    direct.nvalue = gx_value("A");
  });
  const auto asked = lb_get_valueof_prop_net(s.file(), lb_nets(s.file()).first(), "NET");
  ASSERT_TRUE(asked);
  EXPECT_EQ(gx_view(*asked), "B");
  EXPECT_GT(kv_find_net_rel("/", gx_view(*asked)), 0);
}

TEST(OneWalk, FamiliesStandAtAnyPlace) {
  odd_session s("top",
                [](auto& file) { put_first(file, lb_instances(file).first(), gx_type::tag); });
  EXPECT_EQ(kv_sext.insts.count, 1);
  EXPECT_EQ(s.run("view down X"), lines_t{" VIEw DOWn  X"});
}

TEST(OneWalk, WhatASheetLacksIsToldByRunAndByView) {
  odd_session s("cell", [](auto& file) {
    for (auto* object : file.ptr_to_ar_objindex) {
      if (object->object_type == gx_type::frame_family) object->object_type = gx_type::tag_family;
    }
  });
  EXPECT_EQ(kv_sext.insts.count, 1);  // what there is of it
  EXPECT_EQ(std::count(s.answers.begin(), s.answers.end(), "# !! : no frame_family"), 1);
  EXPECT_EQ(s.run("view down X"),
            (lines_t{"# VIEw DOWn  X ", "# !! Error : No Sheet Available ? : ",
                     "# !! cell/sheet.gx : no frame_family"}));
}

}  // namespace
