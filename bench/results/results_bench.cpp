// Times what a session asks of a large file of results, which this program writes when it is not
// there:
//   results_bench FILE [GIGABYTES [VARIABLES]]     4 and 1000 unless they are given
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "results/overview.h"
#include "results/raw_file.h"

namespace {

using clock_type = std::chrono::steady_clock;

void make_file(const std::string& path, std::uint64_t bytes, std::size_t nb_variables) {
  const std::uint64_t rows = bytes / (8 * nb_variables);
  std::ofstream out(path, std::ios::binary);
  out << "Title: waves\nDate: today\nPlotname: Transient Analysis\nFlags: real\nNo. Variables: "
      << nb_variables << "\nNo. Points: " << rows << "\nVariables:\n\t0\ttime\ttime\n";
  for (std::size_t i = 1; i < nb_variables; ++i) {
    out << "\t" << i << "\tv(x" << i / 100 << ":n" << i % 100 << ")\tvoltage\n";
  }
  out << "Binary:\n";
  std::vector<double> row(nb_variables);
  for (std::uint64_t r = 0; r < rows; ++r) {
    row[0] = static_cast<double>(r) * 1e-12;
    for (std::size_t i = 1; i < nb_variables; ++i) {
      row[i] = static_cast<double>((r * (i % 7 + 1) >> 4U) % 1000) / 1000;
    }
    out.write(reinterpret_cast<const char*>(row.data()),
              static_cast<std::streamsize>(row.size() * sizeof(double)));
  }
  if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

// Memory of the process, in MB: its own, and pages of the file.
void print_memory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("RssAnon") || line.starts_with("RssFile")) {
      const double kilobytes =
          std::strtod(line.c_str() + line.find_first_of("0123456789"), nullptr);
      std::printf("  %s %.1f MB", line.substr(0, 7).c_str(), kilobytes / 1024);
    }
  }
  std::printf("\n");
}

void time_it(const char* what, const std::function<void()>& action) {
  const auto begin = clock_type::now();
  action();
  const std::chrono::duration<double, std::milli> spent = clock_type::now() - begin;
  std::printf("%-44s %10.3f ms", what, spent.count());
  print_memory();
}

void forget_pages(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0 || ::fdatasync(fd) != 0 || ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED) != 0) {
    std::fprintf(stderr, "the pages of the file may be in memory\n");
  }
  if (fd >= 0) ::close(fd);
}

std::vector<double> edges_of(double from, double to, int columns) {
  std::vector<double> edges;
  for (int i = 0; i <= columns; ++i) edges.push_back(from + (to - from) * i / columns);
  return edges;
}

void measure(const std::string& path) {
  rs_file_t file;
  const auto open = [&] {
    if (const auto fault = file.open(path); !fault.empty()) throw std::runtime_error(fault);
  };
  std::vector<rs_variable_t> names;
  forget_pages(path);
  time_it("open, cold", open);
  time_it("names", [&] { names = file.variables(file.plots()[0]); });
  const rs_plot_t& plot = file.plots()[0];
  // The nets of one sheet lie where they may.
  std::vector<std::uint32_t> sheet;
  const auto nb = static_cast<std::uint32_t>(names.size());
  for (std::uint32_t i = 0; i < 200; ++i) sheet.push_back(1 + i * 37 % (nb - 1));
  std::vector<rs_value_t> values(sheet.size());
  const double end = file.scale(plot, plot.nb_rows - 1);
  const auto values_at = [&](double x) {
    rs_place_t place;
    if (!rs_find(file, plot, x, place)) throw std::runtime_error("not found");
    rs_values_at(file, plot, place, sheet, values);
  };
  file.mapped().release();
  forget_pages(path);
  time_it("values of 200 nets, cold", [&] { values_at(end * 0.377); });
  time_it("the same, warm", [&] { values_at(end * 0.377); });
  file.mapped().release();
  forget_pages(path);
  rs_overview_t overview;
  sheet.resize(std::min<std::size_t>(sheet.size(), 64));
  const auto draw = [&](double from, double to) { overview.columns(edges_of(from, to, 1000)); };
  time_it("64 waveforms in one pass, cold", [&] { overview.make(file, plot, sheet); });
  time_it("64 waveforms in one pass, warm", [&] { overview.make(file, plot, sheet); });
  sheet.resize(8);
  time_it("8 waveforms in one pass, warm", [&] { overview.make(file, plot, sheet); });
  time_it("8 waveforms in 1000 columns, whole", [&] { draw(0, end); });
  time_it("a tenth of the time", [&] { draw(end * 0.4, end * 0.5); });
  time_it("the same again", [&] { draw(end * 0.4, end * 0.5); });
  time_it("a thousandth of the time", [&] { draw(end * 0.4, end * 0.401); });
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 2) throw std::runtime_error("usage: results_bench FILE [GIGABYTES [VARIABLES]]");
  const std::string path = argv[1];
  const double gigabytes = argc > 2 ? std::strtod(argv[2], nullptr) : 4;
  const auto variables = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 1000;
  if (::access(path.c_str(), R_OK) != 0) {
    make_file(path, static_cast<std::uint64_t>(gigabytes * 1e9), variables);
  }
  measure(path);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "results_bench: %s\n", error.what());
  return 1;
}
