// kivo-plot DESIGN SHEET OUT.plt: writes one sheet of a design as a plot file, without a display.
// SHEET is the directory of the sheet, from the current directory; "." or the name of the design is
// the design's own sheet.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "gx/db/file_slots.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/sheet_shape.h"
#include "gx/plot/plot_sheet.h"
#include "gx/text/session_state.h"
#include "platform/usage.h"

namespace {
constexpr tool_t tool = {
    "kivo-plot",
    "usage: kivo-plot [-landscape] DESIGN SHEET OUT.plt\n"
    "  DESIGN   design directory\n"
    "  SHEET    directory of the sheet, from here; \".\" or the design's name: its own\n"
    "  OUT.plt  plot file to write (HP-GL/2 in PCL)\n"
    "  --help, --version\n"};

// "top" of "designs/top/".
std::string_view last_name(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);
}
}  // namespace

int main(int argc, char** argv) {
  gx_plot_t plot;
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "-landscape", .flag = &plot.landscape}};
  if (const auto ended = tool_read(tool, argc, argv, options, words)) return *ended;
  if (words.size() != 3) return tool_usage_error(tool, "DESIGN, SHEET and OUT.plt are wanted");
  const bool is_own = words[1] == "." || words[1] == last_name(words[0]);
  const std::string sheet(is_own ? words[0] : words[1]);
  const std::string path(words[2]);
  plot.path = path;
  if (sheet.size() >= gx_max_string_length - 16) {
    std::fprintf(stderr, "kivo-plot: path too long: %s\n", sheet.c_str());
    return 1;
  }

  if (std::ranges::any_of(sheet, [](char c) { return c < 32 || c > 126; })) {
    tool_complain(tool, "letters beyond ASCII in the path: " + sheet);
    return 1;
  }

  gx_session.init_done = true;  // files may be opened; no display is made
  std::string why;
  const auto file_index = gx_file_try_open(sheet, "sheet", why);
  if (file_index != 0) {
    const auto& file = gx_ptrto_gene_file_buf(file_index);
    const bool is_there = file.primary_object != 0;
    why = is_there ? gx_sheet_fault(file) : "no sheet";
    if (!why.empty()) why.insert(0, sheet + (is_there ? "/sheet.gx: " : ": "));
  }
  if (!why.empty()) {
    tool_complain(tool, why);
    return 1;
  }
  gx_hide_invisible(gx_ptrto_gene_file_buf(file_index));
  lb_plotfile_all_frame(plot, file_index);
  lb_plotfile_all_inst(plot, file_index);
  lb_plotfile_all_net(plot, file_index);
  if (!gx_plotfile_end() || !plot.plot_ok) {
    std::fprintf(stderr, "kivo-plot: cannot write %s\n", path.c_str());
    return 1;
  }
  return 0;
}
