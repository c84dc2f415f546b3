#include "platform/symbol_table.h"

#include <elf.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/words.h"

namespace {
constexpr char own_executable[] = "/proc/self/exe";

// An open file whose parts are read only where it has them.
class bounded_file {
 public:
  explicit bounded_file(const char* path) : file_(x_open_regular(path)) {
    struct stat info {};
    if (file_ && fstat(file_.get(), &info) == 0) size_ = static_cast<std::uint64_t>(info.st_size);
  }

  // False also beyond the end, where pread has nothing.
  bool read(std::uint64_t offset, void* to, std::uint64_t length) const {
    const auto got = pread(file_.get(), to, length, static_cast<off_t>(offset));
    return got >= 0 && static_cast<std::uint64_t>(got) == length;
  }
  std::optional<std::vector<char>> bytes(std::uint64_t offset, std::uint64_t length) const {
    if (offset > size_ || length > size_ - offset) return {};
    std::vector<char> read_bytes(length);
    if (!read(offset, read_bytes.data(), length)) return {};
    return read_bytes;
  }
  bool same_file_as(const char* path) const {
    struct stat mine {
    }, other{};
    return fstat(file_.get(), &mine) == 0 && stat(path, &other) == 0 &&
           mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
  }

 private:
  x_descriptor file_;
  std::uint64_t size_ = 0;
};

template <typename Record>
Record record_at(const std::vector<char>& bytes, std::size_t index) {
  Record record;
  std::memcpy(&record, bytes.data() + index * sizeof record, sizeof record);
  return record;
}

// The text at an offset of a string table; empty when it does not lie in the table.
std::string_view text_at(const std::vector<char>& table, std::uint64_t offset) {
  if (offset >= table.size()) return {};
  const char* text = table.data() + offset;
  return {text, strnlen(text, table.size() - offset)};
}

// --- a.out
struct aout_header_t {
  std::uint32_t magic, text, data, bss, symbols, entry, text_relocation, data_relocation;
};
struct aout_symbol_t {
  std::uint32_t string_offset;
  std::uint8_t type, other;
  std::uint16_t desc;
  std::uint32_t value;
};
static_assert(sizeof(aout_header_t) == 32 && sizeof(aout_symbol_t) == 12);
constexpr std::uint32_t aout_demand_paged = 0413;
constexpr std::uint32_t aout_compact = 0314;

std::uint64_t aout_header_offset(std::uint32_t magic) {
  if (magic == aout_demand_paged) return 1024;
  return magic == aout_compact ? 0 : sizeof(aout_header_t);
}

// --- ELF64 of this machine's byte order
std::uintptr_t load_base() {
  std::uintptr_t base = 0;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* to) {
        *static_cast<std::uintptr_t*>(to) = info->dlpi_addr;  // the program itself comes first
        return 1;
      },
      &base);
  return base;
}

bool is_elf(const bounded_file& file) {
  std::array<char, SELFMAG> magic{};
  return file.read(0, magic.data(), magic.size()) &&
         std::memcmp(magic.data(), ELFMAG, SELFMAG) == 0;
}

class elf_file {
 public:
  explicit elf_file(const bounded_file& file) : file_(file) {
    if (!file_.read(0, &header_, sizeof header_)) return;
    if (header_.e_ident[EI_CLASS] != ELFCLASS64 || header_.e_shentsize != sizeof(Elf64_Shdr))
      return;
    sections_.resize(header_.e_shnum);
    if (!file_.read(header_.e_shoff, sections_.data(), sections_.size() * sizeof(Elf64_Shdr)))
      sections_.clear();
    if (header_.e_shstrndx < sections_.size())
      section_names_ = contents(sections_[header_.e_shstrndx]);
  }

  bool position_independent() const { return header_.e_type == ET_DYN; }

