#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/KeyHash.h"

/// Hash table from keys of a recording to pointers: open addressing with linear probing. Its size follows
/// from the number of its elements, whatever the keys are.
template <typename Value>
class KeyTable {
 public:
  /// Returns the value of the key, or null.
  Value* find(std::uint64_t key) const { return _slots.empty() ? nullptr : _slots[indexOf(key)].value; }

  /// Adds a value, which must not be null, unless the key already has one.
  void add(std::uint64_t key, Value* value) {
    if (find(key) == nullptr) set(key, value);
  }

  /// Sets the key's value, which must not be null.
  void set(std::uint64_t key, Value* value) {
    if (2 * (_size + 1) > _slots.size()) grow();
    Slot& slot = _slots[indexOf(key)];
    if (slot.value == nullptr) ++_size;
    slot = {key, value};
  }

  /// Calls visit(key, value) for each element, in unspecified order.
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
  /// Keys that differ in these bits only are neighbours in the table too: most keys are consecutive numbers,
  /// which then share lines of the processor's cache. More bits make long searches where groups meet.
  static constexpr std::uint64_t kNearBits = 3;

  /// Returns the index of the slot that has the key, or else of the free slot that it would take.
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

  std::vector<Slot> _slots;  ///< their number is a power of two, or 0
  std::size_t _size = 0;
  KeyHash _hash;
};
