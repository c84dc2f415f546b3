// What is opened, written and put in place, and what a command line and a shell are given.
#include "platform/files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/json.h"
#include "platform/mapped_file.h"
#include "platform/shell.h"
#include "platform/usage.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/scratch_directory.h"

namespace {

namespace fs = std::filesystem;

std::string synced;  // the names of what was put on the disk
int sync_error = 0;
}  // namespace

// In place of the library's.
extern "C" int fsync(int file) {
  synced += fs::read_symlink("/proc/self/fd/" + std::to_string(file)).filename().string() + " ";
  errno = sync_error;
  return sync_error == 0 ? 0 : -1;
}

namespace {

class Files : public testing::Test {
 protected:
  void SetUp() override {
    directory_.write("old", "old text");
    fs::create_symlink("old", directory_.file("link"));
    fs::create_directory(directory_.file("dir"));
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  }
  std::string path(std::string_view name) const { return directory_.file(name).string(); }
  std::string names() const {
    std::vector<std::string> all;
    for (const auto& entry : fs::directory_iterator(directory_.path()))
      all.push_back(entry.path().filename());
    std::ranges::sort(all);
    std::string line;
    for (const auto& name : all) line += name + " ";
    return line;
  }
  scratch_directory directory_;
};

TEST_F(Files, OnlyRegularOnesAreRead) {
  std::string bytes;
  EXPECT_TRUE(x_read_regular(path("link"), bytes, 100));
  EXPECT_EQ(bytes, "old text");
  EXPECT_TRUE(x_read_regular(path("old"), bytes, 3));
  EXPECT_EQ(bytes, "old");
  const std::pair<const char*, const char*> refused[] = {{"none", "No such file or directory"},
                                                         {"old/none", "Not a directory"},
                                                         {"dir", "Is a directory"},
                                                         {"pipe", "Not a regular file"}};
  for (const auto& [name, why] : refused) {
    EXPECT_FALSE(x_read_regular(path(name), bytes, 100)) << name;
    const int error = errno;
    EXPECT_EQ(x_why_unread(error), why);
    EXPECT_TRUE(x_is_missing(error)) << name;
  }
  EXPECT_FALSE(x_is_missing(EACCES));
  const x_descriptor dir(::open(path("dir").c_str(), O_RDONLY));
  EXPECT_FALSE(x_read_whole(dir.get(), bytes, 100));
  EXPECT_FALSE(x_write_at(dir.get(), "x", 0));
}

TEST_F(Files, MadeOnesAreCutAndNeverWrittenThroughALink) {
  const auto before = umask(0);
  x_close(x_create_file(path("made"), false));
  umask(before);
  EXPECT_EQ(fs::status(directory_.file("made")).permissions(), fs::perms(0660));
  const auto made = [&](std::string_view name, bool through_link) {
    errno = 0;
    x_file file = x_create_file(path(name), through_link);
    if (!file) return x_why_unwritten(errno);
    std::fputs("new", file.get());
    return std::string(x_close(std::move(file)) ? "made" : "lost");
  };
  EXPECT_EQ(made("link", false), "is a symbolic link");
  EXPECT_EQ(directory_.read("old"), "old text");
  EXPECT_EQ(made("link", true), "made");
  EXPECT_EQ(directory_.read("old"), "new");
  EXPECT_EQ(made("dir", true), "Is a directory");
  EXPECT_NE(made("pipe", true), "made");  // nobody reads it: no waiting
  const int reader = ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(made("pipe", true), "Invalid argument");
  ::close(reader);
  x_file fresh = x_create_new_file(path("link"));
  std::fputs("fresh", fresh.get());
  EXPECT_TRUE(x_close(std::move(fresh)));
  EXPECT_FALSE(fs::is_symlink(directory_.file("link")));
  EXPECT_EQ(directory_.read("link") + directory_.read("old"), "freshnew");
  EXPECT_FALSE(x_create_new_file(path("dir")));
  EXPECT_EQ(made("/dev/full", true), "lost");
}

TEST_F(Files, OneInPlaceOfAnotherComesWhole) {
  const auto replace = [](const std::string& name) {
    synced.clear();
    return x_replace_file(name, "replaced") ? synced : x_why(errno);
  };
  const std::string there = directory_.path().filename().string() + " ";
  EXPECT_EQ(replace(path("old")), "old.new " + there);
  EXPECT_EQ(directory_.read("link"), "replaced");
  const auto before = fs::current_path();
  fs::current_path(directory_.path());
  EXPECT_EQ(replace("named"), "named.new " + there);
  fs::current_path(before);
  sync_error = EIO;
  EXPECT_EQ(replace(path("named")), "Input/output error");
  sync_error = 0;
  fs::remove(directory_.file("named"));
  EXPECT_FALSE(x_replace_file(path("dir"), "x"));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_FALSE(x_replace_file(path("pipe"), "x"));
  EXPECT_EQ(errno, EINVAL);
  EXPECT_FALSE(x_replace_file(path("none/new"), "x"));
  EXPECT_EQ(errno, ENOENT);
  const auto write = [&](const std::string& name, bool is_finished) {
    x_fresh_file file(name);
    if (!file) return false;
    std::fputs("fresh", file.get());
    return !is_finished || file.put_in_place();
  };
  EXPECT_TRUE(write(path("link"), false));  // given up
  EXPECT_EQ(directory_.read("old"), "replaced");
  EXPECT_TRUE(write(path("link"), true));
  EXPECT_TRUE(fs::is_symlink(directory_.file("link")));
  EXPECT_EQ(directory_.read("old"), "fresh");
  EXPECT_TRUE(write(path("new"), true));
  EXPECT_FALSE(write(path("dir"), true));
  EXPECT_FALSE(write(path("none/new"), true));
  EXPECT_TRUE(write("/dev/null", true));
  EXPECT_FALSE(write("/dev/full", true));
  EXPECT_EQ(errno, ENOSPC);
  x_fresh_file full("/dev/full");
  std::setvbuf(full.get(), nullptr, _IONBF, 0);
  std::fputs("lost", full.get());
  errno = EPERM;
  EXPECT_FALSE(full.close());  // all of it was refused before
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(names(), "dir link new old pipe ");
}

TEST_F(Files, AMappedOneCutByOthersHasZeros) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  directory_.write("big", std::string(3 * page, 'b'));
  const int fd = ::open(path("big").c_str(), O_RDONLY);
  std::vector<x_mapped_file> files(9);
  for (std::size_t i = 0; i < 8; ++i) ASSERT_TRUE(files[i].map(fd, 3 * page)) << i;
  EXPECT_FALSE(files[8].map(fd, page));
  files[3] = {};
  EXPECT_TRUE(files[8].map(fd, 3 * page));
  x_mapped_file& file = files[8];
  EXPECT_EQ(file.bytes()[3 * page - 1], 'b');
  EXPECT_FALSE(file.is_cut());
  fs::resize_file(directory_.file("big"), page);
  EXPECT_EQ(file.bytes()[2 * page], 0);
  EXPECT_EQ(file.bytes()[page - 1], 'b');
  EXPECT_TRUE(file.is_cut());
  EXPECT_FALSE(files[0].is_cut());
  fs::resize_file(directory_.file("big"), 0);
  EXPECT_EQ(files[0].bytes()[0], 0);
  EXPECT_TRUE(files[0].is_cut());
  fs::resize_file(directory_.file("big"), page);
  // Any other memory is no matter of it.
  const auto touch = [&](void (*before)()) {
    before();
    x_mapped_file again;
    files[2] = {};
    again.map(fd, page);
    const auto* bytes =
        static_cast<const char*>(::mmap(nullptr, 2 * page, PROT_READ, MAP_SHARED, fd, 0));
    std::exit(bytes[page]);
  };
  EXPECT_EXIT(touch([] { std::signal(SIGBUS, SIG_DFL); }), testing::KilledBySignal(SIGBUS), "");
  EXPECT_EXIT(touch([] { std::signal(SIGBUS, [](int) { _exit(5); }); }), testing::ExitedWithCode(5),
              "");
  const auto with_place = [] {
    struct sigaction action {};
    action.sa_sigaction = [](int, siginfo_t* info, void*) { _exit(info->si_code == BUS_ADRERR); };
    action.sa_flags = SA_SIGINFO;
    ::sigaction(SIGBUS, &action, nullptr);
  };
  EXPECT_EXIT(touch(with_place), testing::ExitedWithCode(1), "");
  ::close(fd);
}