  // The value of a defined function; the full table is searched before the dynamic one, which is
  // all that a stripped program has.
  std::uintptr_t function(std::string_view name, std::string_view in_section) const {
    for (const Elf64_Word kind : {Elf64_Word{SHT_SYMTAB}, Elf64_Word{SHT_DYNSYM}})
      for (const Elf64_Shdr& section : sections_)
        if (section.sh_type == kind)
          if (const auto value = find_in(section, name, in_section); value != 0) return value;
    return 0;
  }

 private:
  std::vector<char> contents(const Elf64_Shdr& section) const {
    return file_.bytes(section.sh_offset, section.sh_size).value_or(std::vector<char>{});
  }

  std::uintptr_t find_in(const Elf64_Shdr& symbols, std::string_view name,
                         std::string_view in_section) const {
    if (symbols.sh_link >= sections_.size() || symbols.sh_entsize != sizeof(Elf64_Sym)) return 0;
    const auto strings = contents(sections_[symbols.sh_link]);
    const auto entries = contents(symbols);
    for (std::size_t i = 0; i < entries.size() / sizeof(Elf64_Sym); ++i) {
      const auto symbol = record_at<Elf64_Sym>(entries, i);
      if (ELF64_ST_TYPE(symbol.st_info) != STT_FUNC || symbol.st_shndx >= sections_.size() ||
          symbol.st_shndx == SHN_UNDEF || text_at(strings, symbol.st_name) != name)
        continue;
      if (in_section.empty() ||
          text_at(section_names_, sections_[symbol.st_shndx].sh_name) == in_section)
        return symbol.st_value;
    }
    return 0;
  }

  const bounded_file& file_;
  Elf64_Ehdr header_{};
  std::vector<Elf64_Shdr> sections_;
  std::vector<char> section_names_;
};
}  // namespace

int nlist(const char* path, x_nlist_t* entries) {
  if (entries == nullptr) {
    errno = EINVAL;
    return -1;
  }
  const bounded_file file(path);
  aout_header_t header{};
  if (!file.read(0, &header, sizeof header)) return -1;
  const std::uint64_t symbols_at = aout_header_offset(header.magic) + header.text + header.data +
                                   header.text_relocation + header.data_relocation;
  const auto symbols = file.bytes(symbols_at, header.symbols);
  const std::uint64_t strings_at = symbols_at + header.symbols;
  std::uint32_t strings_size = 0;
  if (!symbols || !file.read(strings_at, &strings_size, sizeof strings_size)) return -1;
  if (strings_size < sizeof strings_size) return -1;
  const auto strings =
      file.bytes(strings_at + sizeof strings_size, strings_size - sizeof strings_size);
  if (!strings) return -1;

  for (std::size_t i = 0; i < symbols->size() / sizeof(aout_symbol_t); ++i) {
    const auto symbol = record_at<aout_symbol_t>(*symbols, i);
    // Counted from the size; one before the texts is far after them.
    const auto name = text_at(*strings, symbol.string_offset - sizeof strings_size);
    for (x_nlist_t* entry = entries; entry->name != nullptr; ++entry) {
      if (name.empty() || name != entry->name) continue;
      entry->type = symbol.type;
      entry->other = symbol.other;
      entry->desc = symbol.desc;
      entry->value = symbol.value;
    }
  }
  return 0;
}

std::uintptr_t xm_get_extid_offset(const char* path, const char* name, std::string_view section) {
  const std::string symbol(name, static_cast<std::size_t>(xstrlen(name)));
  std::string executable(path, strnlen(path, x_max_text));
  if (executable.size() == x_max_text && path[x_max_text] != 0)
    std::printf(" !!! Error in gx_getextid_offset(c) : len= %d  '%s'  ", x_max_text, path);
  if (executable.find('/') == std::string::npos) executable = own_executable;

  const bounded_file file(executable.c_str());
  if (!is_elf(file)) {
    std::array<x_nlist_t, 2> request{};
    request[0].name = symbol.c_str();
    nlist(executable.c_str(), request.data());
    return request[0].value;
  }
  const elf_file elf(file);
  const std::uintptr_t value = elf.function(symbol, section);
  if (value == 0 || !elf.position_independent() || !file.same_file_as(own_executable)) return value;
  return value + load_base();
}
