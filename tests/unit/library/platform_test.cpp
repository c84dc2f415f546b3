// The services of the operating system as the program sees them.
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/procedures.h"
#include "platform/raw_files.h"
#include "platform/stop_signals.h"
#include "platform/symbol_table.h"
#include "platform/timing.h"
#include "platform/wait.h"
#include "platform/words.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/scratch_directory.h"

// Found by its name in this program's own symbol table.
extern "C" [[gnu::used, gnu::section("test_entries")]] void kvp_test_entry(void* count,
                                                                           void* text) {
  *static_cast<int*>(count) = static_cast<int>(std::strlen(static_cast<char*>(text)));
}
extern "C" {
[[gnu::used, gnu::section("test_data")]] int kvp_test_data = 1;
}

namespace {
TEST(Platform, DelaysHaveALimit) {
  const auto delay = [](auto call) {
    say_all_on_stderr();
    call(30001);
  };
  const std::string text = " !! Error in xdelayms : TOO long : delayms = 30001    ";
  EXPECT_EXIT(delay(xdelayms), testing::ExitedWithCode(1), text);
  EXPECT_EXIT(delay(xdelayms2), testing::ExitedWithCode(1), text);
  std::signal(SIGALRM, [](int) {});  // does not end the sleep
  const itimerval soon{.it_interval = {}, .it_value = {0, 10000}};
  setitimer(ITIMER_REAL, &soon, nullptr);
  const auto before = xtimems();
  xdelayms(30);
  const auto waited = xdiftimems(before.tv_sec, before.tv_usec);
  EXPECT_GE(waited, 29);
  EXPECT_LT(waited, 5000);
  const auto since = xdiftimems(before.tv_sec - 10000, before.tv_usec);
  EXPECT_GE(since, 10000 * 1000);
  EXPECT_LT(since, 10000 * 1000 + 5000);
}

// An a.out file by its bytes: header, text, symbols, strings.
std::string aout_file(std::uint32_t magic, std::uint64_t header_offset) {
  const std::uint32_t text = header_offset == 0 ? 35 : 3;  // the text may begin with the header
  std::string bytes;
  const auto word = [&](std::uint32_t w) { bytes.append(reinterpret_cast<char*>(&w), 4); };
  const auto symbol = [&](std::uint32_t name, std::uint32_t value) {
    word(name);
    bytes += std::string("\x05\x01\x02\x00", 4);
    word(value);
  };
  for (const std::uint32_t w : {magic, text, 2U, 9U, 48U, 0U, 4U, 1U}) word(w);
  bytes.resize(header_offset + text + 2 + 4 + 1);  // text, data and both relocations
  symbol(4, 0x1111);
  symbol(4, 0x2222);       // the later one wins
  symbol(0x7FFFFFFF, 99);  // names outside the table
  symbol(3, 98);
  word(4 + 8);
  bytes += std::string("kvp_run\0", 8);
  return bytes;
}

// Ends by the signal when every wait ended by what came first.
[[noreturn]] void wait_for_everything() {
  int quiet[2], full[2];
  if (pipe(quiet) != 0 || pipe(full) != 0) std::exit(1);
  const int both[] = {-1, quiet[0], full[0]};
  for (const int ms : {30, 0})
    if (x_wait(both, ms).by != x_waking::timer) std::exit(2);
  signal(SIGALRM, [](int) {});
  alarm(1);  // no signal to end: the wait goes on
  const auto since = xtimems();
  if (x_wait(both, 1100).by != x_waking::timer) std::exit(3);
  if (xdiftimems(since.tv_sec, since.tv_usec) < 1090) std::exit(4);
  if (write(full[1], "x", 1) != 1) std::exit(5);
  const x_woken_t readable = x_wait(both, -1);
  if (readable.by != x_waking::readable || readable.descriptor != full[0]) std::exit(6);
  close(quiet[1]);  // its end can be read, too
  if (x_wait(both, -1).descriptor != quiet[0]) std::exit(7);

  rlimit all{}, few{};
  getrlimit(RLIMIT_NOFILE, &all);
  few = {2, all.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  if (x_wait(both, 10).by != x_waking::failed) std::exit(12);
  setrlimit(RLIMIT_NOFILE, &all);

  signal(SIGHUP, SIG_IGN);  // as nohup has it
  x_watch_stop_signals();
  raise(SIGHUP);
  if (x_stop_signal() != 0) std::exit(8);
  raise(SIGTERM);
  if (x_wait({}, -1).by != x_waking::signal) std::exit(15);
  raise(SIGINT);
  if (x_wait(both, -1).by != x_waking::signal || x_stop_signal() != SIGTERM) std::exit(9);
  if (x_wait(both, -1).by != x_waking::readable) std::exit(10);  // the signal was told
  raise(SIGXFSZ);
  raise(SIGXFSZ);
  x_survive_broken_pipes();
  raise(SIGPIPE);
  int late[2];  // what waits goes on waiting
  if (pipe(late) != 0) std::exit(13);
  const pid_t waiting = getpid();
  if (fork() == 0) {
    for (const int sent : {SIGPIPE, SIGXFSZ}) {
      xdelayms(10);
      kill(waiting, sent);
    }
    xdelayms(10);
    std::_Exit(static_cast<int>(write(late[1], "x", 1)));
  }
  char byte = 0;
  if (read(late[0], &byte, 1) != 1) std::exit(14);
  raise(SIGTERM);  // the second one ends the process
  std::exit(11);
}

TEST(Platform, AWaitEndsByWhateverComesFirst) {
  EXPECT_EXIT(wait_for_everything(), testing::KilledBySignal(SIGTERM), "");
}

TEST(SymbolTable, AoutFilesAreSearched) {
  scratch_directory directory;
  const std::string path = directory.path() / "program";
  const auto write = [&](std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
  };
  for (const auto& [magic, offset] : {std::pair{0413U, 1024U}, {0407U, 32U}, {0314U, 0U}}) {
    const std::string whole = aout_file(magic, offset);
    write(whole);
    EXPECT_EQ(xm_get_extid_offset(path.c_str(), "kvp_run"), 0x2222U);
    EXPECT_EQ(xm_get_extid_offset(path.c_str(), "kvp_ru"), 0U);
    x_nlist_t entries[2];
    entries[0].name = "kvp_run";
    EXPECT_EQ(nlist(path.c_str(), entries), 0);
    EXPECT_EQ(entries[0].type, 5);
    EXPECT_EQ(entries[0].other, 1);
    EXPECT_EQ(entries[0].desc, 2);

    for (std::size_t size = 0; size < whole.size(); size += size < offset ? 31 : 1) {
      write(std::string_view(whole).substr(0, size));
      entries[0].value = 7;
      EXPECT_EQ(nlist(path.c_str(), entries), -1) << size;
      EXPECT_EQ(entries[0].value, 7U);
    }
  }
  EXPECT_EQ(nlist(path.c_str(), nullptr), -1);
  EXPECT_EQ(errno, EINVAL);
  x_nlist_t none;
  EXPECT_EQ(nlist("/nowhere/program", &none), -1);
}

TEST(SymbolTable, AProcedureOfThisProgramIsFoundAndCalled) {
  for (const char* path : {"some_name_without_directory", "/proc/self/exe"}) {
    const auto address = xm_get_extid_offset(path, "kvp_test_entry", "test_entries");
    ASSERT_NE(address, 0U) << path;
    int count = 0;
    char text[] = "four";
    EXPECT_EQ(xprocargexe(address, &count, text), 0);
    EXPECT_EQ(count, 4);
  }
  EXPECT_EQ(xm_get_extid_offset("kivo", "kvp_test_entry", "other_entries"), 0U);
  EXPECT_EQ(xm_get_extid_offset("kivo", "kvp_no_such_entry"), 0U);
  EXPECT_EQ(xm_get_extid_offset("kivo", ""), 0U);
  EXPECT_EQ(xm_get_extid_offset("/nowhere/kivo", "main"), 0U);
  EXPECT_EQ(xm_get_extid_offset("/", "main"), 0U);
  EXPECT_EQ(xm_get_extid_offset("kivo", "kvp_test_data", "test_data"), 0U) << "no function";
  testing::internal::CaptureStdout();
  EXPECT_EQ(xm_get_extid_offset(("/" + std::string(98, 'x')).c_str(), "main"), 0U);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  testing::internal::CaptureStdout();
  EXPECT_EQ(xm_get_extid_offset(("/" + std::string(99, 'x')).c_str(), "main"), 0U);
  EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 45),
            " !!! Error in gx_getextid_offset(c) : len= 99");
  // A library without its full table has the names that others use.
  Dl_info library{};
  const auto used = reinterpret_cast<std::uintptr_t>(dlsym(RTLD_DEFAULT, "getppid"));
  ASSERT_NE(dladdr(reinterpret_cast<void*>(used), &library), 0);
  EXPECT_EQ(xm_get_extid_offset(library.dli_fname, "getppid"),
            used - reinterpret_cast<std::uintptr_t>(library.dli_fbase));
  // In a copy it is where the file says; one for another machine is not read.
  scratch_directory directory;
  const std::string copy = directory.path() / "copy";
  std::filesystem::copy_file("/proc/self/exe", copy);
  const auto in_copy = [&] { return xm_get_extid_offset(copy.c_str(), "kvp_test_entry"); };
  EXPECT_NE(in_copy(), 0U);
  EXPECT_NE(in_copy(), xm_get_extid_offset("kivo", "kvp_test_entry"));
  const auto put = [&](int at, char byte) {
    std::fstream(copy, std::ios::binary | std::ios::in | std::ios::out).seekp(at).put(byte);
    return in_copy();
  };
  constexpr int at_class = 4, at_section_size = 58;
  EXPECT_EQ(put(at_class, 1), 0U);
  EXPECT_NE(put(at_class, 2), 0U);
  EXPECT_EQ(put(at_section_size, 63), 0U);
}

