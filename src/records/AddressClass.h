#pragma once

#include "run/Settings.h"

/// What the 32-bit target uses an address for: the kernel, above gKernelStart; the stack, 0xB0000001 to
/// 0xBEFFFFFF; mapped files, all others.
enum class AddressClass : unsigned char { kernel, stack, mapped };

inline constexpr unsigned long long kStackStart = 0xB0000000;
inline constexpr unsigned long long kStackEnd = 0xBEFFFFFF;

/// Returns the class of an address.
inline AddressClass classOf(unsigned long long address) {
  if (address > gKernelStart) return AddressClass::kernel;
  return address > kStackStart && address <= kStackEnd ? AddressClass::stack : AddressClass::mapped;
}
