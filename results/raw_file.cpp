#include "results/raw_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "gx/text/string_compare.h"
#include "platform/files.h"

namespace {

constexpr std::size_t most_steps = 10000;
constexpr std::uint64_t buffer_size = 256U << 10U;

// Plots of one row whose first variable is a result like the others.
bool has_scale(const rs_header_t& header) {
  constexpr std::array<std::string_view, 4> single{"operating point", "transfer function",
                                                   "integrated noise", "sensitivity"};
  for (const auto words : single) {
    if (gx_equal(words, header.plot_name)) return false;
  }
  return header.nb_points != 1 || rs_is_time(header) || rs_is_frequency(header);
}

std::uint64_t row_size(const rs_plot_t& plot) {
  return plot.scale_width + (plot.header.nb_variables - 1) * plot.value_width;
}

// Where the values of a variable are: the first one, and from one row to the next.
struct layout_t {
  std::uint64_t begin, step;
};
layout_t layout_of(const rs_plot_t& plot, std::uint32_t variable) {
  const std::uint64_t before =
      variable == 0 ? 0 : plot.scale_width + std::uint64_t{plot.value_width} * (variable - 1);
  const std::uint64_t begin = plot.header.values_at;
  if (!plot.header.is_by_variable) return {begin + before, row_size(plot)};
  return {begin + before * plot.nb_rows_in_all,
          variable == 0 ? plot.scale_width : plot.value_width};
}

template <typename Number>
double number_at(const std::uint8_t* from) {
  Number number;
  std::memcpy(&number, from, sizeof number);
  return static_cast<double>(number);
}

rs_value_t decoded(const rs_plot_t& plot, std::uint32_t variable, const std::uint8_t* from) {
  const std::uint32_t width = variable == 0 ? plot.scale_width : plot.value_width;
  rs_value_t value{width == 4 ? number_at<float>(from) : number_at<double>(from)};
  if (width == 16) value.im = number_at<double>(from + 8);
  if (variable != 0 || !plot.has_scale) return value;
  // Points of a time that LTspice would leave out again have the sign set.
  if (plot.has_marks) value.re = std::fabs(value.re);
  value.re += plot.header.offset;
  return value;
}

// The widths of the values. LTspice writes single precision unless it says otherwise, and all of
// it where there is no scale; the size of the file decides.
void set_widths(rs_plot_t& plot, std::uint64_t available) {
  const rs_header_t& header = plot.header;
  if (header.is_complex) plot.scale_width = plot.value_width = 16;
  if (header.is_complex || header.simulator != rs_simulator::ltspice) return;
  using widths_t = std::array<std::uint32_t, 2>;
  const widths_t usual = header.is_double ? widths_t{8, 8} : widths_t{8, 4};
  for (const widths_t& widths : {widths_t{4, 4}, widths_t{8, 8}, widths_t{8, 4}, usual}) {
    plot.scale_width = widths[0];
    plot.value_width = widths[1];
    const std::uint64_t size = row_size(plot);
    if (available % size == 0 && available / size == header.nb_points) return;
  }
}

bool begins_header(rs_bytes_t bytes, std::size_t at) {
  constexpr std::string_view title = "title:";
  const rs_bytes_t rest = bytes.subspan(std::min(at, bytes.size()));
  if (rest.size() < title.size()) return false;
  const std::size_t step = rest[1] == 0 ? 2 : 1;
  if (rest.size() < title.size() * step) return false;
  for (std::size_t i = 0; i < title.size(); ++i) {
    if ((rest[i * step] | 0x20) != title[i]) return false;
  }
  return true;
}

// Of characters of `step` bytes.
std::size_t after_blanks(rs_bytes_t bytes, std::size_t at, std::size_t step) {
  while (at < bytes.size() && (bytes[at] == '\n' || bytes[at] == '\r' || bytes[at] == ' '))
    at += step;
  return at;
}

}  // namespace

