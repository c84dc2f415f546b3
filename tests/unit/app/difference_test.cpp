// DIFference DESign: what changed since an older design is marked.
#include <fcntl.h>
#include <unistd.h>

#include "app/find/expanded.h"
#include "expand/store.h"
#include "tests/support/design_session.h"

namespace {

// A design with a value of R1 and further parts, expanded into a file.
struct expanded_session {
  expanded_session(const std::string& value, const std::string& more, const std::string& file)
      : s(R"(
symbol r
  pin A 0,0 IXO
  pin B 4,0 IXO
  prop CLASS=R
symbol cell
  pin A 0,0 IXO
symbol port
  pin P 0,0 IXO NET=A
  prop CLASS=PORTIN
sheet cell
  part P1 port 2,2
  part R1 r 8,2 VALUE=)" +
          value +
          R"(
  net
    wire P1.P R1.A
  net MID
    wire R1.B 20,2
)" + more) {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.designfile = ::open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    for (const char* line :
         {"primitive class", "prop inst s value", "prop pin s pin", "prop net s net", "run"})
      s.run(line);
  }
  ~expanded_session() {
    ::close(kv_sext.designfile);
    kv_sext = kv_defref_exp_rec_t{};
  }
  expanded_session(const expanded_session&) = delete;
  expanded_session& operator=(const expanded_session&) = delete;
  design_session s;
};

// The names of what is marked on the sheet in view, and how much is on those above.
std::string marks_in_view(const design_session& s) {
  std::string found;
  int above = 0;
  for (const auto& mark : gx_vext.highlights) {
    if (mark.file_index != kv_pext.file_id_cur) {
      ++above;
      continue;
    }
    const bool is_net = gx_object_id_ptr(s.file(), mark.id).object_type == gx_type::net;
    const auto* name = is_net ? lb_find_prop_net(s.file(), mark.id, "NET")
                              : lb_find_prop_inst(s.file(), mark.id, "INST");
    found += (name != nullptr ? std::string(gx_view(name->nvalue)) : "-") + " ";
  }
  return found + "and " + std::to_string(above);
}

constexpr char before_sheet[] =
    "sheet top\n part X1 cell 5,5\n part X2 cell 9,5\n part R1 r 15,5\n part R2 r 25,5\n"
    " net IN\n  wire X1.A X2.A\n  wire X2.A R1.A\n";

TEST(Difference, IsMarked) {
  const scratch_directory kept;
  const std::string before = kept.path() / "before";
  { const expanded_session old("1k", before_sheet, before); }
  expanded_session now("2k",
                       "sheet top\n part X1 cell 5,5\n part X3 cell 9,15\n part R1 r 15,5\n"
                       " part R5 r 30,5\n part X4 cell 40,15\n"
                       " net INPUT\n  wire X1.A R1.A\n",
                       kept.path() / "now");
  auto& s = now.s;
  s.run("dif des '" + before + "'");
  EXPECT_EQ(marks_in_view(s), "X1 X3 R5 X4 INPUT and 0");
  for (int n = 1; n <= 8; ++n) s.run("next finding");  // the last one is a level below
  EXPECT_EQ(marks_in_view(s), "R1 - and 5");
  EXPECT_EQ(s.run("highlight off"), lines_t{" HIGhlight OFF "});
  EXPECT_EQ(marks_in_view(s), "and 0");
  kv_sext.origins = {};
  EXPECT_EQ(s.run("difference design '" + before + "'").back(), std::string(kv_no_expansion));
}

TEST(Difference, AMovedPinIsMarkedAtItsPart) {
  const std::string parts =
      "symbol w\n pin D 0,0 IXO bits 0:3\n prop CLASS=R\nsheet top\n page 100,60\n";
  std::string sheets[2];
  for (int i = 0; i < 2; ++i) {
    for (int n = 1; n <= 7; ++n) {
      const auto number = std::to_string(n), y = std::to_string(5 * n);
      sheets[i] += " part R" + number + " r 10," + y + "\n part W" + number + " w 30," + y + "\n";
    }
    sheets[i] +=
        i == 0 ? " net P\n  wire R1.A R2.A R3.A\n net Q\n  wire R4.A R5.A R6.A R7.A\n"
                 " bus D 0:3\n  wire W1.D W2.D W3.D\n bus E 0:3\n  wire W4.D W5.D W6.D W7.D\n"
               : " net P\n  wire R1.A R2.A\n net Q\n  wire R3.A R4.A R5.A R6.A R7.A\n"
                 " bus D 0:3\n  wire W1.D W2.D\n bus E 0:3\n  wire W3.D W4.D W5.D W6.D W7.D\n";
  }
  const scratch_directory kept;
  const std::string before = kept.path() / "before";
  { const expanded_session old("1k", parts + sheets[0], before); }
  expanded_session now("1k", parts + sheets[1], kept.path() / "now");
  EXPECT_EQ(now.s.run("dif des '" + before + "'").size(), 5U + 2);
  EXPECT_EQ(marks_in_view(now.s), "R3 W3 and 0");
}

}  // namespace
