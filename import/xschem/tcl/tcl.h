// What of Tcl can be read without running it: "tcleval(...)" around an attribute.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "import/xschem/tcl/tcl_script.h"

struct gxi_xschem_tcl_t {
  std::string text{};
  bool is_plain =
      true;  // false: commands or conditions were left out, or taken by their first case
};

// The text itself; within "tcleval(...)" what is not in brackets, and what `if` and `return` in
// brackets give, netlists being made for ngspice; [abs_sym_path FILE] is FILE, [read_data FILE] the
// line ".include FILE". Variables and procedures are those of the scope.
gxi_xschem_tcl_t gxi_xschem_plain_tcl(std::string_view text, const gxi_xschem_tcl_scope_t& scope);

// "true", "open", "1" and the like, "false", "0" and "" too; nothing for other words.
std::optional<bool> gxi_xschem_truth(std::string_view text);
