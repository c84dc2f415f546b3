// The objects of a PDF file: numbers, streams, the table at its end.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Packs bytes as zlib does; empty: streams stay as they are.
using gx_deflate_t = std::function<std::string(std::string_view)>;

class gx_pdf_file {
 public:
  explicit gx_pdf_file(gx_deflate_t deflate);

  // The number of a new object, to be written once, in any order.
  int reserve();
  void write(int object, std::string_view body);
  // `entries` go into its dictionary, beside its length.
  void write_stream(int object, std::string_view entries, std::string_view bytes);
  // The whole file, once.
  std::string finish(int catalog, int info);

 private:
  void begin(int object);

  gx_deflate_t deflate_;
  std::string bytes_;
  std::vector<std::size_t> offsets_;  // of object 1, 2 ..
};

// "12 0 R"
std::string gx_pdf_reference(int object);
// A text of the document (title, outline) with its brackets.
std::string gx_pdf_text(std::string_view text);
// A text to be shown in a font with WinAnsiEncoding; what that has not is "?".
std::string gx_pdf_shown(std::string_view text);
