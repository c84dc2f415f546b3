// What a drawing defines for its texts in Tcl, and calls of its plain procedures.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct gxi_xschem_tcl_procedure_t {
  std::vector<std::string> arguments{};
  std::string body{};
};

// By name, without "::".
struct gxi_xschem_tcl_scope_t {
  std::map<std::string, std::string, std::less<>> variables{};
  std::map<std::string, gxi_xschem_tcl_procedure_t, std::less<>> procedures{};
};

// Takes from a text in "tcleval(...)" what its "[set NAME VALUE]" and "proc NAME {...} {...}" say.
void gxi_xschem_take_tcl(std::string_view text, gxi_xschem_tcl_scope_t& scope);

// What a command gives, without its brackets: of "set", "expr", and of a procedure of these, "if",
// "catch" and "return". Nothing where more is wanted, as always where something would be done.
std::optional<std::string> gxi_xschem_tcl_answer(std::string_view command,
                                                 const gxi_xschem_tcl_scope_t& scope);
