#pragma once

#include <algorithm>
#include <string>

namespace zelkit {

/// Returns the text as a cell of a table: tabs and line breaks would shift the columns.
inline std::string tsvCell(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char byte) { return byte == '\t' || byte == '\n' || byte == '\r'; }, ' ');
  return text;
}

}  // namespace zelkit
