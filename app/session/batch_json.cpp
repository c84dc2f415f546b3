#include "app/session/batch_json.h"

#include <charconv>
#include <cmath>

#include "app/language/answers.h"
#include "gx/text/at.h"
#include "platform/json.h"

namespace {
struct answer_t {
  std::string lines, records;
};
answer_t json_answer;

std::string& next_of(std::string& list) {
  if (!list.empty()) list += ", ";
  return list;
}

void append_name(std::string& json, std::string_view name) {
  json.append("\"").append(name).append("\": ");
}

void append_texts(std::string& json, std::span<const std::string_view> texts) {
  json += '[';
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (i > 0) json += ", ";
    x_append_json(json, texts[i]);
  }
  json += ']';
}

struct appender_t {
  std::string& json;
  void operator()(bool flag) const { json += flag ? "true" : "false"; }
  void operator()(std::int64_t number) const { json += std::to_string(number); }
  void operator()(double number) const {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    json += std::isfinite(number) ? std::string_view(digits, end) : std::string_view("null");
  }
  void operator()(std::string_view text) const { x_append_json(json, text); }
  void operator()(std::span<const std::string_view> texts) const { append_texts(json, texts); }
};

void take_record(std::string_view type, std::span<const kv_named_value_t> fields) {
  std::string& json = next_of(json_answer.records);
  json += R"({"type": )";
  x_append_json(json, type);
  for (const auto& field : fields) {
    json += ", ";
    append_name(json, field.name);
    std::visit(appender_t{json}, field.value);
  }
  json += '}';
}
}  // namespace

void kv_begin_json() {
  json_answer = {};
  kv_set_record_taker(take_record);
}

void kv_take_json_line(std::string_view line, gx_line_kind kind) {
  constexpr std::string_view kinds[] = {"plain", "detail", "warning", "error"};
  std::string& json = next_of(json_answer.lines);
  json += R"({"kind": ")";
  json.append(gx_at(kinds, kind)).append(R"(", "text": )");
  x_append_json(json, line);
  json += '}';
}

std::string kv_end_json_answer(std::string_view command, bool is_fault) {
  std::string json = R"({"command": )";
  x_append_json(json, command);
  json += is_fault ? R"(, "status": 1, "lines": [)" : R"(, "status": 0, "lines": [)";
  json += json_answer.lines;
  json += R"(], "records": [)";
  json += json_answer.records;
  json += "]}\n";
  json_answer = {};
  return json;
}
