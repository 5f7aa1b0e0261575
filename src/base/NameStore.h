#pragma once

#include <set>
#include <string_view>

#include "base/Memory.h"

/// Keeps many short texts in few blocks. The texts that it returns stay valid as long as the store.
class NameStore {
 public:
  /// Copies a name of less than BlockPool::kBlockSize bytes. A NUL follows the copy.
  std::string_view keep(std::string_view name) {
    char* const copy = static_cast<char*>(_arena.allocate(name.size() + 1, 1));
    const std::size_t size = name.copy(copy, name.size());
    copy[size] = '\0';
    return {copy, size};
  }

 private:
  Arena _arena;
};

/// Keeps one copy of each text: the threads of a process have the same name, and so have processes that are
/// started again and again.
class SharedNames {
 public:
  /// Returns the kept text, up to its NUL.
  const char* keep(std::string_view name) {
    const auto known = _names.find(name);
    return known != _names.end() ? known->data() : _names.insert(_store.keep(name)).first->data();
  }

 private:
  NameStore _store;
  std::set<std::string_view> _names;
};
