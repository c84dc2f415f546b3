#include "app/values/answers.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "app/state.h"
#include "app/values/shown_values.h"
#include "app/values/waves.h"
#include "expand/sim_request.h"
#include "gx/db/file/file_state.h"
#include "gx/display/input/cursor.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/vext.h"
#include "platform/raw_files.h"
#include "platform/wait.h"

namespace {

constexpr std::size_t longest_answer = 190;  // characters of a line

x_descriptor answer_fifo;
std::string unfinished_line;
bool are_awaited = false, has_ended = false;

std::string in_design(std::string_view name) {
  const auto& top = gx_at(gx_files.filear, 1);
  if (gx_files.num_file_open < 1 || top.dirname.len == 0) return "";
  return std::string(gx_view(top.dirname)) + "/" + std::string(name);
}

void tell_answer(std::string_view line) {
  if (line == kv_answer_end) {
    has_ended = true;
    return;
  }
  std::string text(line.substr(0, longest_answer));
  std::ranges::replace_if(
      text, [](char c) { return c < ' ' || c > '~'; }, ' ');
  gx_tell("# ", text);
}

}  // namespace

int kv_answer_descriptor() {
  if (gx_vext.menu_drawn) return -1;  // a picture would cover the menu
  if (answer_fifo) return answer_fifo.get();
  const std::string path = in_design(kv_answer_fifo_name);
  if (path.empty()) return -1;
  x_descriptor fifo(xfopen(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0));
  struct stat info {};
  if (fifo && ::fstat(fifo.get(), &info) == 0 && S_ISFIFO(info.st_mode)) {
    answer_fifo = std::move(fifo);
  }
  return answer_fifo.get();
}

void kv_read_answers() {
  std::array<char, 65536> piece;
  const ssize_t n = xfread(answer_fifo.get(), piece.data(), piece.size());
  if (n < 0 && errno == EAGAIN) return;
  if (n <= 0) {  // the other end is closed
    answer_fifo.reset();
    unfinished_line.clear();
    return;
  }
  unfinished_line.append(piece.data(), static_cast<std::size_t>(n));
  {
    const gx_list_batch_t batch;
    std::size_t begin = 0;
    for (std::size_t end; (end = unfinished_line.find('\n', begin)) != unfinished_line.npos;
         begin = end + 1) {
      tell_answer(std::string_view(unfinished_line).substr(begin, end - begin));
    }
    unfinished_line.erase(0, begin);
    if (unfinished_line.size() > longest_answer) unfinished_line.resize(longest_answer);
  }
  if (!kv_pext.values_shown.any() && !kv_waves_are_shown()) return;
  gx_rectangle_erase();
  kv_redraw_values();
}

void kv_await_answers() { are_awaited = true; }

void kv_ask_simulator(std::string_view request) {
  constexpr int longest_silence_ms = 10000;
  // Opened before, so that the other end sees a reader.
  if (are_awaited) kv_answer_descriptor();
  if (!kv_send_request(request) || !are_awaited) return;
  has_ended = false;
  while (!has_ended && answer_fifo) {
    const int descriptor = answer_fifo.get();
    const x_woken_t woken = x_wait({&descriptor, 1}, longest_silence_ms);
    if (woken.by == x_waking::timer)
      return gx_report(gx_line_kind::warning, "# !! Warning : No answer of the simulator in 10 s ");
    if (woken.by != x_waking::readable) return;
    kv_read_answers();
  }
}

std::string kv_results_of_link() { return in_design("results.raw"); }
