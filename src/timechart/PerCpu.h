#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// One value for each of the 16 CPUs that the system distinguishes. Other CPU numbers have no slot; callers
/// drop such data.
template <typename T>
class PerCpu {
 public:
  static constexpr int kSlots = 16;

  /// Returns the CPU's number if it has a slot, else -1.
  static std::int8_t slotOf(int cpu) { return static_cast<std::int8_t>(cpu >= 0 && cpu < kSlots ? cpu : -1); }

  /// Returns the CPU's slot, or null if it has none.
  T* find(int cpu) { return slotOf(cpu) >= 0 ? &_slots[static_cast<std::size_t>(cpu)] : nullptr; }
  const T* find(int cpu) const { return slotOf(cpu) >= 0 ? &_slots[static_cast<std::size_t>(cpu)] : nullptr; }

  /// Returns the CPU's value, or a default one if it has no slot.
  T get(int cpu) const { return find(cpu) != nullptr ? *find(cpu) : T{}; }

  /// Sets the CPU's value if it has a slot.
  void set(int cpu, const T& value) {
    if (T* slot = find(cpu); slot != nullptr) *slot = value;
  }

  auto begin() const { return _slots.begin(); }
  auto end() const { return _slots.end(); }

 private:
  std::array<T, kSlots> _slots{};
};
