#pragma once

#include <unordered_set>
#include <vector>

/// Keys in the order of their first mention, each once.
class KeyList {
 public:
  void add(unsigned int key);
  const std::vector<unsigned int>& keys() const { return _keys; }

 private:
  std::vector<unsigned int> _keys;
  std::unordered_set<unsigned int> _index;  ///< of the keys, once there are too many to look through
};
