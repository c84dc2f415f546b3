// Completion of the command line: the present settings as a command ready to be edited.
#include "app/language/completion.h"

#include <initializer_list>

#include "app/language/interpreter.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/display/input/cursor.h"
#include "gx/display/input/line_edit.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
// " KEYword value value ": the command with numbers after it.
gx_string_record_t with_values(std::string_view keyword, std::initializer_list<gx_real_t> values) {
  gx_string_record_t line = gx_string(keyword);
  for (const gx_real_t value : values) {
    gx_string_record_t number;
    gx_real_to_string(value, number);
    gx_concat_all(line, gx_view(number), " ");
  }
  return line;
}

// The completed line; empty when there is nothing to complete.
gx_string_record_t completed(const kv_words_t& words) {
  const auto begins = [&](std::size_t n, std::string_view keyword) {
    return n <= words.count && gx_equal(keyword, gx_view(words.word[n - 1]));
  };
  if (begins(1, "BASE")) {
    const gx_pointreal_t base = gx_inq_base_point();
    return with_values(" BASEpoint Edit ", {base.x, base.y});
  }
  const bool grid_state = begins(1, "GRI") && words.count == 1;
  if (grid_state && kv_pext.file_id_cur <= 1) return gx_string(" GRId ON ");
  if (kv_pext.file_id_cur < 1) return {};
  const auto& sheet = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
  if (begins(1, "TEMP") && begins(2, "PA")) {
    const gx_pointreal_t page = gx_inq_page_dim(sheet);
    return with_values(" TEMPlate PAge ", {page.x, page.y});
  }
  if (begins(1, "GRI") && begins(2, "ST"))
    return with_values(" GRId STep ", {gx_inq_grid_step(sheet)});
  if (grid_state) return gx_string(gx_inq_grid_state(sheet) ? " GRId ON " : " GRId OFF ");
  return {};
}
}  // namespace

void kv_expand_cmd(const gx_string_record_t& line) {
  gx_string_record_t text = line;
  gx_rest_string(text);
  gx_debug(" KV_EXPAND_CMD_IN : cmd :\"%.*s\"\n", text.len, text.char_);
  kv_words_t words;
  kv_split_words(text, words);
  for (std::size_t i = 0; i < words.count; ++i)  // a comment ends the command
    if (words.word[i].char_[0] == '#') words.count = i;
  if (words.count == 0) return;
  const gx_string_record_t result = completed(words);
  if (result.len == 0) {
    gx_tell_as(gx_line_kind::error, "#  !! Unknown Command or not implemented for expand  ?? ");
    gx_tell("# cmd :  \"", gx_view(text), "\"");
    return;
  }
  gx_vext.str_cmd = result;
  gx_display_cmd(gx_view(result));
}
