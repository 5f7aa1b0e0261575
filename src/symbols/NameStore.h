#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

/// Keeps many short texts in few blocks. What it answers stays valid as long as the store.
class NameStore {
 public:
  std::string_view keep(std::string_view name);

 private:
  std::vector<std::unique_ptr<char[]>> _blocks;
  char* _free = nullptr;  ///< the rest of the last block
  std::size_t _left = 0;
};
