#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "json/TextBuffer.h"

namespace loomstat {

/// Turns a sequence of calls into JSON text appended to a buffer that belongs to the caller. It decides where
/// commas, spaces and line breaks go. A call out of order, such as a value without a label in an object,
/// prints one line on standard error, writes nothing and leaves the writer as it was.
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

  /// A raw text goes between the quotes verbatim, with no escaping.
  void appendLabel(const char* text, int length, bool raw);
  void appendLabel(const char* text, bool raw);

  void appendInt(int value);
  void appendUnsignedInt(unsigned int value);
  void appendLong(long long value);
  void appendUnsignedLong(unsigned long long value);
  /// Up to `precision` decimals, less trailing zeros; an exponent beyond 1e16 in magnitude. A precision of 0
  /// gives six decimals, untrimmed. Infinity and not-a-number become the C library's words for them.
  void appendDouble(double value, int precision);
  void appendString(const std::string& text, bool raw);
  /// A null text becomes the bare word null.
  void appendString(const char* text, int length, bool raw);
  void appendBoolean(bool value);
  void appendNull();
  /// Finished JSON. Even an empty text counts as a value, comma included.
  void appendJsonValue(std::string_view text);
  /// What the function appends to the buffer.
  template <std::invocable<TextBuffer&> Append>
  void appendJsonValue(Append append) {
    if (beginValue("appendJsonValue")) append(_out);
  }

  /// Closes everything that is open; a label without a value gets null.
  void end();

  /// Append raw bytes, bypassing the state machine.
  void write(const char* text, int length);
  void writeChar(char byte);
  void flush() {}

  /// Whether to indent and break lines; takes effect on the next token.
  bool _whiteSpace = false;

 private:
  /// Writes what precedes a value. Returns false, with a message, if there may be no value.
  bool beginValue(const char* operation) {
    if (_state != ']' || _whiteSpace) return beginAnyValue(operation);
    // Nearly all values of a document are further elements of compact arrays.
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
  /// ':': a label is written and its value is due.
  int _state = 0;
  std::string _stack;
  std::string _scratch;  ///< scratch for escaping
};

}  // namespace loomstat
