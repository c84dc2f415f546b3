// The sheet files of a drawing, each read once, and their texts with the values of variables.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/kicad/net_names.h"
#include "import/kicad/records.h"
#include "import/kicad/variables.h"

struct gxi_kicad_loaded_t {
  std::filesystem::path path{};
  std::string_view name{};   // for messages
  std::string use{}, way{};  // what its first use is called, and the names down to there: "/A/B/"
  gxi_kicad_file_t records{};
};

class gxi_kicad_sheets_t {
 public:
  // Reads the top sheet and all below it; what is left out of them is reported in the design. A
  // sheet that is missing refuses the drawing.
  gxi_kicad_sheets_t(const std::filesystem::path& top, gxi_design_t& design);

  const gxi_kicad_loaded_t& top() const { return *top_; }
  const gxi_kicad_loaded_t& below(const gxi_kicad_loaded_t& from, const gxi_kicad_block_t& block) {
    return load_below(from, block);
  }
  // Aliases of buses count in the whole design.
  const gxi_kicad_aliases_t& aliases() const { return aliases_; }

  // Texts as they are shown; of a name, without its escapes.
  std::string text(const gxi_kicad_loaded_t& from, std::string_view text) const;
  std::string name(const gxi_kicad_loaded_t& from, std::string_view text) const;
  // Of a symbol's or a block's field: the other fields count, too.
  std::string field_text(const gxi_kicad_loaded_t& from,
                         const std::vector<gxi_kicad_field_t>& fields, const std::string& reference,
                         std::string_view text) const;

 private:
  gxi_kicad_loaded_t& load(const std::filesystem::path& path);
  gxi_kicad_loaded_t& load_below(const gxi_kicad_loaded_t& from, const gxi_kicad_block_t& block);
  void walk(gxi_kicad_loaded_t& from, std::string_view use, const std::string& way);
  std::filesystem::path path_of(const gxi_kicad_loaded_t& from,
                                const gxi_kicad_block_t& block) const;
  std::optional<std::string> project_variable(std::string_view name) const;
  std::optional<std::string> variable(const gxi_kicad_loaded_t& from, std::string_view name) const;

  gxi_design_t& design_;
  gxi_kicad_variables_t variables_;
  bool has_project_ = false;
  std::map<std::string, std::unique_ptr<gxi_kicad_loaded_t>> files_{};
  std::set<const gxi_kicad_loaded_t*> walked_{};
  gxi_kicad_aliases_t aliases_{};
  gxi_kicad_loaded_t* top_ = nullptr;
};
