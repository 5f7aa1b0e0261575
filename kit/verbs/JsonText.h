#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zelkit {

/// Writes strict JSON to a string and inserts the commas. Bytes that are not valid UTF-8 become U+FFFD.
class JsonText {
 public:
  JsonText& object(std::string_view key = {}) { return open(key, '{'); }
  JsonText& array(std::string_view key = {}) { return open(key, '['); }
  /// Ends the object or array opened last.
  JsonText& end();

  JsonText& number(std::string_view key, std::uint64_t value);
  JsonText& boolean(std::string_view key, bool value);
  JsonText& text(std::string_view key, std::string_view value);
  /// Writes a number as a text of hexadecimal digits, for readers that convert numbers to doubles.
  JsonText& hexadecimal(std::string_view key, std::uint64_t value);
  /// Writes a value that is JSON already.
  JsonText& raw(std::string_view key, std::string_view value);

  [[nodiscard]] const std::string& str() const { return _text; }

 private:
  JsonText& open(std::string_view key, char bracket);
  void begin(std::string_view key);
  void quote(std::string_view value);

  std::string _text;
  std::string _brackets;  ///< the open ones, innermost last
};

}  // namespace zelkit
