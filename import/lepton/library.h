// Symbols and sheets of Lepton EDA, found where the project says and read once.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/drawing/source_file.h"
#include "import/lepton/file.h"
#include "import/lepton/project.h"

struct gxi_lepton_symbol_t {
  std::string name{};       // without its ending
  std::string_view file{};  // for messages
  std::shared_ptr<const gxi_lepton_file_t> records{};
  bool missing = false;
};

class gxi_lepton_library_t {
 public:
  gxi_lepton_library_t(const gxi_input_t& input, gxi_design_t& design);

  const gxi_lepton_project_t& project() const { return project_; }
  // A file, and its name for messages.
  struct read_t {
    std::shared_ptr<const gxi_lepton_file_t> records{};
    std::string_view name{};
  };
  const read_t& read(const std::filesystem::path& path);
  // The symbol of a component of a page; without contents when it is not found, which is reported.
  const gxi_lepton_symbol_t& symbol(const gxi_lepton_component_t& component, std::string_view page);
  // Where the sheet is that `source=` names: in the libraries only, not beside the page.
  std::optional<std::filesystem::path> sheet(const std::string& name) const;

 private:
  // The first of the places, in their order, that has a file of the name.
  std::optional<std::filesystem::path> find(const std::vector<gxi_lepton_place_t>& places,
                                            const std::filesystem::path& name) const;

  gxi_design_t& design_;
  gxi_lepton_project_t project_;
  std::vector<gxi_lepton_place_t> symbols_, sheets_;
  // The files below a directory by their names.
  using contents_t = std::map<std::string, std::filesystem::path>;
  mutable std::map<std::filesystem::path, contents_t> below_;
  std::map<std::filesystem::path, read_t> files_;
  std::map<std::string, std::unique_ptr<gxi_lepton_symbol_t>> by_name_;
  std::map<std::string, std::vector<std::unique_ptr<gxi_lepton_symbol_t>>> embedded_;  // by name
};