TEST(ShellCommands, GiveTheirOutputAndEndWhenAsked) {
  const auto read = [](const char* command, int looks) {
    x_shell shell(command, [&] { return looks-- == 0; });
    std::string text;
    for (int c; (c = std::fgetc(shell.output())) != EOF;) text += static_cast<char>(c);
    return text + (shell.is_stopped() ? " stopped" : "");
  };
  EXPECT_EQ(read("printf 'a b'; exit 3", 1000), "a b");
  EXPECT_EQ(read("printf early; exec sleep 100", 4), "early stopped");
  EXPECT_EQ(read("trap '' TERM; printf deaf; while :; do sleep 9; done", 4), "deaf stopped");
  // It has ended when the shell is gone.
  const std::string pid = read("echo $$; exec sleep 100", 4);
  EXPECT_NE(::kill(std::stoi(pid), 0), 0);
  EXPECT_EQ(errno, ESRCH);
  EXPECT_EQ(x_shell_word("a/b-1.c:@%,=+_Z"), "a/b-1.c:@%,=+_Z");
  EXPECT_EQ(x_shell_word(""), "''");
  EXPECT_EQ(x_shell_word("it's $5"), "'it'\\''s $5'");
  scratch_directory directory;
  const std::string mark = directory.file("mark").string();
  read(("trap 'echo >" + mark + "; exit' TERM; while :; do sleep .1; done").c_str(), 4);
  EXPECT_TRUE(fs::exists(mark)) << "asked to end before it is killed";
  fs::remove(mark);
  xshell_run(("echo >" + mark).c_str(), [] { return false; });
  EXPECT_TRUE(fs::exists(mark));
  x_run_program("/bin/rm", mark.c_str());
  EXPECT_FALSE(fs::exists(mark));
  // What was said before comes before.
  std::FILE* const said = std::fopen(mark.c_str(), "a");
  std::fputs("first ", said);
  xshell_run(("printf then >>" + mark).c_str(), [] { return false; });
  std::fclose(said);
  EXPECT_EQ(directory.read("mark"), "first then");
  fs::remove(mark);
  const auto disabled = [&] {
    std::signal(SIGCHLD, SIG_IGN);  // nobody is told of their end
    xshell_run("true", [] { return false; });
    const pid_t other = fork();
    while (other == 0) pause();
    xshell_disable();
    xshell_run(("echo >" + mark).c_str(), [] { return false; });
    const bool has_output = x_shell("true", [] { return false; }).output() != nullptr;
    ::kill(other, SIGKILL);
    std::exit(fs::exists(mark) || has_output ? 1 : 0);
  };
  EXPECT_EXIT(disabled(), testing::ExitedWithCode(0), "");
}

