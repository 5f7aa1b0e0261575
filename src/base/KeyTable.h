#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/KeyHash.h"

/// Table of pointers by keys that a recording chooses: open addressing with linear probing. It grows with the
/// number of its elements, whatever the keys are.
template <typename Value>
class KeyTable {
 public:
  /// Returns the value of the key, or null.
  Value* find(std::uint64_t key) const { return _slots.empty() ? nullptr : _slots[indexOf(key)].value; }

  /// Enters a value, which must not be null, unless the key has one.
  void add(std::uint64_t key, Value* value) {
    if (find(key) == nullptr) set(key, value);
  }

  /// Enters a value, which must not be null and replaces the one that the key has.
  void set(std::uint64_t key, Value* value) {
    if (2 * (_size + 1) > _slots.size()) grow();
    Slot& slot = _slots[indexOf(key)];
    if (slot.value == nullptr) ++_size;
    slot = {key, value};
  }

  /// Calls visit(key, value) for each element, in no order that means anything.
  template <typename Visit>
  void forEach(Visit visit) const {
    for (const Slot& slot : _slots)
      if (slot.value != nullptr) visit(slot.key, slot.value);
  }

 private:
  struct Slot {
    std::uint64_t key = 0;
    Value* value = nullptr;  ///< null in a free slot
  };

  static constexpr std::size_t kSmallest = 16;
  /// Keys that differ in these bits only are neighbours in the table, too: most keys are given out one after
  /// the other, and go together through the processor's cache. More bits make long searches where groups
  /// meet.
  static constexpr std::uint64_t kNearBits = 3;

  /// Returns the slot that has the key, or else the free one that it would take.
  std::size_t indexOf(std::uint64_t key) const {
    const std::size_t mask = _slots.size() - 1;
    auto index = static_cast<std::size_t>(_hash(key / (kNearBits + 1)) * (kNearBits + 1) + (key & kNearBits));
    while (_slots[index & mask].value != nullptr && _slots[index & mask].key != key) ++index;
    return index & mask;
  }

  void grow() {
    const std::vector<Slot> old = std::exchange(_slots, {});
    _slots.resize(old.empty() ? kSmallest : 2 * old.size());
    for (const Slot& slot : old)
      if (slot.value != nullptr) _slots[indexOf(slot.key)] = slot;
  }

  std::vector<Slot> _slots;  ///< as many as a power of two
  std::size_t _size = 0;
  KeyHash _hash;
};
