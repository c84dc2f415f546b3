// Commands, places, and curves in pieces.
#include "import/lepton/path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int pieces = 8;  // of a curve

class path_reader {
 public:
  path_reader(std::string_view text, std::int32_t furthest) : text_(text), furthest_(furthest) {}

  bool run(std::vector<gxi_lepton_step_t>& path, std::string& why) {
    while (skip()) {
      const char letter = text_.front();
      text_.remove_prefix(1);
      const char kind = letter >= 'a' ? static_cast<char>(letter - 'a' + 'A') : letter;
      if (std::string_view("MLCZ").find(kind) == std::string_view::npos) {
        why = std::string("the unknown step \"") + letter + "\"";
        return false;
      }
      if (path.empty() && kind != 'M') {
        why = "no beginning";
        return false;
      }
      if (kind == 'Z') {
        path.push_back({'z', {}});
        here_ = begun_;
      } else if (!take(kind, letter >= 'a', path)) {
        why = "a place that is no pair of numbers, or too far away";
        return false;
      }
    }
    return true;
  }

 private:
  bool skip() {
    const auto first = text_.find_first_not_of(" \t\n,");
    text_.remove_prefix(std::min(first, text_.size()));
    return !text_.empty();
  }

  bool number(std::int32_t& value) {
    if (!skip()) return false;
    if (text_.front() == '+') text_.remove_prefix(1);
    double read = 0;
    const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), read);
    if (error != std::errc() || !(std::fabs(read) <= furthest_)) return false;
    text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
    value = static_cast<std::int32_t>(std::lround(read));
    return true;
  }

  bool take(char kind, bool relative, std::vector<gxi_lepton_step_t>& path) {
    const std::size_t count = kind == 'C' ? 3 : 1;
    bool more = true;
    while (more) {
      gxi_lepton_step_t step{.kind = kind};
      for (std::size_t i = 0; i < count; ++i) {
        gxi_lepton_point_t p;
        if (!number(p.x) || !number(p.y)) return false;
        if (relative) p = {p.x + here_.x, p.y + here_.y};
        if (std::abs(p.x) > furthest_ || std::abs(p.y) > furthest_) return false;
        step.points.push_back(p);
      }
      here_ = step.points.back();
      if (kind == 'M') begun_ = here_;
      path.push_back(std::move(step));
      if (kind == 'M') kind = 'L';  // further places are drawn to
      more =
          skip() && std::string_view("+-.0123456789").find(text_.front()) != std::string_view::npos;
    }
    return true;
  }

  std::string_view text_;
  std::int32_t furthest_;
  gxi_lepton_point_t here_{}, begun_{};
};

gxi_lepton_point_t on_curve(gxi_lepton_point_t from, const std::vector<gxi_lepton_point_t>& curve,
                            double t) {
  const double u = 1 - t;
  const auto mix = [&](double a, double b, double c, double d) {
    return static_cast<std::int32_t>(
        std::lround(u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d));
  };
  return {mix(from.x, curve[0].x, curve[1].x, curve[2].x),
          mix(from.y, curve[0].y, curve[1].y, curve[2].y)};
}

}  // namespace

bool gxi_lepton_path(std::string_view text, std::int32_t furthest,
                     std::vector<gxi_lepton_step_t>& path, std::string& why) {
  return path_reader(text, furthest).run(path, why);
}

std::vector<std::vector<gxi_lepton_point_t>> gxi_lepton_lines(
    const std::vector<gxi_lepton_step_t>& path) {
  std::vector<std::vector<gxi_lepton_point_t>> lines;
  for (const auto& step : path) {
    if (step.kind == 'M') {
      lines.push_back(step.points);
      continue;
    }
    auto& line = lines.back();
    if (step.kind == 'z') {
      const auto begun = line.front();
      line.push_back(begun);
      lines.push_back({begun});
    } else if (step.kind == 'L') {
      line.push_back(step.points[0]);
    } else {
      const auto from = line.back();
      for (int i = 1; i <= pieces; ++i)
        line.push_back(on_curve(from, step.points, static_cast<double>(i) / pieces));
    }
  }
  std::erase_if(lines, [](const auto& line) { return line.size() < 2; });
  return lines;
}
