#include "import/kicad/variables.h"

#include <cstdint>

#include "import/drawing/source_file.h"

namespace {

constexpr int most_variables_deep = 8;

// Reads as much of JSON as it takes to find the strings of one object.
class json_t {
 public:
  explicit json_t(std::string_view text) : text_(text) {}

  gxi_kicad_variables_t variables() {
    gxi_kicad_variables_t found;
    const auto key = text_.find("\"text_variables\"");
    if (key == std::string_view::npos) return found;
    at_ = key + std::string_view("\"text_variables\"").size();
    if (!take(':') || !take('{')) return found;
    std::string name, value;
    while (take_string(name) && take(':') && take_string(value)) {
      found.insert_or_assign(name, value);
      if (!take(',')) break;
    }
    return found;
  }

 private:
  bool take(char c) {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != text_.npos) ++at_;
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  bool take_string(std::string& result) {
    result.clear();
    if (!take('"')) return false;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (text_[at_] != '\\') {
        result += text_[at_++];
        continue;
      }
      if (++at_ >= text_.size()) return false;
      const char c = text_[at_++];
      if (c == 'u')
        take_code(result);
      else
        result += c == 'n' ? '\n' : c == 't' ? '\t' : c;
    }
    return take('"');
  }

  // Of the plane that four digits reach, in UTF-8.
  void take_code(std::string& result) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4 && at_ < text_.size(); ++i, ++at_) {
      const char c = text_[at_];
      const int digit = c >= '0' && c <= '9'   ? c - '0'
                        : c >= 'a' && c <= 'f' ? c - 'a' + 10
                        : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                               : 0;
      code = code * 16 + static_cast<std::uint32_t>(digit);
    }
    const auto byte = [&](std::uint32_t value) { result += static_cast<char>(value); };
    if (code < 0x80) return byte(code);
    if (code < 0x800) {
      byte(0xC0 | code >> 6);
    } else {
      byte(0xE0 | code >> 12);
      byte(0x80 | (code >> 6 & 0x3F));
    }
    byte(0x80 | (code & 0x3F));
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

std::string substitute(
    std::string_view text,
    const std::function<std::optional<std::string>(std::string_view name)>& value_of, int depth) {
  std::string result;
  while (!text.empty()) {
    const auto open = text.find("${");
    const auto close = open == text.npos ? text.npos : text.find('}', open);
    if (close == text.npos) break;
    const auto value = value_of(text.substr(open + 2, close - open - 2));
    result += text.substr(0, open);
    if (value && depth < most_variables_deep)
      result += substitute(*value, value_of, depth + 1);
    else
      result += text.substr(open, close + 1 - open);
    text.remove_prefix(close + 1);
  }
  return result += text;
}

}  // namespace

gxi_kicad_variables_t gxi_kicad_read_variables(std::string_view json) {
  return json_t(json).variables();
}

gxi_kicad_variables_t gxi_kicad_project_variables(const std::filesystem::path& sheet) {
  auto project = sheet;
  project.replace_extension(".kicad_pro");
  std::error_code none;
  if (!std::filesystem::is_regular_file(project, none)) return {};
  return gxi_kicad_read_variables(gxi_read_source(project));
}

std::string gxi_kicad_substitute(
    std::string_view text,
    const std::function<std::optional<std::string>(std::string_view name)>& value_of) {
  return substitute(text, value_of, 0);
}
