// Opens any bytes as a file of results and, when they are taken, asks everything that can be asked.
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "results/names.h"
#include "results/overview.h"
#include "results/raw_file.h"

namespace {

void ask(const rs_file_t& file, const rs_plot_t& plot) {
  const auto variables = file.variables(plot);
  std::vector<std::uint32_t> asked;
  for (std::uint32_t i = 0; i < variables.size() && i < 64; ++i) {
    asked.push_back(static_cast<std::uint32_t>(variables.size()) - 1 - i);
    rs_read_name(variables[i]);
  }
  std::vector<rs_value_t> values(asked.size());
  for (const std::uint64_t row : {plot.nb_rows, plot.nb_rows / 2 + 1, std::uint64_t{1}}) {
    if (row > 0 && row <= plot.nb_rows) file.row(plot, row - 1, asked, values);
  }
  rs_place_t place;
  if (rs_find(file, plot, 1e-9, place)) rs_values_at(file, plot, place, asked, values);
  rs_overview_t overview;
  overview.make(file, plot, asked);
  constexpr std::array<double, 4> edges{-1, 0, 1e-9, 1};
  overview.columns(edges);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int fd = ::memfd_create("results", 0);
  if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) {
    std::abort();
  }
  rs_file_t file;
  if (!file.open(x_descriptor(::dup(fd)), "results").empty()) return 0;
  std::size_t asked = 0;
  for (const auto& plot : file.plots()) {
    if (++asked <= 16) ask(file, plot);
  }
  return 0;
}
