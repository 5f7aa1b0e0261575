#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "json/TextBuffer.h"

namespace loomstat {

/// Appends JSON text to a buffer of the caller, one token per call, and inserts commas, spaces and line
/// breaks. A call out of order, such as a value without a label in an object, prints one line on standard
/// error, writes nothing and does not change the writer's state.
class JsomStringWriter {
 public:
  explicit JsomStringWriter(TextBuffer& out) : _out(out) {}
  virtual ~JsomStringWriter() = default;
  JsomStringWriter(const JsomStringWriter&) = delete;
  JsomStringWriter& operator=(const JsomStringWriter&) = delete;

  void startArray();
  void endArray();
  void startObject();
  void endObject();

  /// A raw text is written verbatim between the quotes, without escaping.
  void appendLabel(const char* text, int length, bool raw);
  void appendLabel(const char* text, bool raw);

  void appendInt(int value);
  void appendUnsignedInt(unsigned int value);
  void appendLong(long long value);
  void appendUnsignedLong(unsigned long long value);
  /// Writes up to `precision` decimals without trailing zeros, or an exponent for magnitudes above 1e16. A
  /// precision of 0 means six decimals, untrimmed. Infinity and NaN are written as the C library does.
  void appendDouble(double value, int precision);
  void appendString(const std::string& text, bool raw);
  /// A null text writes the word null.
  void appendString(const char* text, int length, bool raw);
  void appendBoolean(bool value);
  void appendNull();
  /// Appends a value that is JSON already. Even an empty text counts as a value and gets its comma.
  void appendJsonValue(std::string_view text);
  /// Appends a value that the function writes to the buffer.
  template <std::invocable<TextBuffer&> Append>
  void appendJsonValue(Append append) {
    if (beginValue("appendJsonValue")) append(_out);
  }

  /// Closes all open containers; a label without a value gets null.
  void end();

  /// Append raw bytes, bypassing the state machine.
  void write(const char* text, int length);
  void writeChar(char byte);
  void flush() {}

  /// Whether to indent and break lines; takes effect with the next token.
  bool _whiteSpace = false;

 private:
  /// Writes what precedes a value. Prints a message and returns false if no value is allowed here.
  bool beginValue(const char* operation) {
    if (_state != ']' || _whiteSpace) return beginAnyValue(operation);
    // Nearly all values of a document follow another element of a compact array.
    _out.append(',');
    return true;
  }
  bool beginAnyValue(const char* operation);
  template <typename Number>
  void appendNumber(const char* operation, Number value);
  void startContainer(const char* operation, char bracket);
  void closeContainer(char bracket);
  bool inObject() const { return _state == '{' || _state == '}'; }
  bool inArray() const { return _state == '[' || _state == ']'; }
  void pushState(char state);
  void popState();
  void indent();
  void quote(const char* text, int length, bool raw);
  void complain(const char* operation, const char* problem) const;

  TextBuffer& _out;
  /// 0: no container is open. '{' and '[': in a container without members. '}' and ']': in one that has some.
  /// ':': after a label, whose value must follow.
  int _state = 0;
  std::string _stack;
  std::string _scratch;  ///< scratch for escaping
};

}  // namespace loomstat
