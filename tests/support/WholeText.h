#pragma once

#include <string>

#include "json/TextBuffer.h"

/// The pieces of a text as one.
inline std::string wholeText(const loomstat::TextBuffer& text) {
  std::string whole;
  for (const std::string_view piece : text.pieces()) whole += piece;
  return whole;
}
