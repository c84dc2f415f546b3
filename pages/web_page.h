// A design as one file for the browser: the page's script and style, and the data packed.
#pragma once

#include <functional>
#include <string>
#include <string_view>

// The file. `data` is JSON (kv_page_data); `deflated` packs bytes in the zlib format. The page
// loads nothing, and its browser runs no other script than its own: what it shows is data only.
std::string kv_web_page(std::string_view title, std::string_view data,
                        const std::function<std::string(std::string_view)>& deflated);
