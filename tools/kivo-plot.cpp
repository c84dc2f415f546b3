// kivo-plot: sheets of a design as plot files (HP-GL/2), SVG or PDF, without a display.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "gx/db/file/file_slots.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/plot/plot_sheet.h"
#include "gx/text/messages/session_state.h"
#include "gx/vector/pdf_picture.h"
#include "gx/vector/svg_picture.h"
#include "pages/design_pages.h"
#include "platform/usage.h"
#include "tools/design_tool.h"

namespace {
constexpr tool_t tool = {
    "kivo-plot",
    "usage: kivo-plot [OPTION]... DESIGN SHEET OUT\n"
    "       kivo-plot [OPTION]... -o OUT DESIGN [SHEET]\n"
    "Writes a sheet of a design, or all of them, as a plot file (HP-GL/2 in PCL), SVG or PDF.\n"
    "  DESIGN   design directory\n"
    "  SHEET    directory of the sheet, from here; \".\" or the design's name: its own\n"
    "  -o OUT   the file to write; with --all and not PDF a directory, for a file a sheet\n"
    "  -landscape, --landscape  turns the page of a plot file\n"
    "  --svg, --pdf     writes SVG or PDF; blocks lead to their sheets, titles to the one above\n"
    "  --all            the sheet and those below it, each once; SVG with an index.html\n"
    "  --per-instance   every use of every sheet, with the names of the flat nets\n"
    "  --primitive NAME[=VALUE]  a property of instances that are shown as they are, like\n"
    "      PRIMitive; may be given again (default: CLASS)\n"
    "  --paper NAME     A5 to A0, letter, legal, tabloid, or fit: as large as the sheet\n"
    "      (default: A4 for PDF, none for SVG)\n"
    "  --colours NAME   screen, print (default) or mono; also --colors\n"
    "  --help, --version\n"
    "Exit status: 0 written, 1 not all could be written, 2 wrong options.\n"};

enum class format_t { plot, svg, pdf };

struct wishes_t {
  format_t format = format_t::plot;
  bool landscape = false, all = false, per_use = false;
  gx_colours colours = gx_colours::print;
  gx_paper_t paper;
  std::vector<std::string_view> primitives;
  std::string sheet, out;
};

// The sheet of a directory as a plot file.
bool write_plot(const std::string& directory, const std::string& path, bool landscape) {
  std::string why;
  const auto file_index = gx_file_try_open(directory, "sheet", why);
  if (file_index != 0) {
    const auto& file = gx_ptrto_gene_file_buf(file_index);
    const bool is_there = file.primary_object != 0;
    why = is_there ? gx_sheet_fault(file) : "no sheet";
    if (!why.empty()) why.insert(0, directory + (is_there ? "/sheet.gx: " : ": "));
  }
  if (!why.empty()) {
    tool_complain(tool, why);
    return false;
  }
  gx_plot_t plot;
  plot.path = path;
  plot.landscape = landscape;
  gx_hide_invisible(gx_ptrto_gene_file_buf(file_index));
  lb_plotfile_all_frame(plot, file_index);
  lb_plotfile_all_inst(plot, file_index);
  lb_plotfile_all_net(plot, file_index);
  const bool is_written = gx_plotfile_end() && plot.plot_ok;
  if (!is_written) tool_complain(tool, "cannot write " + path);
  gx_file_close(file_index);
  return is_written;
}

bool write_pdf(const kv_design_pages_t& pages, const wishes_t& wishes) {
  const auto count = static_cast<int>(pages.pages.size());
  gx_pdf_document document(count, wishes.colours, wishes.paper, deflated);
  for (int i = 0; i < count; ++i)
    document.add_page(*pages.pages[static_cast<std::size_t>(i)].component->file,
                      kv_labels_of(pages, i));
  return write_file(tool, wishes.out, document.finish(pages.name));
}

// The tree of pages, each in the list of the one above it.
std::string index_of(const kv_design_pages_t& pages, std::span<const std::string> files) {
  std::string html = "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n<title>" +
                     gx_xml(pages.name) + "</title></head><body>\n<h1>" + gx_xml(pages.name) +
                     "</h1>\n";
  std::vector<std::vector<int>> below(files.size());
  for (std::size_t i = 1; i < files.size(); ++i)
    below[static_cast<std::size_t>(std::max(pages.pages[i].above, 0))].push_back(
        static_cast<int>(i));
  const auto add = [&](const auto& again, int page) -> void {
    const auto& own = below[static_cast<std::size_t>(page)];
    html += "<li><a href=\"" + gx_xml(files[static_cast<std::size_t>(page)]) + "\">" +
            gx_xml(kv_labels_of(pages, page).title) + "</a>";
    if (!own.empty()) html += "\n<ul>\n";
    for (const int one : own) again(again, one);
    html += own.empty() ? "</li>\n" : "</ul></li>\n";
  };
  html += "<ul>\n";
  if (!files.empty()) add(add, 0);
  return html + "</ul>\n</body></html>\n";
}

bool write_svg(const kv_design_pages_t& pages, const wishes_t& wishes) {
  std::vector<std::string> files;
  const bool has_index = wishes.all;
  if (has_index)
    for (const auto& page : pages.pages) files.push_back(page.name + ".svg");
  bool is_written = true;
  for (std::size_t i = 0; i < pages.pages.size() && is_written; ++i) {
    const gx_svg_page_t page{.colours = wishes.colours,
                             .paper = wishes.paper,
                             .labels = kv_labels_of(pages, static_cast<int>(i)),
                             .files = files};
    is_written = write_file(tool, has_index ? wishes.out + "/" + files[i] : wishes.out,
                            gx_svg_picture(*pages.pages[i].component->file, page));
  }
  if (has_index && is_written)
    is_written = write_file(tool, wishes.out + "/index.html", index_of(pages, files));
  return is_written;
}

bool write_plots(const kv_design_pages_t& pages, const wishes_t& wishes) {
  bool is_written = true;
  for (const auto& page : pages.pages) {
    const auto& directory = page.component->directory;
    is_written &= write_plot(directory.empty() ? wishes.sheet : directory,
                             wishes.out + "/" + page.name + ".plt", wishes.landscape);
  }
  return is_written;
}

bool run(const wishes_t& wishes) {
  if (wishes.format == format_t::plot && !wishes.all)
    return write_plot(wishes.sheet, wishes.out, wishes.landscape);
  kv_design_pages_t pages;
  std::string why;
  bool is_there = kv_open_pages(pages, wishes.sheet, wishes.primitives, why);
  if (is_there && wishes.per_use)
    is_there = kv_pages_by_use(pages, why);
  else if (is_there)
    wishes.all ? kv_pages_by_sheet(pages) : kv_page_of_top(pages);
  if (!is_there) {
    tool_complain(tool, why);
    return false;
  }
  if (wishes.all && wishes.format != format_t::pdf) {
    std::error_code error;
    std::filesystem::create_directories(wishes.out, error);
    if (error) {
      tool_complain(tool, "cannot make " + wishes.out + ": " + error.message());
      return false;
    }
  }
  const bool is_written = wishes.format == format_t::pdf   ? write_pdf(pages, wishes)
                          : wishes.format == format_t::svg ? write_svg(pages, wishes)
                                                           : write_plots(pages, wishes);
  for (const std::string& left_out : pages.left_out) tool_complain(tool, left_out + " (left out)");
  return is_written && pages.left_out.empty();
}
}  // namespace

