#include "symbols/KeyList.h"

#include <algorithm>

namespace {

constexpr std::size_t kFewKeys = 16;

}  // namespace

void KeyList::add(unsigned int key) {
  if (_keys.size() < kFewKeys) {
    if (std::find(_keys.begin(), _keys.end(), key) == _keys.end()) _keys.push_back(key);
    return;
  }
  if (!_index) _index = std::make_unique<Index>(_keys.begin(), _keys.end());
  if (_index->insert(key).second) _keys.push_back(key);
}
