#include "document/Utf8.h"

#include <cstdint>

namespace zelkit {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Form {
  unsigned char mask;
  unsigned char lead;
  std::size_t length;
  std::uint32_t least;
};

/// The forms of a character of several bytes, RFC 3629.
constexpr Form kForms[] = {{0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

/// Returns the length of the character at the start of the text, or 0 if there is none.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(0) < 0x80) return 1;
  for (const Form& form : kForms) {
    if ((byte(0) & form.mask) != form.lead || text.size() < form.length) continue;
    std::uint32_t code = byte(0) & static_cast<unsigned char>(~form.mask);
    for (std::size_t i = 1; i < form.length; ++i) {
      if ((byte(i) & 0xC0U) != 0x80) return 0;
      code = code << 6U | (byte(i) & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < form.least || code > 0x10FFFF || surrogate ? 0 : form.length;
  }
  return 0;
}

}  // namespace

std::string validUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    valid += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return valid;
}

}  // namespace zelkit
