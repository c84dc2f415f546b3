// Values written as text: where each row of a plot begins, and its numbers.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "results/raw_header.h"

// A value; `im` is 0 unless the plot is complex.
struct rs_value_t {
  double re = 0, im = 0;
};

// The rows of a plot, each an index and the values of all variables. The begin of every `stride`th
// row is kept, at most 65536 of them.
struct rs_text_rows_t {
  std::uint64_t nb_rows = 0;
  std::uint64_t stride = 1;
  std::vector<std::size_t> begins;
  std::size_t end = 0;  // of the last whole row
};

// Finds the rows that begin at `header.values_at`: as many as are whole, and not more than the
// header announces.
rs_text_rows_t rs_find_text_rows(rs_bytes_t bytes, const rs_header_t& header);

// Reads rows one after another, from one that the plot has, or from none of an empty plot.
class rs_text_reader_t {
 public:
  rs_text_reader_t(rs_bytes_t bytes, const rs_header_t& header, const rs_text_rows_t& rows,
                   std::uint64_t row);
  // The values of the next row, one for each variable; NaN for what is no number.
  void next(std::span<rs_value_t> values);

 private:
  rs_bytes_t bytes_;
  std::size_t nb_variables_, at_, step_;
};
