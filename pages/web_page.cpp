#include "pages/web_page.h"

#include "gx/vector/look.h"
#include "pages/web/files.h"

namespace {
std::string base64(std::string_view bytes) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned three = 0;
    for (std::size_t k = i; k < i + 3; ++k)
      three = three << 8 | (k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0U);
    for (int shift = 18; shift >= 0; shift -= 6) text += digits[three >> shift & 63];
  }
  const std::size_t rest = bytes.size() % 3;
  if (rest > 0) text.replace(text.size() - (3 - rest), 3 - rest, 3 - rest, '=');
  return text;
}
}  // namespace

std::string kv_web_page(std::string_view title, std::string_view data,
                        const std::function<std::string(std::string_view)>& deflated) {
  std::string page =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src '";
  page.append(kv_page_script_hash).append("'; style-src '").append(kv_page_style_hash);
  page +=
      "'; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"generator\" content=\"kivo-page\">\n<title>";
  page.append(gx_xml(title)).append("</title>\n<style>").append(kv_page_style);
  page += "</style>\n</head>\n<body>\n<noscript>This page needs JavaScript.</noscript>\n";
  page.append("<div id=\"data\" hidden>").append(base64(deflated(data))).append("</div>\n");
  page.append("<script>").append(kv_page_script).append("</script>\n</body>\n</html>\n");
  return page;
}
