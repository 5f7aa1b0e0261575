#include "json/JsonText.h"

#include <algorithm>
#include <cstdio>

#include "json/FixedDecimals.h"

namespace loomstat {

namespace {

char escapeLetter(char byte) {
  switch (byte) {
    case '\b':
      return 'b';
    case '\t':
      return 't';
    case '\n':
      return 'n';
    case '\f':
      return 'f';
    case '\r':
      return 'r';
    case '"':
    case '\\':
      return byte;
    default:
      return 0;
  }
}

}  // namespace

std::string_view trimmed(std::string_view number, int precision) {
  if (static_cast<long long>(number.size()) <= static_cast<long long>(precision) + 1) return number;
  while (number.ends_with('0')) number.remove_suffix(1);
  if (number.ends_with('.')) number.remove_suffix(1);
  return number;
}

std::string trimmedDecimals(double value, int precision) {
  const int length = std::snprintf(nullptr, 0, "%.*f", precision, value);
  std::string text(static_cast<std::size_t>(std::max(length, 0)) + 1, '\0');
  std::snprintf(text.data(), text.size(), "%.*f", precision, value);
  text.pop_back();
  return std::string(trimmed(text, precision));
}

char* writeDocumentNumber(char* text, double value) {
  if (hasExponent(value)) return text + std::snprintf(text, kFixedRoom, "%e", value);
  const std::string_view decimals(text, writeFixed<kDocumentDecimals>(text, value));
  return text + trimmed(decimals, kDocumentDecimals).size();
}

void appendQuoted(std::string& out, const char* text, std::size_t length) {
  out += '"';
  std::size_t runStart = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const char letter = escapeLetter(text[i]);
    if (letter == 0) continue;
    out.append(text + runStart, i - runStart);
    out += '\\';
    out += letter;
    runStart = i + 1;
  }
  out.append(text + runStart, length - runStart);
  out += '"';
}

}  // namespace loomstat
