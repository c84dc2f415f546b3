// kivo-ngspice: ngspice at the other end of the FIFO.
//
// Writes the deck of a design (kvspice), starts "ngspice -p", hands over the requests of SENd and
// GIVe, sends what it answers to KIVO and writes its results into the design directory, where
// VALues FILe finds them. When RUN has written the design anew, the deck is made and run again.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "expand/sim_request.h"
#include "platform/raw_files.h"
#include "platform/usage.h"

extern char** environ;

namespace {

constexpr tool_t tool{
    "kivo-ngspice",
    "usage: kivo-ngspice [--save NAMES] [--simulator PROGRAM] DESIGN [INCLUDE...]\n"
    "Runs ngspice for a KIVO session on the design directory DESIGN: answers SENd and GIVe, and\n"
    "writes results.raw there after each run, for VALues FILe. A new RUN is simulated again. The\n"
    "INCLUDE files are models and analyses. Ends with KIVO, or at Control+C.\n"
    "  --save NAMES         values of devices to keep, see kvspice; id,gm,vgs,vds,vdsat,i unless\n"
    "                       given, none for \"\"\n"
    "  --simulator PROGRAM  instead of ngspice\n"
    "  --help               prints this\n"
    "  --version            prints the version\n"};

volatile std::sig_atomic_t stopped = 0;
void stop(int) { stopped = 1; }

// Takes the whole lines from the head of a text.
template <typename Take>
void take_lines(std::string& text, Take take) {
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != text.npos; begin = end + 1) {
    take(std::string_view(text).substr(begin, end - begin));
  }
  text.erase(0, begin);
}

// Appends what can be read at once; false at the end.
bool read_more(int fd, std::string& text) {
  std::array<char, 65536> piece;
  const ssize_t n = ::read(fd, piece.data(), piece.size());
  if (n > 0) text.append(piece.data(), static_cast<std::size_t>(n));
  return n > 0 || (n < 0 && (errno == EAGAIN || errno == EINTR));
}

