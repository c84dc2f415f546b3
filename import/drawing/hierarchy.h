// The cells of a design while a reader goes down from its top sheet: each is made once, none
// contains itself, and the levels are counted.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "import/drawing/drawing.h"

class gxi_hierarchy_t {
 public:
  explicit gxi_hierarchy_t(gxi_design_t& design) : design_(design) {}
  gxi_hierarchy_t(const gxi_hierarchy_t&) = delete;

  // The cell of a component: that of an earlier one with the same symbol and key, else a new one
  // at the end of design.cells, which the reader fills. `sheets` are the files below the component,
  // if any. Throws std::runtime_error where the component lies below one of them.
  struct found_t {
    int cell = 0;
    bool is_new = false;
  };
  found_t cell(const void* symbol, const std::string& key,
               std::span<const std::filesystem::path> sheets, const gxm_source_t& component);

  // A level, from the moment its sheets are begun until all below them is read.
  class level_t {
   public:
    level_t(gxi_hierarchy_t& hierarchy, std::set<std::string> sheets);
    level_t(const level_t&) = delete;
    ~level_t();

   private:
    gxi_hierarchy_t& hierarchy_;
    std::set<std::string> sheets_;
  };
  // Throws std::runtime_error beyond 28 levels, which an expansion takes at most.
  [[nodiscard]] level_t enter(std::span<const std::filesystem::path> sheets);

 private:
  gxi_design_t& design_;
  std::map<std::pair<const void*, std::string>, int> cells_;
  std::set<std::string> open_;  // files of the sheets being read
  int levels_ = 0;
};