TEST(Json, KeepsEveryByte) {
  std::string json = "x";
  x_append_json(json, "a\"\\\n~\x7f\xe9 ");
  EXPECT_EQ(json, R"(x"a\"\\\u000a~\u007f\u00e9 ")");
}

// A command line, as what became of it.
TEST(CommandLines, OptionsValuesAndWords) {
  constexpr tool_t tool{.name = "tool", .help = "usage: tool\n"};
  const auto read = [&](std::vector<const char*> line, std::size_t last = SIZE_MAX) {
    line.insert(line.begin(), "tool");
    std::string_view output;
    std::vector<std::string_view> more, words;
    bool quiet = false;
    const tool_option_t options[] = {{.name = "-o", .value = &output},
                                     {.name = "--output", .value = &output},
                                     {.name = "-q", .flag = &quiet},
                                     {.name = "--quiet", .flag = &quiet},
                                     {.name = "-D", .values = &more}};
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const auto ended = tool_read(tool, static_cast<int>(line.size()),
                                 const_cast<char**>(line.data()), options, words, last);
    std::fflush(stdout);
    std::string text = testing::internal::GetCapturedStdout();
    text += split_lines(testing::internal::GetCapturedStderr() + "\n").front();
    if (ended) return text + "=" + std::to_string(*ended);
    text = (quiet ? "q o:" : "o:") + std::string(output);
    for (const auto value : more) text += " D:" + std::string(value);
    for (const auto word : words) text += " " + std::string(word);
    return text;
  };
  EXPECT_EQ(read({"a", "-o", "f", "-q", "b"}), "q o:f a b");
  EXPECT_EQ(read({"-of", "-", "--quiet", "-Dx", "-D", "y"}), "q o:f D:x D:y -");
  EXPECT_EQ(read({"--output=f", "--", "-q"}), "o:f -q");
  EXPECT_EQ(read({"--output", "f=", ""}), "o:f= ");
  EXPECT_EQ(read({"a", "b", "-q", "--help"}, 2), "o: a b -q --help");
  EXPECT_EQ(read({"-qx"}), "tool: unknown option -qx=2");
  EXPECT_EQ(read({"--quiet=1"}), "tool: unknown option --quiet=1=2");
  EXPECT_EQ(read({"--outputf"}), "tool: unknown option --outputf=2");
  EXPECT_EQ(read({"-q", "--output"}), "tool: --output needs a value=2");
  EXPECT_EQ(read({"--help"}), "usage: tool\n=0");
  EXPECT_TRUE(read({"--version"}).starts_with("tool (KIVO) "));
  const auto full = [&](int buffering) {
    char name[] = "tool";
    char* line[] = {name};
    std::vector<std::string_view> words;
    tool_read(tool, 1, line, {}, words);
    std::raise(SIGPIPE);  // who reads the output may go away
    std::freopen("/dev/full", "w", stdout);
    std::setvbuf(stdout, nullptr, buffering, 100);
    tool_print(stdout, "lost");
    std::exit(tool_end(tool, 0));
  };
  for (const int buffering : {_IOFBF, _IONBF})  // refused at the end, and before
    EXPECT_EXIT(full(buffering), testing::ExitedWithCode(1),
                "tool: standard output: No space left");
}

}  // namespace
