#pragma once

#include <memory>
#include <unordered_set>
#include <vector>

/// Keys in the order of their first mention, each once.
class KeyList {
 public:
  void add(unsigned int key);
  const std::vector<unsigned int>& keys() const { return _keys; }

 private:
  std::vector<unsigned int> _keys;
  std::unique_ptr<std::unordered_set<unsigned int>> _index;  ///< once there are too many keys to look through
};
