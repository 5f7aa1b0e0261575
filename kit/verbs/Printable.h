#pragma once

#include <string>

namespace zelkit {

/// Returns a text of a recording with control characters replaced, safe for a terminal.
inline std::string printable(std::string text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  return text;
}

}  // namespace zelkit
