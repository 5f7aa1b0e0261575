#include "json/JsonText.h"

#include <cstdio>

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

std::string withDecimals(double value, int precision) {
  char buffer[64];
  const int length = std::snprintf(buffer, sizeof buffer, "%.*f", precision, value);
  if (length < 0) return {};
  if (static_cast<std::size_t>(length) < sizeof buffer) return {buffer, static_cast<std::size_t>(length)};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(text.data(), text.size(), "%.*f", precision, value);
  text.pop_back();
  return text;
}

}  // namespace

void appendTrimmed(std::string& out, double value, int precision) {
  std::string text = withDecimals(value, precision);
  if (static_cast<long long>(text.size()) > static_cast<long long>(precision) + 1) {
    const std::size_t last = text.find_last_not_of('0');
    text.resize(last == std::string::npos ? 0 : last + (text[last] == '.' ? 0 : 1));
  }
  out += text;
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
