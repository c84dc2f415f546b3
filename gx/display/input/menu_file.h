// The menu file: one entry a line, its place given by the order of the lines.
// Errors are counted and shown with the line; what was read before them stays defined. A file that
// cannot be opened is reported by its name and leaves the tree as it was.
#pragma once

#include <string_view>

void gx_read_menu(std::string_view path);  // replaces the tree; nothing for an empty path
void gx_print_menu(std::string_view path);
