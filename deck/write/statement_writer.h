// Where the statements of a deck go, in a flat one and in one with subcircuits.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "deck/statements.h"
#include "deck/write/elements.h"

class dk_statement_writer_t {
 public:
  dk_statement_writer_t(dk_elements_t& elements, const dk_options_t& options)
      : elements_(elements), options_(options) {}

  // Of the primary sheet: as they are.
  void write_top(std::string_view text);
  // Of a sheet below: those of a kind; definitions once in the whole deck.
  void write_below(std::string_view text, dk_statement_t::kind_t kind);
  // Whole lines, once in the deck.
  void write_once(std::string_view text);

 private:
  bool is_wanted(const dk_statement_t& statement) const;

  dk_elements_t& elements_;
  const dk_options_t& options_;
  std::set<std::string, std::less<>> written_;
};
