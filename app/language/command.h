// What a command handler receives.
#pragma once

#include <span>
#include <string_view>

#include "app/state.h"
#include "gx/text/at.h"

// One command: its words (word 1 is the keyword, at most 30) and the tables of its level.
struct kv_command_t {
  std::span<const gx_string_record_t> words;
  kv_array_param_t& args;
  kv_array_param_t& vars;

  int count() const { return static_cast<int>(words.size()); }
  // Word n, from 1; empty when there is none.
  std::string_view word(int n) const {
    return n >= 1 && n <= count() ? gx_view(gx_at(words, n - 1)) : std::string_view{};
  }
};
