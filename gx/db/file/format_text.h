// The format of GX files as tables in Markdown, from the record tables that read and write them.
#pragma once

#include <string>

std::string gx_format_text();
