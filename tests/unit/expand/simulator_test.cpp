// Requests to the simulator: what goes through the FIFO, and what the user is told.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <sstream>
#include <thread>

#include "expand/sim_request.h"
#include "expand/store.h"
#include "netlist/simulator_names.h"
#include "tests/support/design_session.h"
#include "tests/support/session_case.h"

namespace {

constexpr std::string_view resistor_sheet =
    "symbol r\n pin 1 0,0 IN\n pin 2 4,0 OUT\n prop CLASS=R\n"
    "sheet top\n part R1 r 0,0\n net IN\n  wire -4,0 R1.1\n net OUT\n  wire R1.2 9,0\n";

// A design that has been run, and the reader of its FIFO.
struct simulator_session {
  explicit simulator_session(std::string_view design) : session(design) {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.designfile = ::open("top/design_kv", O_RDWR | O_CREAT, 0660);
    for (const char* command :
         {"PRIMI CLASS", "PROP INS S CLASS", "PROP PIN S PIN", "PROP NET S NET", "RUN"}) {
      session.run(command);
    }
  }
  ~simulator_session() {
    ::close(kv_sext.designfile);
    if (reader >= 0) ::close(reader);
    kv_sext = kv_defref_exp_rec_t{};
  }

  void listen() {
    EXPECT_EQ(::mkfifo("top/Lorb_To_Spice_Fifo", 0600), 0);
    reader = ::open("top/Lorb_To_Spice_Fifo", O_RDONLY | O_NONBLOCK);
  }
  std::string received() const {
    std::string text(8192, '\0');
    const ssize_t n = ::read(reader, text.data(), text.size());
    text.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    return text;
  }
  void select(int id) { gx_set_object_selected(session.file(), id, true); }
  lines_t answer(const std::string& line) {
    std::istringstream words(line);
    std::string verb, what, name;
    int place = 1;
    words >> verb >> what >> name >> place;
    if (verb == "listen") {
      listen();
    } else if (verb == "received") {
      return split_lines(received());
    } else if (verb == "select") {
      select(what == "net"    ? session.net(name)
             : what == "inst" ? session.inst(name)
                              : session.pin(session.inst(name), place).pinpropfam);
    } else if (verb == "empty") {
      kv_empty_store();
    } else if (verb == "nameless") {  // a pin loses its name
      const auto pair = session.pin(session.inst(name), place);
      for (const int holder : {pair.pin, pair.pinpropfam})
        for (const int id : gx_children(session.file(), holder))
          gx_set_object_deleted(session.file(), id, true);
    } else {
      return session.run(line);
    }
    return {};
  }

  design_session session;
  int reader = -1;
};

class SimulatorTest : public ::testing::Test, protected simulator_session {
 protected:
  SimulatorTest() : simulator_session(resistor_sheet) {}
};

TEST(Simulator, IsSentWhatIsAskedFor) {
  expect_sessions<simulator_session>("session/simulator.txt");
}

const lines_t not_ready = {"# Send Data to SPICE : ", "# !! Sorry Spice is not ready ... ",
                           "# !! Exec again the WaitFor (WF) spice command ..."};

TEST_F(SimulatorTest, ARequestIsCutAndIsNoChangeToSave) {
  listen();
  kv_pext.save_to_do = true;
  session.run("SEND x");
  EXPECT_FALSE(kv_pext.save_to_do);
  EXPECT_EQ(KivoSpice_fifo_fd, -1);
  EXPECT_EQ(received(), "x\n");
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
  select(session.pin(session.inst("R1"), 2).pinpropfam);
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
