#include "app/language/command_words.h"

#include "gx/text/tokens.h"

void kv_split_words(const gx_string_record_t& text, kv_words_t& words, std::size_t most) {
  words.count = 0;
  for (std::int32_t pos = 1; words.count < most && pos <= kv_last_position;) {
    gx_string_record_t& word = words.word[words.count];
    if (!gx_rd_string_t(text, " ,", word, pos)) return;
    if (word.len > 0) ++words.count;
  }
}
