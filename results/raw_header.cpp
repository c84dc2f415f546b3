#include "results/raw_header.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "gx/text/string_compare.h"

namespace {

constexpr std::size_t longest_line = 65536;  // characters

// Letters in either case.
bool begins_with(std::string_view text, std::string_view head) { return gx_equal(head, text); }
bool has(std::string_view text, std::string_view word) {
  for (; text.size() >= word.size(); text.remove_prefix(1)) {
    if (begins_with(text, word)) return true;
  }
  return false;
}

std::string_view without_blanks(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const auto first = text.find_first_not_of(blanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The lines of a text, one by one.
class lines_t {
 public:
  lines_t(rs_bytes_t bytes, std::size_t at, bool is_wide)
      : bytes_(bytes), at_(at), is_wide_(is_wide) {}

  // The next line that has its end; false when there is none, or a longer one than any header has.
  // The view lives until the next call.
  bool next(std::string_view& line) { return is_wide_ ? next_wide(line) : next_narrow(line); }
  std::size_t at() const { return at_; }
  bool is_too_long() const { return is_too_long_; }

 private:
  bool next_narrow(std::string_view& line) {
    const std::size_t left = std::min(bytes_.size() - at_, longest_line);
    if (left == 0) return false;
    const std::uint8_t* const begin = bytes_.data() + at_;
    const auto* end = static_cast<const std::uint8_t*>(std::memchr(begin, '\n', left));
    is_too_long_ = end == nullptr && left == longest_line;
    if (end == nullptr) return false;
    line = {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
    at_ += line.size() + 1;
    return true;
  }
  bool next_wide(std::string_view& line) {
    text_.clear();
    for (std::size_t i = at_; i + 1 < bytes_.size(); i += 2) {
      const unsigned character = bytes_[i] + 256U * bytes_[i + 1];
      if (character == '\n') {
        at_ = i + 2;
        line = text_;
        return true;
      }
      is_too_long_ = text_.size() >= longest_line;
      if (is_too_long_) return false;
      add(character);
    }
    return false;
  }
  // As UTF-8; the halves of what takes four bytes are of no name.
  void add(unsigned character) {
    const auto byte = [](unsigned value) { return static_cast<char>(value); };
    if (character < 0x80) {
      text_ += byte(character);
    } else if (character < 0x800) {
      text_ += {byte(0xC0 | character >> 6), byte(0x80 | (character & 0x3F))};
    } else {
      text_ += {byte(0xE0 | character >> 12), byte(0x80 | (character >> 6 & 0x3F)),
                byte(0x80 | (character & 0x3F))};
    }
  }

  rs_bytes_t bytes_;
  std::size_t at_;
  bool is_wide_;
  bool is_too_long_ = false;
  std::string text_;
};

// A count of the header: digits, blanks around them.
bool read_count(std::string_view text, std::uint64_t& count) {
  text = without_blanks(text);
  const auto read = std::from_chars(text.data(), text.data() + text.size(), count);
  return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

void read_flags(std::string_view flags, rs_header_t& header) {
  header.is_complex = has(flags, "complex");
  header.is_double = has(flags, "double");
  header.is_stepped = has(flags, "stepped");
  header.is_by_variable = has(flags, "fastaccess");
  if (has(flags, "forward") || header.is_by_variable) header.simulator = rs_simulator::ltspice;
}

void read_simulator(std::string_view text, rs_header_t& header) {
  if (has(text, "ltspice") || has(text, "linear technology")) {
    header.simulator = rs_simulator::ltspice;
  } else if (has(text, "xyce")) {
    header.simulator = rs_simulator::xyce;
  } else if (has(text, "ngspice")) {
    header.simulator = rs_simulator::ngspice;
  }
}

bool read_offset(std::string_view text, double& offset) {
  text = without_blanks(text);
  return std::from_chars(text.data(), text.data() + text.size(), offset).ec == std::errc();
}

// What one line of the header says, before the variables; false when its value is none.
bool read_line(std::string_view key, std::string_view value, rs_header_t& header) {
  if (begins_with(key, "title")) {
    header.title = without_blanks(value);
  } else if (begins_with(key, "plotname")) {
    header.plot_name = without_blanks(value);
  } else if (begins_with(key, "flags")) {
    read_flags(value, header);
  } else if (begins_with(key, "no. variables")) {
    return read_count(value, header.nb_variables);
  } else if (begins_with(key, "no. points")) {
    return read_count(value, header.nb_points);
  } else if (begins_with(key, "offset")) {
    return read_offset(value, header.offset);
  } else if (begins_with(key, "command") || begins_with(key, "version")) {
    read_simulator(value, header);
  }
  return true;
}

// "	1	v(out)	voltage" and what may follow; an old writer sets blanks for tabulators.
rs_variable_t variable_of(std::string_view line) {
  const auto next = [&line] {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const auto end = std::min(line.find_first_of(" \t\r"), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end);
    return word;
  };
  next();  // its number
  // A name with blanks, as an expression has, ends at the tabulator.
  rs_variable_t variable;
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  if (const auto tabulator = line.find('\t'); tabulator != line.npos) {
    variable.name = without_blanks(line.substr(0, tabulator));
    line.remove_prefix(tabulator);
  } else {
    variable.name = next();
  }
  variable.type = next();
  return variable;
}

// Simulators that do not say who they are write names in letters of their own.
rs_simulator simulator_of(std::string_view variable_line) {
  const rs_variable_t variable = variable_of(variable_line);
  const std::string_view name = variable.name;
  if (name.size() < 3 || name[1] != '(') return rs_simulator::unknown;
  if (name[0] == 'V' || name[0] == 'I') return rs_simulator::xyce;
  return name[0] == 'v' || name[0] == 'i' ? rs_simulator::ngspice : rs_simulator::unknown;
}

// Texts of two bytes a character, with or without the mark of their order.
bool is_wide_at(rs_bytes_t bytes, std::size_t& at) {
  const rs_bytes_t rest = bytes.subspan(at);
  if (rest.size() >= 2 && rest[0] == 0xFF && rest[1] == 0xFE) {
    at += 2;
    return true;
  }
  return rest.size() >= 2 && rest[0] != 0 && rest[1] == 0;
}

class header_reader_t {
 public:
  header_reader_t(rs_bytes_t bytes, std::size_t at, rs_header_t& header, std::string& fault)
      : lines_(bytes, at, header.is_wide), header_(header), fault_(fault) {}

  rs_header_result read() {
    if (const auto result = read_keys(); result != rs_header_result::read) return result;
    return read_variables();
  }

 private:
  rs_header_result damaged(std::string_view what) {
    fault_ = "line " + std::to_string(line_) + ": ";
    fault_ += what;
    return rs_header_result::damaged;
  }
  bool next(std::string_view& line) {
    ++line_;
    return lines_.next(line);
  }
  rs_header_result ended() {
    return lines_.is_too_long() ? damaged("a line of no header") : rs_header_result::incomplete;
  }

  // Up to "Variables:".
  rs_header_result read_keys() {
    for (std::string_view line; next(line);) {
      const auto colon = line.find(':');
      const bool has_key = colon != line.npos;
      if (line_ == 1 && !(has_key && begins_with(line, "title")))
        return rs_header_result::no_header;
      if (!has_key) {
        if (without_blanks(line).empty()) continue;
        return damaged("no line of a header");
      }
      const std::string_view value = line.substr(colon + 1);
      if (begins_with(line, "variables")) {
        if (!without_blanks(value).empty()) return damaged("no variable begins here");
        header_.variables_at = lines_.at();
        return header_.nb_variables > 0 ? rs_header_result::read : damaged("no variables");
      }
      if (begins_with(line, "binary") || begins_with(line, "values")) {
        return damaged("values without variables");
      }
      if (!read_line(line, value, header_)) return damaged("no number");
    }
    return ended();
  }

  // From the first variable to the first value.
  rs_header_result read_variables() {
    const bool is_known = header_.simulator != rs_simulator::unknown;
    std::uint64_t nb_read = 0;
    for (std::string_view line; next(line); ++nb_read) {
      const std::string_view text = without_blanks(line);
      if (begins_with(text, "binary:") || begins_with(text, "values:")) {
        if (nb_read != header_.nb_variables) return damaged("not as many variables as announced");
        header_.is_text = begins_with(text, "values:");
        header_.values_at = lines_.at();
        return rs_header_result::read;
      }
      if (nb_read == header_.nb_variables) return damaged("more variables than announced");
      if (nb_read == 0) header_.first_variable = variable_of(line);
      if (!is_known && nb_read < 3) guess_simulator(line);
    }
    return ended();
  }
  void guess_simulator(std::string_view line) {
    if (const auto simulator = simulator_of(line); simulator != rs_simulator::unknown) {
      header_.simulator = simulator;
    }
  }

  lines_t lines_;
  rs_header_t& header_;
  std::string& fault_;
  int line_ = 0;
};

}  // namespace

std::string_view rs_simulator_name(rs_simulator simulator) {
  constexpr std::array<std::string_view, 4> names{"ngspice", "Xyce", "LTspice", "SPICE"};
  return names[static_cast<std::size_t>(simulator)];
}

rs_header_result rs_read_header(rs_bytes_t bytes, std::size_t at, rs_header_t& header,
                                std::string& fault) {
  header = {};
  if (at >= bytes.size()) return rs_header_result::incomplete;
  header.is_wide = is_wide_at(bytes, at);
  if (header.is_wide) header.simulator = rs_simulator::ltspice;
  return header_reader_t(bytes, at, header, fault).read();
}

std::vector<rs_variable_t> rs_read_variables(rs_bytes_t bytes, const rs_header_t& header) {
  std::vector<rs_variable_t> variables;
  lines_t lines(bytes, header.variables_at, header.is_wide);
  std::string_view line;
  while (variables.size() < header.nb_variables && lines.next(line)) {
    variables.push_back(variable_of(line));
  }
  return variables;
}
