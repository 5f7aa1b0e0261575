#pragma once

#include <memory>
#include <unordered_set>
#include <vector>

#include "base/KeyHash.h"
/// Keys in the order of their first mention, each once.
class KeyList {
 public:
  void add(unsigned int key);
  const std::vector<unsigned int>& keys() const { return _keys; }

 private:
  using Index = std::unordered_set<unsigned int, KeyHash>;

  std::vector<unsigned int> _keys;
  std::unique_ptr<Index> _index;  ///< once there are too many keys to look through
};
