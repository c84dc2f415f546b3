#include "results/overview.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {
// A block has at least so many rows. Of all variables together so many blocks are kept, but not
// fewer than a picture of the whole takes.
constexpr std::uint64_t least_block = 64, most_blocks = 1U << 20U, least_blocks = 1U << 14U;
constexpr std::uint64_t rows_between_questions = 4096;

// The next number in single precision that is not above, or not below.
float rounded_down(double value) {
  const float single = static_cast<float>(value);
  return static_cast<double>(single) > value ? std::nextafter(single, -INFINITY) : single;
}
float rounded_up(double value) {
  const float single = static_cast<float>(value);
  return static_cast<double>(single) < value ? std::nextafter(single, INFINITY) : single;
}
}  // namespace

double rs_shown(const rs_value_t& value, bool is_complex) {
  return is_complex ? std::hypot(value.re, value.im) : value.re;
}

bool rs_overview_t::make(const rs_file_t& file, const rs_plot_t& plot,
                         std::span<const std::uint32_t> variables, bool (*stop_asked)()) {
  file_ = &file;
  plot_ = &plot;
  variables_.assign(variables.begin(), variables.end());
  block_ = least_block;
  const std::uint64_t blocks = std::clamp<std::uint64_t>(
      most_blocks / std::max<std::uint64_t>(variables.size(), 1), least_blocks, most_blocks / 4);
  while (plot.nb_rows / block_ >= blocks) block_ *= 2;
  begins_.clear();
  blocks_.assign(variables_.size(), {});
  direction_ = 1;
  if (plot.nb_rows > 0 && file.scale(plot, plot.nb_rows - 1) < file.scale(plot, 0)) direction_ = -1;
  return read_rows(stop_asked);
}

bool rs_overview_t::read_rows(bool (*stop_asked)()) {
  std::vector<std::uint32_t> read{0};  // the scale, then the variables
  read.insert(read.end(), variables_.begin(), variables_.end());
  std::vector<rs_value_t> values(read.size());
  std::vector<rs_range_t> ranges(variables_.size());
  rs_row_reader_t reader(*file_, *plot_, 0, read);
  const auto close_block = [&] {
    for (std::size_t i = 0; i < ranges.size(); ++i) {
      blocks_[i].push_back({rounded_down(ranges[i].low), rounded_up(ranges[i].high)});
      ranges[i] = {};
    }
  };
  for (std::uint64_t row = 0; row < plot_->nb_rows; ++row) {
    if (row % rows_between_questions == 0 && stop_asked != nullptr && stop_asked()) return false;
    reader.next(values);
    if (row % block_ == 0) {
      if (row > 0) close_block();
      begins_.push_back(plot_->has_scale ? values[0].re : static_cast<double>(row));
    }
    add_values(std::span(values).subspan(1), ranges);
  }
  if (plot_->nb_rows > 0) close_block();
  return true;
}

rs_range_t rs_overview_t::whole(std::size_t variable) const {
  rs_range_t range;
  add_blocks(variable, {0, plot_->nb_rows}, range);
  return range;
}

std::uint64_t rs_overview_t::block_of(double x) const {
  const auto is_before = [this, x](double scale) { return direction_ * scale < direction_ * x; };
  const auto after = std::ranges::partition_point(begins_, is_before);
  return after == begins_.begin() ? 0 : static_cast<std::uint64_t>(after - begins_.begin() - 1);
}

std::uint64_t rs_overview_t::rows_to(double x) const {
  const auto is_before = [this, x](double scale) { return direction_ * scale < direction_ * x; };
  if (begins_.empty() || !is_before(begins_.front())) return 0;
  std::uint64_t low = block_of(x) * block_;
  std::uint64_t high = std::min(low + block_, plot_->nb_rows);
  while (high - low > 1) {
    const std::uint64_t middle = low + (high - low) / 2;
    (is_before(file_->scale(*plot_, middle)) ? low : high) = middle;
  }
  return high;
}

void rs_overview_t::add_blocks(std::size_t variable, rows_t rows, rs_range_t& range) const {
  if (rows.first >= rows.end) return;
  const auto& blocks = blocks_[variable];
  for (auto i = rows.first / block_; i <= (rows.end - 1) / block_; ++i) {
    const narrow_range_t& block = blocks[static_cast<std::size_t>(i)];
    if (block.low > block.high) continue;
    range.add(static_cast<double>(block.low));
    range.add(static_cast<double>(block.high));
  }
}

void rs_overview_t::add_values(std::span<const rs_value_t> values,
                               std::span<rs_range_t> ranges) const {
  if (plot_->header.is_complex) {
    for (std::size_t i = 0; i < ranges.size(); ++i) ranges[i].add(rs_shown(values[i], true));
  } else {
    for (std::size_t i = 0; i < ranges.size(); ++i) ranges[i].add(values[i].re);
  }
}

void rs_overview_t::add_single_rows(rows_t rows, std::span<rs_range_t> ranges) const {
  if (rows.first >= rows.end) return;
  std::vector<rs_value_t> values(variables_.size());
  // Of a binary row only what is shown is looked at.
  std::optional<rs_row_reader_t> reader;
  if (plot_->header.is_text) reader.emplace(*file_, *plot_, rows.first, variables_);
  for (std::uint64_t row = rows.first; row < rows.end; ++row) {
    reader ? reader->next(values) : file_->row(*plot_, row, variables_, values);
    add_values(values, ranges);
  }
}

// Straight between the rows around x; nothing outside of the scale.
void rs_overview_t::add_edge(double x, std::uint64_t rows_before,
                             std::span<rs_range_t> ranges) const {
  if (rows_before == 0 || rows_before >= plot_->nb_rows) return;
  const double begin = file_->scale(*plot_, rows_before - 1);
  const double end = file_->scale(*plot_, rows_before);
  const rs_place_t place{rows_before - 1, end == begin ? 0 : (x - begin) / (end - begin)};
  std::vector<rs_value_t> values(variables_.size());
  rs_values_at(*file_, *plot_, place, variables_, values);
  add_values(values, ranges);
}

std::vector<std::vector<rs_range_t>> rs_overview_t::columns(std::span<const double> edges) const {
  const std::size_t nb_columns = edges.empty() ? 0 : edges.size() - 1;
  std::vector<std::vector<rs_range_t>> columns(variables_.size());
  for (auto& ranges : columns) ranges.resize(nb_columns);
  std::vector<rs_range_t> ranges(variables_.size());  // of one column
  for (std::size_t i = 0; i < nb_columns; ++i) {
    const auto [first, last] = std::minmax({block_of(edges[i]), block_of(edges[i + 1])});
    std::ranges::fill(ranges, rs_range_t{});
    if (last - first >= 3) {
      // Blocks that only begin or end here count too: less than a column more.
      const rows_t rows{first * block_, std::min((last + 1) * block_, plot_->nb_rows)};
      for (std::size_t k = 0; k < ranges.size(); ++k) add_blocks(k, rows, ranges[k]);
    } else {
      const std::uint64_t before = rows_to(edges[i]), next = rows_to(edges[i + 1]);
      const rows_t rows{std::min(before, next), std::max(before, next)};
      add_edge(edges[i], before, ranges);
      add_single_rows(rows, ranges);
      add_edge(edges[i + 1], next, ranges);
    }
    for (std::size_t k = 0; k < ranges.size(); ++k) columns[k][i] = ranges[k];
  }
  file_->mapped().release();
  return columns;
}
