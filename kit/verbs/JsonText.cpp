#include "verbs/JsonText.h"

#include <cstdio>

namespace zelkit {

namespace {

/// Returns how many bytes the UTF-8 character at the start has, or 0 if there is none.
std::size_t characterSize(std::string_view text) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const std::size_t size = byte(0) < 0x80   ? 1
                           : byte(0) < 0xC2 ? 0
                           : byte(0) < 0xE0 ? 2
                           : byte(0) < 0xF0 ? 3
                                            : 4;
  if (size == 0 || byte(0) > 0xF4 || size > text.size()) return 0;
  for (std::size_t i = 1; i < size; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  const bool overlong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
  const bool surrogate = byte(0) == 0xED && byte(1) > 0x9F;
  return overlong || surrogate || (byte(0) == 0xF4 && byte(1) > 0x8F) ? 0 : size;
}

}  // namespace

void JsonText::begin(std::string_view key) {
  if (!_text.empty() && _text.back() != '{' && _text.back() != '[') _text += ',';
  if (!_brackets.empty()) _text.append("\n").append(_brackets.size(), ' ');
  if (key.empty()) return;
  quote(key);
  _text += ": ";
}

JsonText& JsonText::open(std::string_view key, char bracket) {
  begin(key);
  _text += bracket;
  _brackets += bracket;
  return *this;
}

JsonText& JsonText::end() {
  _text += _brackets.back() == '{' ? '}' : ']';
  _brackets.pop_back();
  return *this;
}

JsonText& JsonText::number(std::string_view key, std::uint64_t value) {
  return raw(key, std::to_string(value));
}

JsonText& JsonText::boolean(std::string_view key, bool value) {
  return raw(key, value ? "true" : "false");
}

JsonText& JsonText::hexadecimal(std::string_view key, std::uint64_t value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  return this->text(key, text);
}

JsonText& JsonText::raw(std::string_view key, std::string_view value) {
  begin(key);
  _text += value;
  return *this;
}

JsonText& JsonText::text(std::string_view key, std::string_view value) {
  begin(key);
  quote(value);
  return *this;
}

void JsonText::quote(std::string_view value) {
  _text += '"';
  while (!value.empty()) {
    const std::size_t size = characterSize(value);
    const char c = value.front();
    if (size == 0) {
      _text += "\\ufffd";
    } else if (c == '"' || c == '\\') {
      _text.append("\\").push_back(c);
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned int>(c));
      _text += code;
    } else {
      _text += value.substr(0, size);
    }
    value.remove_prefix(size == 0 ? 1 : size);
  }
  _text += '"';
}

}  // namespace zelkit
