// S-expressions: the text form of all files of KiCad, read into one flat tree.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class gxi_kicad_list_t;

// Owns the nodes; strings without escapes are views of the text, which must live as long.
class gxi_kicad_tree_t {
 public:
  // `name` is the file's, for messages. Throws std::runtime_error "NAME:LINE: what" where the text
  // is not one whole list; any depth of lists is taken.
  gxi_kicad_tree_t(std::string_view text, std::string_view name);

  gxi_kicad_list_t root() const;
  std::string_view name() const { return name_; }

 private:
  friend class gxi_kicad_list_t;
  friend class gxi_kicad_parser_t;
  struct node_t {
    std::string_view word{};  // of an atom; empty for a list
    int line = 0;
    int first = -1, next = -1;
    bool is_list = false;
  };
  std::string_view name_;
  std::vector<node_t> nodes_{};
  std::deque<std::string> unescaped_{};
};

// One list of the tree: its keyword, its words, the lists in it. A view, cheap to copy. The list
// that an absent keyword gives is empty: its words are "" and its numbers 0.
class gxi_kicad_list_t {
 public:
  gxi_kicad_list_t() = default;
  gxi_kicad_list_t(const gxi_kicad_tree_t& tree, int node) : tree_(&tree), node_(node) {}

  explicit operator bool() const { return tree_ != nullptr; }
  int line() const;
  std::string_view keyword() const { return word(0); }
  // The words of the list, the keyword is word 0; lists between them do not count.
  std::string_view word(int i) const;
  bool has_word(std::string_view word) const;  // after the keyword
  // The first list in this one with the keyword.
  gxi_kicad_list_t child(std::string_view keyword) const;
  std::vector<gxi_kicad_list_t> children() const;
  // Of a number that is written as word i, refused when it is none or beyond +-10^9.
  double number(int i) const;
  // The same of a length in millimetres: units of 100 nm, at most 10 m.
  int length(int i) const;
  // What "(hide)", "(hide yes)" and a bare word "hide" say; `absent` without any.
  bool flag(std::string_view keyword, bool absent = false) const;

  [[noreturn]] void refuse(const std::string& what) const;

 private:
  const gxi_kicad_tree_t* tree_ = nullptr;
  int node_ = 0;
};
