// The script and the style of pages for the browser, as they are in page.js and page.css, and what
// a content-security policy calls them ("sha256-..."). Made when the program is built.
#pragma once

#include <string_view>

extern const std::string_view kv_page_script, kv_page_style;
extern const std::string_view kv_page_script_hash, kv_page_style_hash;
