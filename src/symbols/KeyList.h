#pragma once

#include <memory>
#include <unordered_set>
#include <vector>

#include "base/KeyHash.h"
/// A set of keys in the order in which they were first added.
class KeyList {
 public:
  /// Adds a key unless it is in the set.
  void add(unsigned int key);
  const std::vector<unsigned int>& keys() const { return _keys; }

 private:
  using Index = std::unordered_set<unsigned int, KeyHash>;

  std::vector<unsigned int> _keys;
  std::unique_ptr<Index> _index;  ///< null while there are few enough keys for a linear search
};
