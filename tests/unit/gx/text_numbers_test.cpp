// Numbers, tokens and dates: text in, value out, and back.
#include <sstream>
#include <string>

#include "gx/text/date.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/text/tokens.h"
#include "tests/support/session_case.h"

namespace {

// "KIND TEXT": its value, "error" after it where it is wrong; "KIND-out NUMBER": its text.
class numbers_session {
 public:
  explicit numbers_session(std::string_view) {}
  static lines_t answer(const std::string& line) {
    const auto blank = std::min(line.find(' '), line.size());
    const std::string kind = line.substr(0, blank);
    const std::string text = line.substr(std::min(blank + 1, line.size()));
    gx_string_record_t out;
    if (kind == "int32") return told(gx_string_to_int32(text));
    if (kind == "int16") return told(gx_string_to_int16(text));
    if (kind == "hex") return told(gx_stringh_to_int32(text));
    if (kind == "real") return told(gx_string_to_real(text));
    if (kind == "short") return told(gx_string_to_shortreal(text));
    if (kind == "tokens") return tokens(text);
    if (kind == "date") {
      const gx_date_t d = gx_date_of(std::stoll(text));
      std::ostringstream date;
      date << d.day << '.' << d.month << '.' << d.year << ' ' << d.hour << ':' << d.minute;
      return {date.str()};
    }
    if (kind == "int32-out") gx_int32_to_string(std::stoi(text), out);
    if (kind == "int16-out") gx_int16_to_string(static_cast<std::int16_t>(std::stoi(text)), out);
    if (kind == "real-out") gx_real_to_string(std::stoi(text), out);
    if (kind == "short-out") gx_shortreal_to_string(std::stof(text), out);
    return {std::string(gx_view(out))};
  }

 private:
  template <typename Parsed>
  static lines_t told(const Parsed& parsed) {
    std::ostringstream text;
    text << parsed.value << (parsed.error ? " error" : "");
    return {text.str()};
  }
  // "SET:LINE", each in brackets.
  static lines_t tokens(std::string_view of) {
    const auto colon = of.find(':');
    const auto line = gx_string(of.substr(colon + 1));
    std::string told;
    gx_string_record_t token;
    for (std::int32_t pos = 1; gx_rd_string_t(line, of.substr(0, colon), token, pos);)
      told += "[" + std::string(gx_view(token)) + "]";
    return {told};
  }
};

TEST(Numbers, AreThoseOfTheirTexts) { expect_sessions<numbers_session>("values/numbers.txt"); }

TEST(Tokens, ThereIsNoneOutsideTheLine) {
  gx_string_record_t token;
  for (std::int32_t outside : {0, -3, 4, 201}) {
    std::int32_t pos = outside;
    EXPECT_FALSE(gx_rd_string_t(gx_string("abc"), " ", token, pos));
    EXPECT_EQ(pos, outside);
  }
}

}  // namespace
