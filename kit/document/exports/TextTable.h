#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zelkit {

/// Texts by their indices, each once, in the order in which they came.
class TextTable {
 public:
  std::uint32_t indexOf(const std::string& text) {
    const auto [place, isNew] = _indices.try_emplace(text, static_cast<std::uint32_t>(_texts.size()));
    if (isNew) _texts.push_back(&place->first);
    return place->second;
  }

  const std::vector<const std::string*>& texts() const { return _texts; }

 private:
  std::map<std::string, std::uint32_t> _indices;
  std::vector<const std::string*> _texts;
};

}  // namespace zelkit
