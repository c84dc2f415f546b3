// Opening the files that the expander writes.
#pragma once

#include <string>

// Opens (makes, with the rights 0660 less the umask) a file to write; `flags` are further ones of
// open(2). Nothing is written through a symbolic link, and nothing but a file or a device is
// opened. The descriptor, or -1 and in `why` the reason in words.
int kv_open_output(const std::string& path, int flags, std::string& why);
