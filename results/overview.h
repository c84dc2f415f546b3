// Waveforms for a picture: the least and the greatest value of some variables over each column of
// pixels. One pass over the plot keeps both for blocks of rows, so that a long record is drawn
// again without reading it.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "results/raw_file.h"

struct rs_range_t {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  bool is_empty() const { return !(low <= high); }
  void add(double value) {  // not a number: nothing
    if (value < low) low = value;
    if (value > high) high = value;
  }
  void add(const rs_range_t& range) {
    add(range.low);
    add(range.high);
  }
};

// What a picture shows of a value: that of a complex one is its magnitude.
double rs_shown(const rs_value_t& value, bool is_complex);

class rs_overview_t {
 public:
  // Reads the whole plot once; false when `stop_asked`, asked now and then, said so. At most 64
  // variables. The file and the plot must stay as they are while this is used.
  bool make(const rs_file_t& file, const rs_plot_t& plot, std::span<const std::uint32_t> variables,
            bool (*stop_asked)() = nullptr);

  // The range of a variable (an index into those of `make`) over the whole plot.
  rs_range_t whole(std::size_t variable) const;
  // For each variable its ranges over the columns that `edges` part: column i goes from edges[i] to
  // edges[i + 1], which grow. Empty outside of the scale.
  std::vector<std::vector<rs_range_t>> columns(std::span<const double> edges) const;

 private:
  struct narrow_range_t {
    float low, high;
  };
  struct rows_t {
    std::uint64_t first = 0, end = 0;  // from the first to before the end
  };
  bool read_rows(bool (*stop_asked)());
  std::uint64_t rows_to(double x) const;   // how many rows come before x
  std::uint64_t block_of(double x) const;  // that of the last of them, without a look at the file
  void add_blocks(std::size_t variable, rows_t rows, rs_range_t& range) const;
  // To `ranges`, one for each variable.
  void add_values(std::span<const rs_value_t> values, std::span<rs_range_t> ranges) const;
  void add_edge(double x, std::uint64_t rows_before, std::span<rs_range_t> ranges) const;
  void add_single_rows(rows_t rows, std::span<rs_range_t> ranges) const;

  const rs_file_t* file_ = nullptr;
  const rs_plot_t* plot_ = nullptr;
  std::vector<std::uint32_t> variables_;
  std::uint64_t block_ = 1;                          // rows in a block
  double direction_ = 1;                             // -1: the scale falls
  std::vector<double> begins_;                       // the scale at the first row of each block
  std::vector<std::vector<narrow_range_t>> blocks_;  // of each variable
};