bool rs_is_time(const rs_header_t& header) { return gx_iden("time", header.first_variable.type); }
bool rs_is_frequency(const rs_header_t& header) {
  return gx_iden("frequency", header.first_variable.type);
}

// --- opening

std::string rs_file_t::open(const std::string& path) {
  x_descriptor file = x_open_regular(path);
  if (!file) return path + ": " + x_why(errno);
  return open(std::move(file), path);
}

bool rs_file_t::stamp_of(int fd, stamp_t& stamp) {
  struct stat info {};
  if (::fstat(fd, &info) != 0) return false;
  stamp = {info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
  return true;
}

std::string rs_file_t::open(x_descriptor file, const std::string& path) {
  *this = {};
  path_ = path;
  descriptor_ = std::move(file);
  const int fd = descriptor_.get();
  if (!stamp_of(fd, stamp_)) return path + ": " + x_why(errno);
  if (stamp_.size == 0) return path + ": is empty";
  if (!file_.map(fd, static_cast<std::size_t>(stamp_.size))) return path + ": cannot be mapped";
  file_.read_at_random();
  const std::string fault = find_plots();
  return fault.empty() ? "" : path + ": " + fault;
}

bool rs_file_t::has_changed() const {
  const x_descriptor file = x_open_regular(path_);
  stamp_t now;
  return !file || !stamp_of(file.get(), now) || now != stamp_;
}

// What is wrong with a header counts only when nothing was read before.
std::string rs_file_t::find_plots() {
  for (std::size_t at = 0; at < bytes().size();) {
    rs_plot_t plot;
    std::string fault;
    switch (rs_read_header(bytes(), at, plot.header, fault)) {
      case rs_header_result::read: {
        const std::size_t step = plot.header.is_wide ? 2 : 1;
        at = after_blanks(bytes(), take_plot(std::move(plot)), step);
        continue;
      }
      case rs_header_result::no_header:
        fault = plots_.empty() ? "is no file of results" : "bytes that belong to no plot";
        break;
      case rs_header_result::incomplete:
        fault = plots_.empty() ? "its header is not whole" : "the last header is not whole";
        break;
      case rs_header_result::damaged:
        break;
    }
    if (plots_.empty()) return fault;
    faults_.push_back("after plot " + std::to_string(plots_.size()) + ": " + fault);
    break;
  }
  return plots_.empty() ? "is no file of results" : "";
}

// Returns where the plot ends.
std::size_t rs_file_t::take_plot(rs_plot_t plot) {
  plot.has_scale = has_scale(plot.header);
  plot.has_marks = plot.header.simulator == rs_simulator::ltspice && rs_is_time(plot.header);
  const std::size_t end = plot.header.is_text ? measure_text(plot) : measure(plot);
  if (plot.header.nb_points > plot.nb_rows) {
    faults_.push_back("plot " + std::to_string(plots_.size() + 1) + ": " +
                      std::to_string(plot.nb_rows) + " of " +
                      std::to_string(plot.header.nb_points) + " points are there");
  }
  add_steps(std::move(plot));
  return end;
}

// What follows rows of no known number is the next plot, or a row that is still being written.
std::size_t rs_file_t::measure_text(rs_plot_t& plot) {
  const auto rows = std::make_shared<const rs_text_rows_t>(rs_find_text_rows(bytes(), plot.header));
  plot.text_rows = rows;
  plot.nb_rows = plot.nb_rows_in_all = rows->nb_rows;
  const std::size_t step = plot.header.is_wide ? 2 : 1;
  const std::size_t after = after_blanks(bytes(), rows->end, step);
  const bool goes_on = plot.header.nb_points == 0 && !begins_header(bytes(), after);
  return goes_on ? bytes().size() : rows->end;
}

// Rows are counted by the size of the file; a plot without points before another is empty.
std::size_t rs_file_t::measure(rs_plot_t& plot) {
  const std::size_t begin = plot.header.values_at;
  const std::uint64_t available = bytes().size() - begin;
  set_widths(plot, available);
  const std::uint64_t announced = plot.header.nb_points;
  std::uint64_t rows = available / row_size(plot);
  if (announced == 0 && begins_header(bytes(), begin)) rows = 0;
  if (announced != 0) rows = std::min(rows, announced);
  plot.nb_rows = plot.nb_rows_in_all = rows;
  // The places of values by variable follow from the rows that were announced.
  if (plot.header.is_by_variable && announced != 0) plot.nb_rows_in_all = announced;
  if (plot.header.is_by_variable && rows < announced) plot.nb_rows = 0;
  const bool is_whole = announced != 0 ? rows == announced : rows == 0;
  return is_whole ? begin + static_cast<std::size_t>(rows * row_size(plot)) : bytes().size();
}

// The rows at which the scale begins anew.
std::vector<std::uint64_t> rs_file_t::step_begins(const rs_plot_t& plot) const {
  std::vector<std::uint64_t> begins{0};
  const bool is_looked_at =
      plot.header.is_stepped || !(rs_is_time(plot.header) || rs_is_frequency(plot.header));
  if (!is_looked_at || !plot.has_scale) return begins;
  int direction = 0;
  double before = plot.nb_rows == 0 ? 0 : scale(plot, 0);
  for (std::uint64_t row = 1; row < plot.nb_rows; ++row) {
    const double here = scale(plot, row);
    const int way = here > before ? 1 : (here < before ? -1 : 0);
    before = here;
    if (way == 0 || way == direction) continue;
    if (direction == 0) {
      direction = way;
    } else if (begins.size() == most_steps) {
      return {0};
    } else {
      begins.push_back(row);
      direction = 0;
    }
  }
  return begins;
}

void rs_file_t::add_steps(rs_plot_t plot) {
  const auto begins = step_begins(plot);
  if (begins.size() == 1) return plots_.push_back(std::move(plot));
  for (std::size_t i = 0; i < begins.size(); ++i) {
    rs_plot_t step = plot;
    step.step = static_cast<int>(i) + 1;
    step.nb_steps = static_cast<int>(begins.size());
    step.first_row = begins[i];
    step.nb_rows = (i + 1 < begins.size() ? begins[i + 1] : plot.nb_rows) - begins[i];
    plots_.push_back(std::move(step));
  }
}

// --- values

std::vector<rs_variable_t> rs_file_t::variables(const rs_plot_t& plot) const {
  return rs_read_variables(bytes(), plot.header);
}

void rs_file_t::row(const rs_plot_t& plot, std::uint64_t row,
                    std::span<const std::uint32_t> variables, std::span<rs_value_t> values) const {
  if (plot.header.is_text) return rs_row_reader_t(*this, plot, row, variables).next(values);
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const layout_t layout = layout_of(plot, variables[i]);
    const std::uint64_t at = layout.begin + (plot.first_row + row) * layout.step;
    values[i] = decoded(plot, variables[i], file_.bytes() + at);
  }
}

