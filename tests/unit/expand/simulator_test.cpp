// Requests to the simulator: what goes through the FIFO, and what the user is told.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "expand/sim_request.h"
#include "expand/store.h"
#include "netlist/simulator_names.h"
#include "tests/support/design_session.h"

namespace {

// On top: R1 from IN to the cell X1, Z1 (a letter that the simulator does not know) and R2 (whose
// second pin is not named) to ground; X2 is a sub-circuit that is itself a leaf. Inside the cell:
// R5 from its port to N3 and N_ (no name).
constexpr std::string_view design =
    "symbol r\n pin 1 0,0 IN\n pin 2 4,0 OUT\n prop CLASS=R\n"
    "symbol p\n pin P 0,0 IXO\n prop CLASS=PORTIN\n"
    "symbol g\n pin P 0,0 IXO\n prop CLASS=G\n"
    "symbol leaf\n pin A 0,0 IXO IMAC=\"'i(*,a)+*'\"\n prop CLASS=X\n"
    "symbol cell\n pin A 0,0 IXO IMAC=v(*.a)\n pin B 4,0 IXO\n"
    "sheet cell\n port A p 0,0\n port B p 0,4\n part R5 r 4,0\n part R6 r 14,4\n"
    " net A\n  wire A R5.1\n net N3\n  wire R5.2 10,0\n net\n  wire R6.1 12,4\n"
    " net B\n  wire B 4,4\n"
    "sheet top\n part R1 r 0,0\n part X1 cell 6,0\n part Z1 r 20,0\n part R2 r 30,0\n"
    " part X2 leaf 20,10\n global GROUND g 40,0\n"
    " net IN\n  wire -4,0 R1.1\n net MID\n  wire R1.2 X1.A\n net OUT\n  wire X1.B Z1.1\n"
    " net LINK\n  wire Z1.2 R2.1\n net GND\n  wire R2.2 GROUND\n net SUB\n  wire X2 24,10\n";

class SimulatorTest : public ::testing::Test {
 protected:
  SimulatorTest() : session(design) {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.designfile = ::open("top/design_kv", O_RDWR | O_CREAT, 0660);
    for (const char* command :
         {"PRIMI CLASS", "PROP INS S CLASS", "PROP PIN S PIN", "PROP NET S NET", "RUN"}) {
      session.run(command);
    }
  }
  ~SimulatorTest() override {
    ::close(kv_sext.designfile);
    if (reader >= 0) ::close(reader);
    kv_sext = kv_defref_exp_rec_t{};
  }

  void listen() {
    ASSERT_EQ(::mkfifo("top/Lorb_To_Spice_Fifo", 0600), 0);
    reader = ::open("top/Lorb_To_Spice_Fifo", O_RDONLY | O_NONBLOCK);
  }
  std::string received() const {
    std::string text(8192, '\0');
    const ssize_t n = ::read(reader, text.data(), text.size());
    text.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    return text;
  }
  void select(int id) { gx_set_object_selected(session.file(), id, true); }
  void select_pin(std::string_view inst, int k) {
    select(session.pin(session.inst(inst), k).pinpropfam);
  }

