// What the tools that show a design outside of the window have in common: their options, and files.
#pragma once

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pages/design_pages.h"
#include "platform/files.h"
#include "platform/usage.h"

// "top" of "designs/top/".
inline std::string_view last_name(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);
}

inline std::string deflated(std::string_view bytes) {
  uLongf size = compressBound(bytes.size());
  std::string packed(size, '\0');
  if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), 6) != Z_OK)
    return {};
  packed.resize(size);
  return packed;
}

inline bool write_file(const tool_t& tool, const std::string& path, std::string_view bytes) {
  if (x_replace_file(path, bytes)) return true;
  tool_complain(tool, "cannot write " + path + ": " + x_why_unread(errno));
  return false;
}

// The values of --primitive, CLASS when there are none; a status when they are too many.
inline std::optional<int> read_primitives(const tool_t& tool,
                                          std::vector<std::string_view>& primitives) {
  if (std::ssize(primitives) > kv_max_list)
    return tool_usage_error(tool, "--primitive: at most " + std::to_string(kv_max_list));
  if (primitives.empty()) primitives.push_back("CLASS");
  return std::nullopt;
}

// Whether a path is one that a sheet can have; complains when it is not.
inline bool can_be_sheet(const tool_t& tool, const std::string& path) {
  const bool is_long = path.size() >= gx_max_string_length - 16;
  if (is_long) tool_complain(tool, "path too long: " + path);
  const bool is_plain = std::ranges::all_of(path, [](char c) { return c >= 32 && c <= 126; });
  if (!is_plain) tool_complain(tool, "letters beyond ASCII in the path: " + path);
  return !is_long && is_plain;
}
