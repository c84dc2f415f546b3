#include "gxmake/field_words.h"

#include <algorithm>
#include <iterator>

#include "gx/text/numbers.h"

namespace {

constexpr std::string_view unsaid[] = {
    "object_id", "object_type", "status", "software_revision", "object_id_max", "day", "month",
    "year",      "hour",        "minute"};

// The numbers of a word of exactly `many`, separated by commas.
bool read_numbers(std::string_view word, std::span<std::int32_t> numbers) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto comma = word.find(',');
    const bool is_last = i + 1 == numbers.size();
    if ((comma == std::string_view::npos) != is_last) return false;
    const auto number = gx_whole_number<std::int32_t>(word.substr(0, comma));
    if (!number) return false;
    numbers[i] = *number;
    word.remove_prefix(is_last ? word.size() : comma + 1);
  }
  return true;
}

template <typename Number>
bool put_number(void* record, const gx_field_t& field, std::string_view word) {
  const auto number = gx_whole_number<Number>(word);
  if (number) gx_put_number(record, field, *number);
  return number.has_value();
}

template <typename Text>
bool put_text(void* record, const gx_field_t& field, std::string_view word) {
  const bool printable =
      std::all_of(word.begin(), word.end(), [](char c) { return c >= ' ' && c <= '~'; });
  const auto room = static_cast<std::size_t>(gx_kind_capacity(field.kind));
  if (!printable || word.size() > room) return false;
  auto& text = gx_member<Text>(record, field);
  text = {};
  std::copy(word.begin(), word.end(), text.char_);
  text.len = static_cast<std::int32_t>(word.size());
  return true;
}

// "x,y;x,y;..."; the points that are not said are 0,0.
template <std::size_t Many>
bool put_points(void* record, const gx_field_t& field, std::string_view word) {
  std::array<gx_pointreal_t, Many> points{};
  for (auto& point : points) {
    if (word.empty()) break;
    const auto end = word.find(';');
    const auto place = gxm_place(word.substr(0, end));
    if (!place) return false;
    point = *place;
    word.remove_prefix(end == std::string_view::npos ? word.size() : end + 1);
  }
  if (!word.empty()) return false;
  gx_member<std::array<gx_pointreal_t, Many>>(record, field) = points;
  return true;
}

std::string point_word(const gx_pointreal_t& point) {
  return std::to_string(point.x) + "," + std::to_string(point.y);
}

}  // namespace

bool gxm_is_said(const gx_field_t& field) {
  return field.kind != gx_kind::zeros4 && field.kind != gx_kind::real &&
         std::find(std::begin(unsaid), std::end(unsaid), field.name) == std::end(unsaid);
}

const gx_field_t* gxm_find_field(gx_fields_t fields, std::string_view name) {
  const auto found = std::find_if(fields.begin(), fields.end(), [&](const gx_field_t& field) {
    return field.name == name && gxm_is_said(field);
  });
  return found == fields.end() ? nullptr : &*found;
}

const gx_field_t* gxm_find_field(gx_type type, std::string_view name) {
  const auto* const general = gxm_find_field(gx_general_fields(), name);
  return general != nullptr ? general : gxm_find_field(gx_tail_fields(type), name);
}

std::string gxm_field_word(const void* record, const gx_field_t& field,
                           const std::function<std::string(int)>& label) {
  switch (field.kind) {
    case gx_kind::id: {
      const auto id = gx_field_number(record, field);
      return id == 0 ? "0" : "@" + label(id);
    }
    case gx_kind::point:
      return point_word(gx_member<gx_pointreal_t>(record, field));
    case gx_kind::bounds: {
      const auto& box = gx_member<gx_boundsreal_t>(record, field);
      return point_word({box.xmin, box.ymin}) + "," + point_word({box.xmax, box.ymax});
    }
    case gx_kind::string:
    case gx_kind::name:
    case gx_kind::value:
      return gxm_quoted(gx_field_text(record, field));
    case gx_kind::points5:
    case gx_kind::points16: {
      auto points = gx_field_points(record, field);
      while (!points.empty() && points.back() == gx_pointreal_t{})
        points = points.first(points.size() - 1);
      std::string word;
      for (const auto& point : points) word += (word.empty() ? "" : ";") + point_word(point);
      return word;
    }
    default:
      return std::to_string(gx_field_number(record, field));
  }
}

bool gxm_put_word(void* record, const gx_field_t& field, std::string_view word,
                  const std::function<int(std::string_view)>& id) {
  switch (field.kind) {
    case gx_kind::i16:
    case gx_kind::i16_le:
      return put_number<std::int16_t>(record, field, word);
    case gx_kind::i32:
      return put_number<std::int32_t>(record, field, word);
    case gx_kind::u8:
    case gx_kind::flag:
      return put_number<std::uint8_t>(record, field, word);
    case gx_kind::id: {
      const int named = word.starts_with('@') ? id(word.substr(1)) : 0;
      if (named == 0 && word != "0") return false;
      gx_put_number(record, field, static_cast<gx_object_id_t>(named));
      return true;
    }
    case gx_kind::point: {
      const auto place = gxm_place(word);
      if (place) gx_member<gx_pointreal_t>(record, field) = *place;
      return place.has_value();
    }
    case gx_kind::bounds: {
      std::int32_t sides[4];
      if (!read_numbers(word, sides)) return false;
      gx_member<gx_boundsreal_t>(record, field) = {sides[0], sides[1], sides[2], sides[3]};
      return true;
    }
    case gx_kind::string:
      return put_text<gx_string_record_t>(record, field, word);
    case gx_kind::name:
      return put_text<gx_name_record_t>(record, field, word);
    case gx_kind::value:
      return put_text<gx_value_record_t>(record, field, word);
    case gx_kind::points5:
      return put_points<5>(record, field, word);
    case gx_kind::points16:
      return put_points<16>(record, field, word);
    default:
      return false;
  }
}

std::string gxm_quoted(std::string_view text) {
  if (text.find_first_of(" \"'") == std::string_view::npos) return std::string(text);
  std::string word;
  while (!text.empty()) {  // runs without one of the two quotes
    const char quote = text[0] == '"' ? '\'' : '"';
    const auto run = text.substr(0, text.find(quote));
    word.append(1, quote).append(run).append(1, quote);
    text.remove_prefix(run.size());
  }
  return word;
}

std::optional<gx_pointreal_t> gxm_place(std::string_view word) {
  std::int32_t numbers[2];
  if (!read_numbers(word, numbers)) return std::nullopt;
  return gx_pointreal_t{numbers[0], numbers[1]};
}