  design_session session;
  int reader = -1;
};

const lines_t not_ready = {"# Send Data to SPICE : ", "# !! Sorry Spice is not ready ... ",
                           "# !! Exec again the WaitFor (WF) spice command ..."};

TEST_F(SimulatorTest, SendPassesTheKeywordsOn) {
  listen();
  kv_pext.save_to_do = true;
  EXPECT_EQ(session.run("SEND run  'a b' Tran"), (lines_t{" SENd run 'a b' Tran "}));
  EXPECT_EQ(received(), "run 'a b' Tran\n");
  EXPECT_FALSE(kv_pext.save_to_do);
  EXPECT_EQ(KivoSpice_fifo_fd, -1);
  EXPECT_EQ(session.run("SEND 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16").size(), 1U);
  EXPECT_EQ(received(), "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n");
  EXPECT_EQ(session.run("SEND 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17"),
            (lines_t{"# SEND 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 ",
                     "# !! Error : parameter number invalid ? ",
                     "# SEND : limited to 16 Keywords per Request ..."}));
  EXPECT_EQ(session.run("SEND"), (lines_t{"# SEND ", "# !! Error : parameter number invalid ? ",
                                          "# SEND : at least 1 Keyword per Request ..."}));
  kv_send_request(std::string(600, 'x'));
  EXPECT_EQ(received(), std::string(504, 'x') + "\n");
  kv_send_request("");
  EXPECT_EQ(received(), "");
}

// A reader that closes between the opening and the write must not end the program by SIGPIPE.
TEST_F(SimulatorTest, AReaderMayComeAndGo) {
  listen();
  std::atomic<bool> done = false;
  std::thread comes_and_goes([&done] {
    while (!done) ::close(::open("top/Lorb_To_Spice_Fifo", O_RDONLY | O_NONBLOCK));
  });
  ::close(reader);
  reader = -1;
  for (int i = 0; i < 2000; ++i) kv_send_request("x");
  done = true;
  comes_and_goes.join();
  EXPECT_EQ(session.run("SEND x").front(), not_ready.front());
}

TEST_F(SimulatorTest, NothingWaitsForAReader) {
  const auto sent = [this] {
    auto lines = session.run("SEND x");
    EXPECT_EQ(lines.back(), " SENd x ");
    lines.pop_back();
    return lines;
  };
  EXPECT_EQ(sent(), not_ready);  // no FIFO
  std::ofstream("top/Lorb_To_Spice_Fifo") << "mine";
  EXPECT_EQ(sent().back(), "# !! \"top/Lorb_To_Spice_Fifo\" : is no FIFO");
  EXPECT_EQ(std::filesystem::file_size("top/Lorb_To_Spice_Fifo"), 4U);
  std::filesystem::remove("top/Lorb_To_Spice_Fifo");
  listen();
  ::fcntl(reader, F_SETPIPE_SZ, 4096);
  const std::string filling(504, 'x');
  for (int i = 0; i < 8; ++i) kv_send_request(filling);
  EXPECT_EQ(sent(), lines_t{});
  kv_send_request(filling);
  EXPECT_EQ(session.run("SEND y").front(), not_ready.front());  // full, and nobody reads
  ::close(reader);
  reader = -1;
  EXPECT_EQ(sent(), not_ready);  // no reader
  EXPECT_EQ(KivoSpice_fifo_fd, -1);
}

TEST_F(SimulatorTest, GiveNamesSelectedNetsAndPins) {
  listen();
  EXPECT_EQ(session.run("GIVE"), (lines_t{" GIVE "}));
  EXPECT_EQ(received(), "plot \n");
  select(session.net("MID"));
  select(session.net("GND"));
  select_pin("R1", 1);
  select_pin("Z1", 1);  // contributes nothing
  select_pin("X1", 1);
  select_pin("X2", 1);
  EXPECT_EQ(session.run("GIVE"), (lines_t{" GIVE "}));
  EXPECT_EQ(received(), "plot MID 0 1:1 v(X1.a) i(X2,a)+X2 \n");
  EXPECT_EQ(session.run("GIVE V"), (lines_t{" GIVE V "}));
  EXPECT_EQ(received(), "plot V(MID) V(0) V(1:1) V(v(X1.a)) V(i(X2,a)+X2) \n");
  EXPECT_EQ(session.run("GIVE V I"),
            (lines_t{"# GIVE V I ", "# !! Error : parameter number invalid ? "}));
}

TEST_F(SimulatorTest, GiveInsideABlockUsesItsPath) {
  listen();
  select(session.inst("X1"));
  session.run("VIEW DOWN");
  ASSERT_EQ(gx_view(kv_pext.cur_sim_path), "/X1/");
  select(session.net("N3"));
  select(session.net("A"));  // the port's net is the one above
  select_pin("R5", 2);
  EXPECT_EQ(session.run("GIVE V").back(), " GIVE V ");
  EXPECT_EQ(received(), "plot V(MID) V(1:N3) V(1:R5:2) \n");
}

TEST_F(SimulatorTest, GiveTellsWhatItCannotFind) {
  listen();
  select(session.net("OUT"));
  select_pin("R2", 2);
  select_pin("X1", 2);  // a block's pin without IMAC
  kv_empty_store();
  EXPECT_EQ(session.run("GIVE V"),
            (lines_t{"# Give V ", "# !! Error : Net NOT FOUND ? ", "# Net : \"OUT\"",
                     "# !! Error :  Pin NOT FOUND in Data Base? ", "# INST : \"X1\" PIN : \"B\"",
                     "# !! Error :  Pin NOT FOUND in Data Base? ", "# INST : \"R2\" PIN : \"2\"",
                     " GIVE V "}));
  EXPECT_EQ(received(), "plot \n");
  session.run("RUN");
  EXPECT_EQ(session.run("GIVE"),
            (lines_t{"# !! Warning : No Valid Property IMAC on selected pin(s) of INSTance 'X1'  "
                     "PIN : 'B' ?",
                     " GIVE "}));
  EXPECT_EQ(received(), "plot OUT 2:2 \n");
  // the pin loses its name
  const auto pair = session.pin(session.inst("R2"), 2);
  for (const int id : gx_children(session.file(), pair.pin)) {
    gx_set_object_deleted(session.file(), id, true);
  }
  for (const int id : gx_children(session.file(), pair.pinpropfam)) {
    gx_set_object_deleted(session.file(), id, true);
  }
  const std::string pin = "P_" + std::to_string(pair.pinpropfam);
  const auto lines = session.run("GIVE");
  EXPECT_EQ(lines_t(lines.begin() + 1, lines.end()),
            (lines_t{"# !! Error : Property 'PIN' NOT FOUND on pin selected ? ",
                     "# INST : \"R2\" Pin selected : \"" + pin + "\"",
                     "# !! Warning : No Valid Property Pin on selected pin(s) of the INSTance "
                     "'R2' ?",
                     " GIVE "}));
}

TEST_F(SimulatorTest, NamesMayFillTheirRecords) {
  const std::string longest(96, 'N');
  const auto fill = [&](int property) {
    auto& value = gx_property_info_ptr(session.file(), property).nvalue;
    longest.copy(value.char_, longest.size());
    value.len = static_cast<std::int32_t>(longest.size());
  };
  fill(lb_find_prop_net(session.file(), session.net("IN"), "NET")->gene.object_id);
  fill(gx_find_property_name(session.file(), session.pin(session.inst("R1"), 2).pin, "PIN"));
  select(session.net(longest));
  select_pin("R1", 2);
  EXPECT_EQ(session.run("GIVE V")[2], "# Net : \"" + longest + "\"");
  EXPECT_EQ(session.run("SELECT PIN Edit R1 " + longest),
            lines_t{" SELect PIN Edit R1 " + longest + " "});
}

TEST(SimulatorName, FollowsThePath) {
  const struct {
    std::string_view path, name;
  } cases[] = {{"/GROUND", "0"}, {"/X1/N3", "1:N3"},
               {"/N", "N"},      {"/XA/XB/GROUND", "A:XB:GROUND"},
               {"N", "N"},       {"", ""}};
  for (const auto& c : cases) EXPECT_EQ(kv_simulator_name(c.path), c.name) << c.path;
}

}  // namespace
