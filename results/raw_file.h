// A file of results as a simulator wrote it, or is writing it: mapped, checked, and read where a
// value is asked for. Nothing but texts of the headers and the places of rows is kept.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/mapped_file.h"
#include "platform/raw_files.h"
#include "results/raw_header.h"
#include "results/text_rows.h"

// One plot: the result of one analysis, or of one step of a stepped one.
struct rs_plot_t {
  rs_header_t header;
  int step = 0, nb_steps = 0;  // from 1; 0: not stepped
  bool has_scale = true;       // the first variable; without one there is one row
  bool has_marks = false;      // on the scale, as signs
  std::uint64_t nb_rows = 0;

  // Where values are: those of the first variable take scale_width bytes each, others value_width.
  std::uint64_t first_row = 0;  // of this step
  std::uint64_t nb_rows_in_all = 0;
  std::uint32_t scale_width = 8, value_width = 8;
  std::shared_ptr<const rs_text_rows_t> text_rows;  // of a plot in text, shared by its steps
};

// A place between two rows: the part `fraction` of the way from `row` to `row + 1`.
struct rs_place_t {
  std::uint64_t row = 0;
  double fraction = 0;  // 0 to below 1, of the way to the next row; 0 at the last one
};

class rs_file_t {
 public:
  // Opens the file; "", or what is wrong with it, with its name. A file that a simulator is still
  // writing is read as far as it goes.
  std::string open(const std::string& path);
  // The same for an open file, named `path` in messages.
  std::string open(x_descriptor file, const std::string& path);

  const std::string& path() const { return path_; }
  bool is_open() const { return !plots_.empty(); }
  // The file at the path is another than was opened, or has grown or been written since.
  bool has_changed() const;
  // A page of it was cut off while it was read: values of it were read as 0.
  bool is_cut() const { return file_.is_cut(); }

  const std::vector<rs_plot_t>& plots() const { return plots_; }
  // What is odd about the file, a line each: rows missing, bytes that belong to no plot.
  const std::vector<std::string>& faults() const { return faults_; }

  std::vector<rs_variable_t> variables(const rs_plot_t& plot) const;
  // The values of a row, which the plot has, of some variables of the plot.
  void row(const rs_plot_t& plot, std::uint64_t row, std::span<const std::uint32_t> variables,
           std::span<rs_value_t> values) const;
  // The scale at a row; rows are numbers from 0 when there is none.
  double scale(const rs_plot_t& plot, std::uint64_t row) const;
  rs_bytes_t bytes() const { return {file_.bytes(), file_.size()}; }
  const x_mapped_file& mapped() const { return file_; }
  // Fills the bytes from a place of the file, by reading it; with zeros where it is cut.
  void read_at(std::uint64_t at, std::span<std::uint8_t> bytes) const;

 private:
  struct stamp_t {
    std::uint64_t device = 0, file = 0;
    std::int64_t size = 0, seconds = 0, nanoseconds = 0;
    bool operator==(const stamp_t&) const = default;
  };
  static bool stamp_of(int fd, stamp_t& stamp);
  std::string find_plots();
  std::size_t take_plot(rs_plot_t plot);
  std::size_t measure(rs_plot_t& plot);
  std::size_t measure_text(rs_plot_t& plot);
  void add_steps(rs_plot_t plot);
  std::vector<std::uint64_t> step_begins(const rs_plot_t& plot) const;

  std::string path_;
  x_descriptor descriptor_;
  x_mapped_file file_;
  stamp_t stamp_;
  std::vector<rs_plot_t> plots_;
  std::vector<std::string> faults_;
};

// Reads many rows of a plot one after another: through a buffer, as that is faster than by mapping
// and takes no memory.
class rs_row_reader_t {
 public:
  rs_row_reader_t(const rs_file_t& file, const rs_plot_t& plot, std::uint64_t first_row,
                  std::span<const std::uint32_t> variables);
  void next(std::span<rs_value_t> values);

 private:
  void fill();

  const rs_file_t& file_;
  const rs_plot_t& plot_;
  std::uint64_t row_;
  std::span<const std::uint32_t> variables_;
  std::optional<rs_text_reader_t> text_;
  std::vector<rs_value_t> all_;  // of a row in text
  // Binary rows of the buffer: from buffer_row_, nb_buffered_ of them. Variable i begins at
  // begins_[i], and each row is steps_[i] bytes later.
  std::vector<std::uint8_t> buffer_;
  std::uint64_t buffer_row_ = 0, nb_buffered_ = 0;
  std::vector<std::uint64_t> begins_, steps_;
};

// Whether the scale is time or frequency, which grow from row to row.
bool rs_is_time(const rs_header_t& header);
bool rs_is_frequency(const rs_header_t& header);

// Where the scale has the value x; false outside of it, and when the plot has none. Takes some
// twenty reads: the scale goes one way within a plot.
bool rs_find(const rs_file_t& file, const rs_plot_t& plot, double x, rs_place_t& place);

// The values at a place, straight between its rows.
void rs_values_at(const rs_file_t& file, const rs_plot_t& plot, rs_place_t place,
                  std::span<const std::uint32_t> variables, std::span<rs_value_t> values);
