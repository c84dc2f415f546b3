// Symbol tables of executables: the a.out form and ELF64.
//
// The files are not trusted: every offset and size is held against the size of the file before it
// is used.
#pragma once

#include <cstdint>
#include <string_view>

// One symbol asked for; an array of them ends with a null name.
struct x_nlist_t {
  const char* name = nullptr;
  std::uint8_t type = 0;
  std::uint8_t other = 0;
  std::uint16_t desc = 0;
  std::uint32_t value = 0;
};

// Fills the entries that an a.out symbol table holds (the last symbol of a name wins). 0, or -1
// when there are no entries (errno EINVAL) or the file is not read; entries are then untouched.
int nlist(const char* path, x_nlist_t* entries);

// The value of a symbol of an executable, 0 when absent; of an ELF file only defined functions, in
// the named section when one is given. A path without "/" is this process's own executable. For
// this process's executable the value is the address at which the function is in memory.
std::uintptr_t xm_get_extid_offset(const char* path, const char* name,
                                   std::string_view section = {});
