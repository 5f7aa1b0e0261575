#pragma once

#include <string>
#include <string_view>

namespace zelkit {

/// Returns the text with each byte that is not part of a UTF-8 character replaced by U+FFFD. Names in a
/// recording may contain any bytes, and strict readers refuse a file with a single invalid one.
std::string validUtf8(std::string_view text);

}  // namespace zelkit
