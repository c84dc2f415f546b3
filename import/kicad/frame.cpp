// The block is a box of rows at the inner edge, as wide as the one that KiCad draws there, so that
// it covers nothing that a drawing keeps clear of that.
#include "import/kicad/frame.h"

#include <algorithm>
#include <cstdlib>

#include "import/kicad/picture.h"

namespace {

constexpr int margin = 100'000, gap = 20'000;  // of the outer edge; from it to the block
constexpr int block_width = 1'080'000, row_height = 30'000, text_margin = 10'000;
constexpr int text_size = 15'000, title_size = 20'000;
constexpr int second_column = 840'000;  // from the left
constexpr int largest_paper = 50'000'000;

struct row_t {
  std::string left{}, right{};
  int size = text_size;
};

std::string value_of(const gxi_kicad_title_t& title, std::string_view keyword) {
  const auto found = std::find_if(title.begin(), title.end(),
                                  [&](const auto& one) { return one.first == keyword; });
  return found == title.end() ? std::string() : found->second;
}

std::vector<row_t> rows_of(const gxi_kicad_title_t& title, const std::string& file) {
  std::vector<row_t> rows;
  std::vector<std::pair<int, std::string>> comments;
  for (const auto& [keyword, value] : title)
    if (keyword.starts_with("comment") && !value.empty())
      comments.emplace_back(std::atoi(keyword.c_str() + 7), value);
  std::stable_sort(comments.rbegin(), comments.rend(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (auto& [number, value] : comments) rows.push_back({.left = std::move(value)});
  const auto date = value_of(title, "date"), revision = value_of(title, "rev");
  for (auto one : {row_t{.left = value_of(title, "company")}, row_t{.left = "File: " + file},
                   row_t{.left = value_of(title, "title"), .size = title_size},
                   row_t{.left = date.empty() ? "" : "Date: " + date,
                   .right = revision.empty() ? "" : "Rev: " + revision}})
    if (!one.left.empty() || !one.right.empty()) rows.push_back(std::move(one));
  return rows;
}

// Letters as large as their room allows.
void write(const std::string& text, gxi_kicad_point_t at, int size, int room, gxi_sheet_t& sheet) {
  gxi_kicad_text_t placed{.at = at, .size = size, .across = gxi_align::start};
  auto look = gxi_kicad_look(placed, false, gxi_kicad_colors.frame);
  const auto letters = static_cast<std::int32_t>(std::max<std::size_t>(text.size(), 1));
  look.height = std::max(std::min(look.height, gxi_kicad_length(room) * 5 / (letters * 6)), 1);
  gxi_kicad_write(text, look, sheet.texts, sheet.shapes);
}

}  // namespace

void gxi_kicad_draw_frame(gxi_kicad_point_t paper, const gxi_kicad_title_t& title,
                          const std::string& file, gxi_sheet_t& sheet) {
  const auto least = std::min(paper.x, paper.y), most = std::max(paper.x, paper.y);
  if (least < block_width + 2 * (margin + gap) || most > largest_paper) return;
  const auto add = [&](gx_type type, gxi_kicad_point_t from, gxi_kicad_point_t to) {
    sheet.shapes.push_back({.type = type,
                            .points = {gxi_kicad_on_sheet(from), gxi_kicad_on_sheet(to)},
                            .color = gxi_kicad_colors.frame});
  };
  add(gx_type::rectangle_2d, {margin, margin}, {paper.x - margin, paper.y - margin});
  if (title.empty()) return;
  const auto rows = rows_of(title, file);
  const gxi_kicad_point_t corner{paper.x - margin - gap, paper.y - margin - gap};
  const int left = corner.x - block_width;
  int top = corner.y - row_height * static_cast<int>(rows.size());
  add(gx_type::rectangle_2d, {left, top}, corner);
  for (const auto& row : rows) {
    const int middle = top + row_height / 2;
    const bool in_two = !row.right.empty();
    write(row.left, {left + text_margin, middle}, row.size,
          (in_two ? second_column : block_width) - 2 * text_margin, sheet);
    if (in_two)
      write(row.right, {left + second_column, middle}, row.size,
            block_width - second_column - text_margin, sheet);
    top += row_height;
    if (top < corner.y) add(gx_type::line_2d, {left, top}, {corner.x, top});
  }
}
