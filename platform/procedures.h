// Procedures called by their address.
#pragma once

#include <cstdint>

using x_procedure_t = void (*)();
using x_procedure2_t = void (*)(void* first, void* second);

constexpr x_procedure_t xprocaddr(x_procedure_t procedure) { return procedure; }

// Calls the procedure at the address and gives 0. The caller knows that one with these arguments
// is there.
inline int xprocexe(std::uintptr_t address) {
  reinterpret_cast<x_procedure_t>(address)();
  return 0;
}
inline int xprocargexe(std::uintptr_t address, void* first, void* second) {
  reinterpret_cast<x_procedure2_t>(address)(first, second);
  return 0;
}
