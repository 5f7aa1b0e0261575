#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zelkit {

/// Writes strict JSON into a string, with commas where they belong. Bytes that are no UTF-8 become U+FFFD.
class JsonText {
 public:
  JsonText& object(std::string_view key = {}) { return open(key, '{'); }
  JsonText& array(std::string_view key = {}) { return open(key, '['); }
  /// Ends the object or array opened last.
  JsonText& end();

  JsonText& number(std::string_view key, std::uint64_t value);
  JsonText& boolean(std::string_view key, bool value);
  JsonText& text(std::string_view key, std::string_view value);
  /// A number as a text of hexadecimal digits, for readers that make doubles of numbers.
  JsonText& hexadecimal(std::string_view key, std::uint64_t value);
  /// A value of JSON that is there already.
  JsonText& raw(std::string_view key, std::string_view value);

  [[nodiscard]] const std::string& str() const { return _text; }

 private:
  JsonText& open(std::string_view key, char bracket);
  void begin(std::string_view key);
  void quote(std::string_view value);

  std::string _text;
  std::string _brackets;  ///< those still open, the innermost last
};

}  // namespace zelkit
