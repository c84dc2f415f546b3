// The menu file: reading it into the tree and writing the tree into it.
//
// A line is "#" and a comment, or a level digit 1..4, the display string in single quotes and, for
// a line with a command, the command in single quotes. The tree comes from the order of the lines.
#include "gx/display/input/menu_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>

#include "gx/display/input/menu_state.h"
#include "gx/display/input/menu_tree.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/files.h"

namespace {

std::string quoted(std::string_view head, std::string_view text) {
  return std::string(head).append("\"").append(text).append("\"");
}

void show_error(std::string_view echo, std::string_view message, std::string_view text) {
  gx_display_list(echo);
  gx_report(gx_line_kind::error, quoted(message, text));
}

void refuse_line(std::string_view trace, std::string_view message, std::string_view line) {
  gx_debug_line(quoted(trace, line) + " ");
  show_error("# $rmenu ", message, line);
}

// The text between the next two single quotes from `pos` on; `pos` moves after the second.
std::optional<std::string_view> next_quoted(std::string_view line, std::size_t& pos) {
  const std::size_t open = line.find('\'', pos);
  if (open == std::string_view::npos) return {};
  const std::size_t close = line.find('\'', open + 1);
  if (close == std::string_view::npos) return {};
  pos = close + 1;
  return line.substr(open + 1, close - open - 1);
}

// The place in the tree of each line in turn.
struct line_place_t {
  std::array<int, gx_max_menu_levels> counter{};
  std::size_t previous = 0;

  std::span<const int> next(std::size_t level) {
    const bool deeper = level > previous;
    if (!deeper) ++counter[level - 1];
    for (std::size_t k = deeper ? level - 1 : level; k < counter.size(); ++k) counter[k] = 1;
    previous = level;
    return std::span(counter).first(level);
  }
};

// Defines the entry of one line; false when the line ends the reading.
bool read_entry(std::string_view line, line_place_t& place) {
  if (line.empty() || line[0] < '1' || line[0] > '4') {
    refuse_line("!!!  menu_file  : invalid menu level : ", "# !!!   invalid menu level : ", line);
    return false;
  }
  std::size_t pos = 1;
  const auto display = next_quoted(line, pos);
  if (!display) {
    const bool no_quote = line.find('\'', pos) == std::string_view::npos;
    refuse_line(no_quote ? "!!!  menu_file  :(1) invalid menu disp string : "
                         : "!!!  menu_file  :(2) invalid menu disp string : ",
                "# !!!   invalid menu disp string: ", line);
    return false;
  }
  const auto command = next_quoted(line, pos);
  const auto index = place.next(static_cast<std::size_t>(line[0] - '0'));
  // A thirteenth line, or one below a line that is not there.
  if (!std::ranges::all_of(index, [](int i) { return i >= 1 && i <= gx_max_menu_lines; })) {
    refuse_line(
        "!!!  menu_file  : no place in the menu : ", "# !!!   no place in the menu : ", line);
    return false;
  }
  gx_def_menu_rec(index, *display, command.has_value(), command.value_or(""));
  return true;
}

constexpr std::string_view line_heads[] = {"1 '", "2   '", "3     '", "4       '"};

void put_text(std::FILE* file, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), file);
}

// Writes the lines below `index`, depth first.
void print_below(std::FILE* file, std::array<int, gx_max_menu_levels>& index, std::size_t level) {
  if (level > index.size()) return;
  for (int i = 1; i <= gx_max_menu_lines; ++i) {
    index[level - 1] = i;
    if (const gx_menu_rec_t* record = gx_ptrto_menu_rec(std::span(index).first(level))) {
      put_text(file, line_heads[level - 1]);
      put_text(file, gx_view(record->str));
      put_text(file, "' ");
      if (record->cmd_on) {
        put_text(file, " '");
        put_text(file, gx_view(record->cmd));
        put_text(file, "' ");
      }
      put_text(file, "\n");
    }
    print_below(file, index, level + 1);
  }
}

}  // namespace

void gx_read_menu(std::string_view path) {
  if (path.empty()) return;
  const x_file file(gx_popen_file(path, 'R', true));
  if (!file) {
    const int error = errno;
    gx_debug_line(quoted("!!!  menu_file  file not found : ", path) + " ");
    const bool is_missing = x_is_missing(error);
    show_error("# $rmenu ",
               is_missing ? "# !!! error : file not found : "
                          : "# !!! error : impossible to open the file : ",
               path);
    if (!is_missing) gx_tell_detail("# !! ", x_why(error));
    return;
  }
  gx_clear_menus();
  line_place_t place;
  gx_string_record_t line;
  while (gx_read_one_line(file.get(), line)) {
    const std::string_view text = gx_view(line);
    if (!text.empty() && text[0] == '#') continue;
    if (!read_entry(text, place)) return;
  }
}

void gx_print_menu(std::string_view path) {
  const x_file file = x_create_file(std::string(gx_view(gx_resolve_path(path))), true);
  if (!file) {
    show_error("# $pmenu ", "# !!! error : impossible to open the file : ", path);
    return;
  }
  std::array<int, gx_max_menu_levels> index{};
  print_below(file.get(), index, 1);
  if (std::fflush(file.get()) != 0) {
    show_error("# $pmenu ", "# !!! error : impossible to write the file : ", path);
  }
}
