#pragma once

#include <string_view>

#include "base/Memory.h"

/// Keeps many short texts in few blocks. The texts that it returns stay valid as long as the store.
class NameStore {
 public:
  /// Copies a name of at most BlockPool::kBlockSize bytes.
  std::string_view keep(std::string_view name) {
    char* const copy = static_cast<char*>(_arena.allocate(name.size(), 1));
    return {copy, name.copy(copy, name.size())};
  }

 private:
  Arena _arena;
};