TEST(Words, AreBounded) {
  char number[20];
  std::memset(number, 'x', sizeof number);
  EXPECT_EQ(xgetspucode(0x1234ABCD, number), 0);
  EXPECT_EQ(std::string(number, sizeof number), "1234abcd" + std::string(12, '\0'));
  std::string name = "KIVO_WORD" + std::string(100, 'x');
  testing::internal::CaptureStdout();
  EXPECT_EQ(xstrlen(std::string(98, 'a').c_str()), 98);
  EXPECT_EQ(xstrlen(std::string(99, 'a').c_str()), 99);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  setenv(name.substr(0, 98).c_str(), "cut", 1);
  testing::internal::CaptureStdout();
  EXPECT_STREQ(xgetenv(name.data()), "cut");
  EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 42),
            " !!! Error in xstrlen(c) : len= 99  'KIVO_");
  unsetenv(name.c_str());
}

TEST(SymbolTable, DamagedElfFilesAreReadWithinTheirBounds) {
  scratch_directory directory;
  const std::string path = directory.path() / "program";
  std::ifstream in("/bin/true", std::ios::binary);
  const std::string whole((std::istreambuf_iterator<char>(in)), {});
  ASSERT_GT(whole.size(), 1000U);
  const auto search = [&](const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
    return xm_get_extid_offset(path.c_str(), "kvp_none");
  };
  const std::size_t sections_at = whole.size() - 28 * 64;  // about where the section headers stand
  for (std::size_t i = 0; i < 400; ++i) {
    std::string damaged = whole;
    const std::size_t at = i < 64 ? i : sections_at + (i - 64) * 5;
    damaged[at] = static_cast<char>(damaged[at] ^ (i % 2 == 0 ? 0xFF : 0x40));
    EXPECT_EQ(search(damaged), 0U);
    EXPECT_EQ(search(whole.substr(0, whole.size() * i / 400)), 0U);
  }
}
}  // namespace