bool write_all(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t n = ::write(fd, text.data(), text.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

// The FIFOs of a design, removed at the end where they were made.
class fifo_t {
 public:
  explicit fifo_t(std::string path) : path_(std::move(path)) {
    made_ = ::mkfifo(path_.c_str(), 0600) == 0;
  }
  ~fifo_t() {
    if (made_) ::unlink(path_.c_str());
  }
  fifo_t(const fifo_t&) = delete;
  fifo_t& operator=(const fifo_t&) = delete;

  // None when it is no FIFO, and for writing while nobody reads.
  x_descriptor open(int flags) const {
    x_descriptor fifo(::open(path_.c_str(), flags | O_NONBLOCK | O_CLOEXEC));
    struct stat info {};
    const bool is_fifo = fifo && ::fstat(fifo.get(), &info) == 0 && S_ISFIFO(info.st_mode);
    return is_fifo ? std::move(fifo) : x_descriptor();
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
  bool made_ = false;
};

// Lines to KIVO, while it listens.
class listener_t {
 public:
  explicit listener_t(const fifo_t& fifo) : fifo_(fifo) {}

  void tell(std::string_view line) {
    if (line != kv_answer_end) std::printf("%.*s\n", static_cast<int>(line.size()), line.data());
    std::fflush(stdout);
    look();
    if (end_ && !write_all(end_.get(), std::string(line) + "\n") && errno != EAGAIN) lose();
  }
  // Opens the FIFO where KIVO has done so.
  void look() {
    if (!end_) end_ = fifo_.open(O_WRONLY);
  }
  int descriptor() const { return end_.get(); }
  void lose() {
    end_.reset();
    has_left_ = true;
  }
  bool has_left() const { return has_left_; }

 private:
  const fifo_t& fifo_;
  x_descriptor end_;
  bool has_left_ = false;
};

// A child that reads commands and answers, with one pipe for each.
class simulator_t {
 public:
  simulator_t() = default;
  ~simulator_t() { end(); }
  simulator_t(const simulator_t&) = delete;
  simulator_t& operator=(const simulator_t&) = delete;

  bool start(const std::string& program) {
    int to[2], from[2];
    if (::pipe2(to, O_CLOEXEC) != 0) return false;
    to_ = x_descriptor(to[1]);
    const x_descriptor its_input(to[0]);
    if (::pipe2(from, O_CLOEXEC) != 0) return false;
    from_ = x_descriptor(from[0]);
    const x_descriptor its_output(from[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, its_input.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, its_output.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, its_output.get(), STDERR_FILENO);
    // In a group of its own: Control+C is for this program, which ends it in order.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM}) sigaddset(&defaults, signal);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
    std::string name = program, option = "-p";
    char* const words[] = {name.data(), option.data(), nullptr};
    const int failed =
        ::posix_spawnp(&pid_, program.c_str(), &actions, &attributes, words, environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (failed != 0) pid_ = 0;
    errno = failed;
    return failed == 0;
  }
  int descriptor() const { return from_.get(); }
  bool say(std::string_view commands) { return write_all(to_.get(), commands); }

  void end() {
    if (pid_ == 0) return;
    say("quit\n");
    to_.reset();
    from_.reset();
    constexpr int looks = 40;
    for (int i = 0; i < looks && ::waitpid(pid_, nullptr, WNOHANG) == 0; ++i) {
      if (i == looks / 2) ::kill(pid_, SIGTERM);
      if (i == looks - 1) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
      }
      ::usleep(50000);
    }
    pid_ = 0;
  }

 private:
  pid_t pid_ = 0;
  x_descriptor to_, from_;
};

bool is_run(std::string_view command) {
  constexpr std::array<std::string_view, 11> runs{"run", "tran", "ac",   "dc",     "op",   "noise",
                                                  "tf",  "pz",   "sens", "resume", "disto"};
  return std::ranges::find(runs, command.substr(0, command.find(' '))) != runs.end();
}

class link_t {
 public:
  link_t(const std::string& design, std::string save, std::vector<std::string> includes)
      : design_(design),
        save_(std::move(save)),
        includes_(std::move(includes)),
        requests_(design + "/" + std::string(kv_fifo_name)),
        answers_(design + "/" + std::string(kv_answer_fifo_name)),
        kivo_(answers_) {}

  int run(const std::string& program) {
    // Open for writing too, so that the FIFO does not end with each writer.
    const x_descriptor requests = requests_.open(O_RDWR);
    if (!requests || !answers_.open(O_RDWR)) return fail("no FIFO in " + design_);
    if (!simulator_.start(program)) return fail(program + ": " + std::strerror(errno));
    say_set_up();
    while (stopped == 0 && !kivo_.has_left()) {
      look_for_run();
      hand_over();
      if (!wait(requests.get())) return fail(program + " has ended");
    }
    return 0;
  }

 private:
  static int fail(const std::string& message) {
    tool_complain(tool, message);
    return 1;
  }
  std::string results() const { return design_ + "/results.raw"; }

  void say_set_up() { ask("", "set filetype=binary\nunset askquit\n", false); }

  // Commands, and a mark after them: what comes before the mark answers them.
  void ask(std::string request, std::string_view commands, bool has_results) {
    asked_ = std::move(request);
    has_results_ = has_results;
    mark_ = "kivo-mark-" + std::to_string(++nb_of_marks_);
    simulator_.say(std::string(commands) + "echo " + mark_ + "\n");
  }

  // RUN has written the design file: its deck, its simulation.
  void look_for_run() {
    if (!mark_.empty()) return;
    const std::string file = design_ + "/design_kv";
    std::error_code missing;
    const auto time = std::filesystem::last_write_time(file, missing);
    if (missing || time == run_time_ || std::filesystem::file_size(file, missing) == 0) return;
    run_time_ = time;
    if (!make_deck()) {
      // It may still be being written.
      constexpr int most_tries = 5;
      if (++nb_of_tries_ < most_tries) {
        run_time_ = {};
      } else {
        nb_of_tries_ = 0;
        kivo_.tell("kvspice could not write the deck");
      }
      return;
    }
    nb_of_tries_ = 0;
    // kvspice has waited until the file was whole: what was written meanwhile is in the deck.
    run_time_ = std::filesystem::last_write_time(file, missing);
    std::string commands = is_loaded_ ? "destroy all\nremcirc\n" : "";
    is_loaded_ = true;
    commands += "source " + deck() + "\nrun\n" + write_results();
    ask("", commands, true);
  }
  std::string deck() const { return design_ + "/simulation.cir"; }
  // Written aside, so that nobody reads half of them.
  std::string write_results() const { return "write " + results() + ".new\n"; }

  bool make_deck() const {
    std::error_code unknown;
    const auto own = std::filesystem::read_symlink("/proc/self/exe", unknown);
    std::string program = unknown ? "kvspice" : (own.parent_path() / "kvspice").string();
    if (::access(program.c_str(), X_OK) != 0) program = "kvspice";
    std::vector<std::string> words{program, "-o", deck()};
    if (!save_.empty()) words.insert(words.end(), {"--save", save_});
    words.push_back(design_);
    words.insert(words.end(), includes_.begin(), includes_.end());
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t pid = 0;
    int status = 0;
    return ::posix_spawnp(&pid, program.c_str(), nullptr, nullptr, arguments.data(), environ) ==
               0 &&
           ::waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  void hand_over() {
    if (!mark_.empty() || waiting_.empty()) return;
    const std::string request = std::move(waiting_.front());
    waiting_.pop_front();
    const bool runs = is_run(request);
    ask(request, request + "\n" + (runs ? write_results() : ""), runs);
  }

  // Until something has come or the design file was written, 200 ms at most; false when the
  // simulator is gone.
  bool wait(int requests) {
    kivo_.look();
    watch_design_file();
    std::array<pollfd, 4> from{{{requests, POLLIN, 0},
                                {simulator_.descriptor(), POLLIN, 0},
                                {kivo_.descriptor(), 0, 0},
                                {watch_.get(), POLLIN, 0}}};
    if (::poll(from.data(), from.size(), 200) <= 0) return true;
    if ((from[3].revents & POLLIN) != 0) {
      std::array<char, 4096> events;  // what they say is asked of the file
      while (::read(watch_.get(), events.data(), events.size()) > 0) {
      }
    }
    if ((from[2].revents & (POLLERR | POLLHUP)) != 0) kivo_.lose();
    if ((from[0].revents & POLLIN) != 0) {
      read_more(requests, request_text_);
      take_lines(request_text_, [this](std::string_view line) { waiting_.emplace_back(line); });
    }
    if (from[1].revents == 0) return true;
    const bool goes_on = read_more(simulator_.descriptor(), answer_text_);
    take_lines(answer_text_, [this](std::string_view line) { take_answer(line); });
    return goes_on;
  }

  // Again and again, as it may not be there yet, or be another one.
  void watch_design_file() {
    if (watch_) ::inotify_add_watch(watch_.get(), (design_ + "/design_kv").c_str(), IN_MODIFY);
  }

  // Prompts and the simulator's echo of commands are left out; of a run of its own accord only what
  // is measured or wrong is printed.
  void take_answer(std::string_view line) {
    constexpr std::string_view prompt = "ngspice ";
    if (line == mark_) return end_answer();
    if (line.empty() || (line.starts_with(prompt) && line.find(" -> ") != line.npos)) return;
    if (line.find("kivo-mark-") != line.npos) return;
    const auto has = [line](std::string_view word) { return line.find(word) != line.npos; };
    const bool is_told =
        !asked_.empty() || has("rror") || has("ERROR") || has("arning") || has(" = ");
    if (is_told && nb_of_lines_++ < most_lines) kivo_.tell(line);
  }
  void end_answer() {
    mark_.clear();
    if (nb_of_lines_ > most_lines) kivo_.tell("... and more");
    nb_of_lines_ = 0;
    if (has_results_) put_results_in_place();
    if (!asked_.empty()) kivo_.tell(kv_answer_end);
  }
  void put_results_in_place() {
    const std::string made = results() + ".new";
    if (::rename(made.c_str(), results().c_str()) == 0) {
      kivo_.tell("results : " + results());
    } else {
      kivo_.tell("no results");
    }
  }

  static constexpr int most_lines = 200;  // of an answer

  std::string design_, save_;
  std::vector<std::string> includes_;
  fifo_t requests_, answers_;
  listener_t kivo_;
  simulator_t simulator_;
  const x_descriptor watch_{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
  std::filesystem::file_time_type run_time_{};
  bool is_loaded_ = false;
  std::deque<std::string> waiting_;
  std::string request_text_, answer_text_;
  std::string asked_, mark_;  // the request and the mark that are on the way; none: idle
  bool has_results_ = false;
  int nb_of_marks_ = 0, nb_of_lines_ = 0, nb_of_tries_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::string_view save = "id,gm,vgs,vds,vdsat,i", program = "ngspice";
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "--save", .value = &save},
                                   {.name = "--simulator", .value = &program}};
  if (const auto ended = tool_read(tool, argc, argv, options, words)) return *ended;
  if (words.empty()) return tool_usage_error(tool, "no DESIGN given");
  std::signal(SIGINT, stop);
  std::signal(SIGTERM, stop);
  std::signal(SIGPIPE, SIG_IGN);
  std::string design(words[0]);
  while (design.size() > 1 && design.ends_with('/')) design.pop_back();
  return link_t(design, std::string(save), {words.begin() + 1, words.end()})
      .run(std::string(program));
}
