#include "gx/text/text_files.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/record_fill.h"
#include "gx/text/strings.h"
#include "platform/files.h"
#include "platform/shell.h"

namespace {
constexpr std::string_view default_product = "/users/velmoran";
constexpr std::int32_t max_line = 198;
constexpr mode_t creation_mode = 0660;

// Whether the path can be opened as a file of text; one that is to be written is made.
bool probe(const std::string& path, bool rdonly) {
  if (rdonly) return static_cast<bool>(x_open_regular(path));
  const int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  return static_cast<bool>(x_descriptor(xfopen(path.c_str(), flags, creation_mode)));
}

struct opening_t {
  x_file file;
  bool probed = false;
  gx_string_record_t path;  // as it was opened
  bool writes = false;
  int error = 0;
};

opening_t open_text(std::string_view path, char mode, bool rdonly) {
  const gx_string_record_t asked = gx_string(path);
  gx_debug(" GX_POPEN_FILE : file_name : \"%s\"  rorw : %c  rdonly : %s\n", asked.char_, mode,
           rdonly ? "TRUE" : "FALSE");
  opening_t result;
  result.path = gx_resolve_path(path);
  const std::string resolved(gx_view(result.path));
  result.probed = probe(resolved, rdonly);
  result.error = errno;
  if (!result.probed) return result;
  gx_pause(10);
  const char upper = gx_upper_case(mode);
  if (upper != 'R' && upper != 'W')
    gx_debug("!!! ( gx_popen_file ) rorw invalid  : \"%s\" %c\n", result.path.char_, mode);
  result.writes = upper == 'W';
  result.file = result.writes ? x_create_file(resolved, false) : x_open_regular_file(resolved);
  result.error = errno;
  if (result.file) gx_debug(" GX_POPEN_FILE : \"%s\" open\n", result.path.char_);
  return result;
}
}  // namespace

gx_string_record_t gx_get_velmoran() {
  const char* value = std::getenv("VELMORAN");
  const std::string_view text = value == nullptr ? std::string_view{} : value;
  if (text.empty()) return gx_string(default_product);
  // The environment is not ours: what a record cannot hold becomes blank or is cut.
  gx_string_record_t string;
  for (const char c : text.substr(0, gx_max_string_length - 1))
    string.char_[string.len++] = gx_printable(c) ? c : ' ';
  return string;
}

gx_string_record_t gx_resolve_path(std::string_view path) {
  std::string full;
  if (path.starts_with(gx_product_word)) {
    full = gx_view(gx_get_velmoran());
    path.remove_prefix(gx_product_word.size());
  }
  full += path;
  return gx_string(std::string_view(full).substr(0, gx_max_path));
}

std::FILE* gx_popen_file(std::string_view path, char mode, bool rdonly) {
  opening_t opening = open_text(path, mode, rdonly);
  if (opening.probed && !opening.file && gx_front().ends_without_file) {
    std::printf("?? gx_popen_file : impossible to open file_name :'%s' (for %c) \n",
                opening.path.char_, opening.writes ? 'W' : 'R');
    const auto why = opening.writes ? x_why_unwritten(opening.error) : x_why(opening.error);
    std::printf("?? %s\n", why.c_str());
    std::exit(0);
  }
  errno = opening.error;
  return opening.file.release();
}

std::FILE* gx_popen_filei(std::string_view path, char mode, bool rdonly) {
  opening_t opening = open_text(path, mode, rdonly);
  if (!opening.file)
    std::printf("!!! ( gx_popen_filei ) impossible to open file  : \"%s\"\n", opening.path.char_);
  errno = opening.error;
  return opening.file.release();
}

bool gx_read_one_line(std::FILE* file, gx_string_record_t& string) {
  string.len = 0;
  int c = std::fgetc(file);
  const bool at_end = c == EOF;
  while (c != EOF && c != '\n') {
    if (string.len == max_line) {  // the rest of the line is the next call's
      std::ungetc(c, file);
      break;
    }
    const char byte = static_cast<char>(c);
    string.char_[string.len++] = gx_printable(byte) ? byte : ' ';
    c = std::fgetc(file);
  }
  string.char_[string.len] = 0;
  return !at_end;
}

void gx_system(const gx_string_record_t& command, bool (*stop_asked)()) {
  gx_check_string(command);
  std::string_view text = gx_view(command);
  if (text.size() >= gx_max_string_length - 1) return;
  if (!text.empty() && (text[0] == '\'' || text[0] == '"')) {
    text.remove_prefix(1);
    if (!text.empty()) text.remove_suffix(1);
  }
  xshell_run(std::string(text).c_str(), stop_asked);
}
