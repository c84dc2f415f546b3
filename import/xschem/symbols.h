// Symbols of xschem as a netlist sees them, found in libraries and read once.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/drawing/source_file.h"
#include "import/xschem/attributes.h"
#include "import/xschem/records.h"
#include "import/xschem/tcl/tcl_script.h"

enum class gxi_xschem_role_t : std::uint8_t {
  device,   // a line of the netlist, or a block with a sheet
  label,    // names a net
  port,     // names a net that is a pin of the cell
  bus_tap,  // names bits of a bus
  noconn,   // marks a pin that is meant to be joined to nothing
  picture,  // only drawn
};

struct gxi_xschem_pin_t {
  std::vector<std::string> bits{};  // the names of its single pins
  bool any_width = false;           // its name does not say which bits it has: "A[max:0]"
  std::string type{};               // PINTYPE
  gxi_xschem_point_t at{};
  gxi_xschem_attributes_t attributes{};
  int same_as = -1;      // an earlier pin of the name, with which it is one node
  bool ignored = false;  // it is no node of a netlist for SPICE
};

struct gxi_xschem_symbol_t {
  std::string name{};            // without directory and ending
  std::filesystem::path path{};  // empty: embedded, or missing
  std::string_view file{};       // for messages
  gxi_xschem_file_t records{};
  gxi_xschem_attributes_t attributes{}, defaults{};  // K, and its template
  std::string type{};
  gxi_xschem_role_t role = gxi_xschem_role_t::picture;
  std::vector<gxi_xschem_pin_t> pins{};
  bool missing = false;
  const gxi_xschem_tcl_scope_t* scope = nullptr;  // the library's
};

// The role by the type, and by the format where the type says nothing.
gxi_xschem_role_t gxi_xschem_role(std::string_view type, std::string_view format);

class gxi_xschem_library_t {
 public:
  gxi_xschem_library_t(const gxi_input_t& input, gxi_design_t& design);

  // The symbol that a component of the sheet names; one without contents when it is not found.
  const gxi_xschem_symbol_t& symbol(const gxi_xschem_component_t& component,
                                    const std::filesystem::path& sheet);
  // Reads a sheet or symbol file and keeps its name for messages.
  std::pair<gxi_xschem_file_t, std::string_view> read(const std::filesystem::path& path);
  // What Tcl knows; what the attributes of components define is taken when their file is read.
  const gxi_xschem_tcl_scope_t& scope() const { return scope_; }
  // Where a name stands: below a library, or beside or above the sheet.
  std::optional<std::filesystem::path> find(const std::string& name,
                                            const std::filesystem::path& sheet) const;

 private:
  std::unique_ptr<gxi_xschem_symbol_t> make(const std::string& name, gxi_xschem_file_t records,
                                            std::string_view file) const;

  std::vector<std::filesystem::path> libraries_;
  std::set<std::filesystem::path> begun_;  // sheets whose symbols are being made
  gxi_design_t& design_;
  gxi_xschem_tcl_scope_t scope_;
  std::map<std::string, std::unique_ptr<gxi_xschem_symbol_t>> by_path_;
  std::map<std::pair<std::string, std::string>, const gxi_xschem_symbol_t*> by_name_;
};
