#include "deck/write/statement_writer.h"

#include <functional>

// Nothing is simulated where devices are compared.
bool dk_statement_writer_t::is_wanted(const dk_statement_t& statement) const {
  using kind_t = dk_statement_t::kind_t;
  return !options_.lvs || statement.kind == kind_t::parameter;
}

void dk_statement_writer_t::write_top(std::string_view text) {
  for (const auto& statement : dk_statements(text))
    if (is_wanted(statement)) elements_.write_lines(statement.text);
}

void dk_statement_writer_t::write_below(std::string_view text, dk_statement_t::kind_t kind) {
  for (const auto& statement : dk_statements(text)) {
    if (statement.kind != kind || !is_wanted(statement)) continue;
    if (kind == dk_statement_t::kind_t::local)
      elements_.write_local(statement.text);
    else if (written_.insert(statement.text).second)
      elements_.write_lines(statement.text);
  }
}

void dk_statement_writer_t::write_once(std::string_view text) {
  if (!options_.lvs && written_.insert(std::string(text)).second) elements_.write_lines(text);
}
