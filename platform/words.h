// Flag words, addresses carried as integers, and bounded texts of the system.
#pragma once

#include <cstdint>

// --- flag words
constexpr std::uint32_t xpand(std::uint32_t a, std::uint32_t b) { return a & b; }
constexpr std::uint32_t xpandinv(std::uint32_t a, std::uint32_t b) { return a & ~b; }
constexpr std::uint32_t xpor(std::uint32_t a, std::uint32_t b) { return a | b; }

// --- an address as an integer
constexpr std::uintptr_t xintadd(std::uintptr_t value) { return value; }
constexpr std::uintptr_t xanyint(std::uintptr_t value) { return value; }

// The number in lower-case hexadecimal; the rest of the 20 bytes is 0. The result is 0.
int xgetspucode(std::uint32_t number, char (&buffer)[20]);

// --- bounded texts
inline constexpr int x_max_text = 99;
// The length of a zero-terminated text, at most 99; a longer one is an error on standard output.
int xstrlen(const char* text);
// The environment variable of that name, null when there is none. A name of more than 98
// characters is reported on standard output and cut, in the caller's buffer.
const char* xgetenv(char* name);
