#include "verbs/JsonText.h"

#include <cstdio>

#include "document/exports/JsonOutput.h"

namespace zelkit {

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
  _text += quotedJson(value);
}

}  // namespace zelkit
