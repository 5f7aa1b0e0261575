#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/FibonacciHash.h"

class PerfRecordMMap;
class SymbolTableElement;

/// What the 32-bit target uses an address for, see PerfRecordMMap.
enum class AddressClass : unsigned char { kernel, stack, mapped };

/// The latest answers to what stands for an address in a sample of a thread. Samples ask for the same few
/// addresses again and again.
class AddressLookUps {
 public:
  /// Fills a line of the processor's cache, so that a look at one costs no more than that.
  struct alignas(64) Answer {
    unsigned long long address = 0;
    unsigned int pid = 0;
    unsigned int tid = 0;
    std::uint32_t maps = 0;  ///< how many there were; the answer is good while there are no more
    // For an answer with a page only, as that stands under a map that depends on both.
    std::uint32_t processes = 0;                      ///< how many there were
    AddressClass sampleClass = AddressClass::kernel;  ///< of the sample's own address
    PerfRecordMMap* map = nullptr;
    SymbolTableElement* symbol = nullptr;  ///< in the map, if it has one at the address
    SymbolTableElement* page = nullptr;    ///< the synthetic symbol of an address that no map covers
  };

  /// The place where the answer stands, if it is known.
  Answer& operator()(unsigned long long address, unsigned int pid, unsigned int tid) {
    const std::uint64_t key = address ^ std::uint64_t{pid} << 32 ^ std::uint64_t{tid} << 40;
    return _answers[fibonacciHash(key, kPlaceBits)];
  }

 private:
  static constexpr unsigned int kPlaceBits = 16;

  std::array<Answer, std::size_t{1} << kPlaceBits> _answers;
};
