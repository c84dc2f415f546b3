// Commands and words of Tcl, as texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct gxi_xschem_tcl_word_t {
  std::string_view text{};
  bool braced = false;  // nothing in it stands for something else
  int line = 0;
};

// Parts a script into commands and those into words.
class gxi_xschem_tcl_commands_t {
 public:
  explicit gxi_xschem_tcl_commands_t(std::string_view text, int line = 1)
      : text_(text), line_(line) {}

  // The words of the next command; none at the end.
  std::vector<gxi_xschem_tcl_word_t> next();

 private:
  void step() { line_ += text_[at_++] == '\n'; }
  void skip();
  void skip_closed(char open, char close);
  gxi_xschem_tcl_word_t word();
  void part();
  gxi_xschem_tcl_word_t inner(std::size_t first, bool braced, int line) const;

  std::string_view text_;
  std::size_t at_ = 0;
  int line_;
};

// The length of what the text opens with at its head, with the sign that closes it; npos: nothing
// closes it.
std::size_t gxi_xschem_tcl_closed(std::string_view text, char open, char close);

// The name of the variable that the text begins with a "$" of, without "::"; both are taken from
// the text. "" where no name follows.
std::string gxi_xschem_tcl_variable(std::string_view& text);
