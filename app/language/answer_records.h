// What answers say, as data, for programs that read a batch as JSON. A command that has more to say
// than its lines makes a record of what it makes its lines of.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <variant>

// A named value of a record. Texts are the caller's, and hold while the record is taken.
struct kv_named_value_t {
  kv_named_value_t(std::string_view the_name, std::string_view text)
      : name(the_name), value(text) {}
  kv_named_value_t(std::string_view the_name, std::span<const std::string_view> texts)
      : name(the_name), value(texts) {}
  template <std::same_as<bool> Flag>
  kv_named_value_t(std::string_view the_name, Flag flag) : name(the_name), value(flag) {}
  template <std::integral Number>
  requires(!std::same_as<Number, bool>) kv_named_value_t(std::string_view the_name, Number number)
      : name(the_name), value(static_cast<std::int64_t>(number)) {}
  // What is not a number, or infinite, is none.
  kv_named_value_t(std::string_view the_name, double number) : name(the_name), value(number) {}

  std::string_view name;
  std::variant<bool, std::int64_t, double, std::string_view, std::span<const std::string_view>>
      value;
};

// Gives a record of a type ("finding") to the one who takes them; does nothing when nobody does.
void kv_record(std::string_view type, std::initializer_list<kv_named_value_t> fields);

// Who takes records, those of the messages of an expansion, too; nobody at first.
using kv_record_taker_t = void (*)(std::string_view type, std::span<const kv_named_value_t> fields);
void kv_set_record_taker(kv_record_taker_t taker);
