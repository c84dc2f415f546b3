// Objects of a PDF file, one after another, and the table that finds them.
#include "gx/vector/pdf_file.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "gx/text/at.h"
#include "gx/text/characters.h"
#include "gx/vector/look.h"

namespace {
// In brackets; what ends or escapes a text is escaped.
std::string bracketed(std::string_view bytes) {
  std::string text = "(";
  for (const char c : bytes) {
    if (c == '(' || c == ')' || c == '\\') text += '\\';
    if (c == '\r' || c == '\n')
      text += c == '\r' ? "\\r" : "\\n";
    else
      text += c;
  }
  return text += ')';
}
}  // namespace

gx_pdf_file::gx_pdf_file(gx_deflate_t deflate) : deflate_(std::move(deflate)) {
  bytes_ = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
}

int gx_pdf_file::reserve() {
  offsets_.push_back(0);
  return static_cast<int>(offsets_.size());
}

void gx_pdf_file::begin(int object) {
  gx_at(offsets_, object - 1) = bytes_.size();
  bytes_.append(std::to_string(object)).append(" 0 obj\n");
}

void gx_pdf_file::write(int object, std::string_view body) {
  begin(object);
  bytes_.append(body).append("\nendobj\n");
}

void gx_pdf_file::write_stream(int object, std::string_view entries, std::string_view bytes) {
  std::string packed;
  if (deflate_) packed = deflate_(bytes);
  const bool is_packed = !packed.empty();
  if (is_packed) bytes = packed;
  begin(object);
  bytes_.append("<<").append(entries).append("/Length ").append(std::to_string(bytes.size()));
  bytes_.append(is_packed ? "/Filter/FlateDecode>>\nstream\n" : ">>\nstream\n");
  bytes_.append(bytes).append("\nendstream\nendobj\n");
}

std::string gx_pdf_file::finish(int catalog, int info) {
  const std::size_t table = bytes_.size();
  const std::string size = std::to_string(offsets_.size() + 1);
  bytes_.append("xref\n0 ").append(size).append("\n0000000000 65535 f \n");
  for (const std::size_t offset : offsets_) {
    char line[24];
    std::snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
    bytes_ += line;
  }
  bytes_.append("trailer\n<</Size ").append(size).append("/Root ");
  bytes_.append(gx_pdf_reference(catalog)).append("/Info ").append(gx_pdf_reference(info));
  bytes_.append(">>\nstartxref\n").append(std::to_string(table)).append("\n%%EOF\n");
  return std::move(bytes_);
}

std::string gx_pdf_reference(int object) { return std::to_string(object) + " 0 R"; }

std::string gx_pdf_text(std::string_view text) {
  const auto characters = gx_characters(text);
  if (std::ranges::all_of(characters, [](char32_t c) { return c >= 0x20 && c < 0x7F; }))
    return bracketed(text);
  std::string hex = "<FEFF";
  const auto add = [&](char32_t unit) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned>(unit & 0xFFFF));
    hex += digits;
  };
  for (const char32_t c : characters) {
    if (c >= 0x10000) add(0xD800 + ((c - 0x10000) >> 10));
    add(c >= 0x10000 ? 0xDC00 + ((c - 0x10000) & 0x3FF) : c);
  }
  return hex += '>';
}

std::string gx_pdf_shown(std::string_view text) {
  std::string bytes;
  for (const char32_t c : gx_characters(text)) {
    const bool is_there = (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c <= 0xFF);
    bytes += c < 0x20 ? ' ' : is_there ? static_cast<char>(static_cast<unsigned char>(c)) : '?';
  }
  return bracketed(bytes);
}
