// Finding a place of the design and going there.
#include "app/find/go_to.h"
#include "gx/db/geometry.h"
#include "tests/unit/design_session.h"

namespace {

constexpr char hierarchy[] = R"(
symbol leaf
  pin A 0,0 IN
  prop CLASS=R
symbol block
  pin A 0,0 IN
symbol nosheet
  pin A 0,0 IN
sheet top
  part X1 block 5,5
  part X2 block 9,5
  part R1 leaf 15,5
  part N1 nosheet 19,5
  net A
    wire X1.A 5,8 9,8 X2.A
sheet block
  part Y1 deep 5,5
  part Y2 leaf 9,5
symbol deep
  pin A 0,0 IN
sheet deep
  part Z1 leaf 5,5
)";

std::string place() {
  return std::to_string(kv_pext.file_level_cur) + " " + std::string(gx_view(kv_pext.cur_sim_path));
}

TEST(GoTo, WalksUpAndDownSelectsAndSaysWhatIsMissing) {
  design_session s(hierarchy);
  const int net = s.net("A"), block = s.inst("X2");
  EXPECT_EQ(kv_go_to("/x1/Y1", 0), "");
  EXPECT_EQ(place(), "3 X1/Y1/");
  const int leaf = s.inst("Z1");
  ASSERT_NE(leaf, 0);
  EXPECT_EQ(kv_go_to("/", block), "");
  EXPECT_EQ(place(), "1 ");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), block));
  EXPECT_EQ(kv_go_to("", net), "");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), net));
  EXPECT_FALSE(gx_inq_object_selected(s.file(), block));

  EXPECT_EQ(kv_go_to("X2/Y1/", leaf), "");
  EXPECT_EQ(place(), "3 X2/Y1/");
  const int pin = s.pin(leaf, 1).pinpropfam;
  EXPECT_EQ(kv_go_to("/X2/Y1", pin), "");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), pin));
  EXPECT_FALSE(gx_inq_object_selected(s.file(), leaf));
  EXPECT_EQ(gx_vext.num_file_open, 3);

  // What cannot be reached leaves all as it was.
  EXPECT_EQ(kv_go_to("/X2/Y9", 0), "no such sheet : \"/X2/Y9\"");
  EXPECT_EQ(kv_go_to("/N1", 0), "no such sheet : \"/N1\"");
  for (const int id : {-1, 1, 30000}) {
    EXPECT_EQ(kv_go_to("/X1", id), "no such object : " + std::to_string(id));
  }
  EXPECT_EQ(place(), "3 X2/Y1/");
  EXPECT_TRUE(gx_inq_object_selected(s.file(), pin));
}

}  // namespace