void rs_file_t::read_at(std::uint64_t at, std::span<std::uint8_t> bytes) const {
  while (!bytes.empty()) {
    const ssize_t n =
        ::pread(descriptor_.get(), bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    at += static_cast<std::uint64_t>(n);
    bytes = bytes.subspan(static_cast<std::size_t>(n));
  }
  std::ranges::fill(bytes, std::uint8_t{0});
}

double rs_file_t::scale(const rs_plot_t& plot, std::uint64_t row) const {
  if (!plot.has_scale) return static_cast<double>(row);
  constexpr std::uint32_t first = 0;
  rs_value_t value;
  this->row(plot, row, {&first, 1}, {&value, 1});
  return value.re;
}

rs_row_reader_t::rs_row_reader_t(const rs_file_t& file, const rs_plot_t& plot,
                                 std::uint64_t first_row, std::span<const std::uint32_t> variables)
    : file_(file), plot_(plot), row_(first_row), variables_(variables) {
  if (!plot.header.is_text) return;
  text_.emplace(file.bytes(), plot.header, *plot.text_rows, plot.first_row + first_row);
  all_.resize(variables.empty() ? 0 : *std::ranges::max_element(variables) + std::size_t{1});
}

void rs_row_reader_t::next(std::span<rs_value_t> values) {
  if (text_) {
    text_->next(all_);
    for (std::size_t i = 0; i < variables_.size(); ++i) values[i] = all_[variables_[i]];
    return;
  }
  if (row_ - buffer_row_ >= nb_buffered_) fill();
  const std::uint64_t row = row_++ - buffer_row_;
  for (std::size_t i = 0; i < variables_.size(); ++i) {
    values[i] = decoded(plot_, variables_[i], buffer_.data() + begins_[i] + row * steps_[i]);
  }
}

void rs_row_reader_t::fill() {
  const std::uint64_t size = row_size(plot_);
  const std::uint64_t by_size = plot_.header.is_by_variable ? 4096 : buffer_size / size;
  buffer_row_ = row_;
  nb_buffered_ = std::max<std::uint64_t>(std::min(by_size, plot_.nb_rows - row_), 1);
  begins_.clear();
  steps_.clear();
  const auto read = [this](std::uint64_t from, std::uint64_t length) {
    const std::size_t begin = buffer_.size();
    buffer_.resize(begin + static_cast<std::size_t>(length));
    file_.read_at(from, std::span(buffer_).subspan(begin));
  };
  buffer_.clear();
  const std::uint64_t first = plot_.first_row + row_;
  if (!plot_.header.is_by_variable)
    read(plot_.header.values_at + first * size, nb_buffered_ * size);
  for (const std::uint32_t variable : variables_) {
    const layout_t layout = layout_of(plot_, variable);
    steps_.push_back(layout.step);
    if (plot_.header.is_by_variable) {
      begins_.push_back(buffer_.size());
      read(layout.begin + first * layout.step, nb_buffered_ * layout.step);
    } else {
      begins_.push_back(layout.begin - plot_.header.values_at);
    }
  }
}

bool rs_find(const rs_file_t& file, const rs_plot_t& plot, double x, rs_place_t& place) {
  if (!plot.has_scale || plot.nb_rows == 0) return false;
  std::uint64_t low = 0, high = plot.nb_rows - 1;
  const double first = file.scale(plot, low), last = file.scale(plot, high);
  const double sign = last < first ? -1 : 1;
  if (!(sign * x >= sign * first && sign * x <= sign * last)) return false;
  // By guessing on the line between both ends, as steps of time are alike, and by halving in turn.
  double begin = first, end = last;
  for (bool guesses = true; high - low > 1; guesses = !guesses) {
    double part = guesses ? (x - begin) / (end - begin) : 0.5;
    if (!(part >= 0 && part <= 1)) part = 0.5;
    const auto rows = static_cast<double>(high - low);
    const auto step = static_cast<std::uint64_t>(std::clamp(part * rows, 1.0, rows - 1));
    const std::uint64_t middle = std::clamp(low + step, low + 1, high - 1);
    const double here = file.scale(plot, middle);
    if (sign * here <= sign * x) {
      low = middle;
      begin = here;
    } else {
      high = middle;
      end = here;
    }
  }
  if (x == end) {
    place = {high, 0};
  } else {
    const double fraction = end == begin ? 0 : (x - begin) / (end - begin);
    place = {low, fraction > 0 && fraction < 1 ? fraction : 0};
  }
  return true;
}

void rs_values_at(const rs_file_t& file, const rs_plot_t& plot, rs_place_t place,
                  std::span<const std::uint32_t> variables, std::span<rs_value_t> values) {
  file.row(plot, place.row, variables, values);
  if (place.fraction == 0) return;
  std::vector<rs_value_t> next(variables.size());
  file.row(plot, place.row + 1, variables, next);
  for (std::size_t i = 0; i < next.size(); ++i) {
    values[i].re += place.fraction * (next[i].re - values[i].re);
    values[i].im += place.fraction * (next[i].im - values[i].im);
  }
}