int main(int argc, char** argv) {
  wishes_t wishes;
  std::vector<std::string_view> words;
  std::string_view out, paper, colours;
  bool svg = false, pdf = false;
  const tool_option_t options[] = {{.name = "-landscape", .flag = &wishes.landscape},
                                   {.name = "--landscape", .flag = &wishes.landscape},
                                   {.name = "-o", .value = &out},
                                   {.name = "--svg", .flag = &svg},
                                   {.name = "--pdf", .flag = &pdf},
                                   {.name = "--all", .flag = &wishes.all},
                                   {.name = "--per-instance", .flag = &wishes.per_use},
                                   {.name = "--primitive", .values = &wishes.primitives},
                                   {.name = "--paper", .value = &paper},
                                   {.name = "--colours", .value = &colours},
                                   {.name = "--colors", .value = &colours}};
  if (const auto ended = tool_read(tool, argc, argv, options, words)) return *ended;
  if (words.size() == 3 && out.empty()) {
    out = words.back();
    words.pop_back();
  }
  if (words.empty() || words.size() > 2 || out.empty())
    return tool_usage_error(tool, "DESIGN, SHEET and OUT are wanted");
  if (svg && pdf) return tool_usage_error(tool, "--svg and --pdf exclude each other");
  wishes.format = svg ? format_t::svg : pdf ? format_t::pdf : format_t::plot;
  if (wishes.format == format_t::plot && (!paper.empty() || !colours.empty() || wishes.per_use))
    return tool_usage_error(tool, "--paper, --colours and --per-instance go with --svg or --pdf");
  if (wishes.format != format_t::plot && wishes.landscape)
    return tool_usage_error(tool, "-landscape is for plot files; others turn with their sheet");
  wishes.all |= wishes.per_use;
  if (paper.empty() && pdf) paper = "A4";
  if (!paper.empty()) {
    const auto size = gx_paper_of(paper);
    if (!size)
      return tool_usage_error(
          tool, "--paper: one of " + std::string(gx_paper_names) + ", not " + std::string(paper));
    wishes.paper = *size;
  }
  if (!colours.empty()) {
    const auto known = gx_colours_of(colours);
    if (!known)
      return tool_usage_error(tool,
                              "--colours: screen, print or mono, not " + std::string(colours));
    wishes.colours = *known;
  }
  if (const auto ended = read_primitives(tool, wishes.primitives)) return *ended;
  const bool is_own = words.size() == 1 || words[1] == "." || words[1] == last_name(words[0]);
  wishes.sheet = is_own ? words[0] : words[1];
  wishes.out = out;
  if (!can_be_sheet(tool, wishes.sheet)) return 1;
  gx_session.init_done = true;  // files may be opened; no display is made
  return run(wishes) ? 0 : 1;
}
