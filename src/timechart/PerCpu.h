#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// One value for each CPU that the system can tell apart. There are 16 places; a fact about any other CPU has
/// none, and is dropped by whoever asks for it.
template <typename T>
class PerCpu {
 public:
  static constexpr int kPlaces = 16;

  /// The CPU's number if it has a place, else -1.
  static std::int8_t placeOf(int cpu) {
    return static_cast<std::int8_t>(cpu >= 0 && cpu < kPlaces ? cpu : -1);
  }

  /// The place of the CPU, or null if it has none.
  T* find(int cpu) { return placeOf(cpu) >= 0 ? &_places[static_cast<std::size_t>(cpu)] : nullptr; }

  /// The value of the CPU; that of a fresh place if it has none.
  T get(int cpu) { return find(cpu) != nullptr ? *find(cpu) : T{}; }

  void set(int cpu, const T& value) {
    if (T* place = find(cpu); place != nullptr) *place = value;
  }

 private:
  std::array<T, kPlaces> _places{};
};
