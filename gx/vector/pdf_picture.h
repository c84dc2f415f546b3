// Sheets as a PDF document: strokes stay strokes and texts texts, a block leads down, a title up,
// the outline goes by path. A sheet that several pages show is in the file once.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "gx/vector/look.h"
#include "gx/vector/pdf_file.h"
#include "gx/vector/sheet_labels.h"

class gx_pdf_document {
 public:
  // For so many pages, which are then added in their order.
  gx_pdf_document(int pages, gx_colours colours, const gx_paper_t& paper, gx_deflate_t deflate);

  // A page with a sheet, which must be sound (gx_sheet_fault) and stay until the end. In the
  // outline it goes below the longest path before it that is a part of its own.
  void add_page(const gx_file_gene_recf_t& file, const gx_sheet_labels_t& labels);
  // The whole file, once, when all pages were added.
  std::string finish(std::string_view title);

 private:
  struct sheet_t {  // in the file
    int form = 0;   // its drawing
    gx_pointreal_t size;
    std::vector<gx_placed_instance_t> instances;
    std::vector<gx_net_place_t> nets;
  };
  struct outline_t {
    int object = 0, above = -1, first = -1, last = -1, before = -1, next = -1;
    std::string title;
    int page = 0, count = 0;
  };
  const sheet_t& sheet_of(const gx_file_gene_recf_t& file);
  void add_outline(const std::string& path);
  void write_outline(int root);

  gx_colours colours_;
  gx_paper_t paper_;
  gx_pdf_file out_;
  int font_, tree_;
  std::vector<int> pages_;  // objects
  int added_ = 0;
  std::map<const gx_file_gene_recf_t*, sheet_t> sheets_;
  std::vector<outline_t> outline_;
  std::map<std::string, int, std::less<>> outline_of_;
};
