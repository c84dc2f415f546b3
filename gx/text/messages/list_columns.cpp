#include "gx/text/messages/list_columns.h"

#include <algorithm>

#include "gx/text/messages/message_list.h"

namespace {
int columns = gx_max_text_length;
}

int gx_list_width() { return columns; }

void gx_set_list_width(int wanted) { columns = std::clamp(wanted, 20, gx_max_string_length - 1); }

bool gx_list_is_plain() { return columns == gx_max_text_length; }

std::size_t gx_list_break() {
  return gx_list_columns + static_cast<std::size_t>(std::max(columns - gx_max_text_length, 0));
}
