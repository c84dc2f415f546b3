// From the records of a description to GX files.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "gx/db/file/file_records.h"
#include "gxmake/description.h"

// The date that the headers of made files name: of the environment's SOURCE_DATE_EPOCH, else the
// present; UTC, so that the same epoch gives the same bytes everywhere.
gx_date_t gxm_date_of_files();

struct gxm_options_t {
  gx_date_t date{1, 1, 2000};
  std::string prefix;  // put before the symbol paths that sheets hold, "" or ending in "/"
};

// One file: directory/base.gx, base is "symbol" or "sheet".
struct gxm_file_t {
  std::string directory, base;
  std::shared_ptr<gx_file_gene_recf_t> file;
  std::int16_t version = 1;
  std::string data_name() const { return base + ".gx_" + std::to_string(version); }
};

// Builds every symbol, sheet and file; what cannot be built is left out and reported in `messages`.
std::vector<gxm_file_t> gxm_build(const gxm_design_t& design, const gxm_options_t& options,
                                  gxm_messages_t& messages);

// Writes "base.gx_VERSION" and its link file into the directory of each file below `root`.
// Throws std::runtime_error, with the path, when one cannot be written.
void gxm_write(const std::vector<gxm_file_t>& files, const std::filesystem::path& root);

// --- the parts of gxm_build
std::shared_ptr<gx_file_gene_recf_t> gxm_build_symbol(const gxm_symbol_t& symbol,
                                                      const gxm_options_t& options,
                                                      gxm_messages_t& messages);
std::shared_ptr<gx_file_gene_recf_t> gxm_build_sheet(const gxm_sheet_t& sheet,
                                                     const gxm_design_t& design,
                                                     const gxm_options_t& options,
                                                     gxm_messages_t& messages);
