#include "symbols/NameStore.h"

#include <algorithm>

namespace {

constexpr std::size_t kBlockSize = 16 * 1024;

}  // namespace

std::string_view NameStore::keep(std::string_view name) {
  if (name.size() > _left) {
    _left = std::max(name.size(), kBlockSize);
    _blocks.push_back(std::make_unique_for_overwrite<char[]>(_left));
    _free = _blocks.back().get();
  }
  const std::string_view kept(_free, name.copy(_free, name.size()));
  _free += kept.size();
  _left -= kept.size();
  return kept;
}
