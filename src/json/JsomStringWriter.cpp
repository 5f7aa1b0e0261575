#include "json/JsomStringWriter.h"

#include <cstdio>
#include <cstring>

#include "json/FixedDecimals.h"
#include "json/JsonText.h"

namespace loomstat {

namespace {

// A newline, 47 spaces and the NUL, which is written too when the nesting is deeper than that.
constexpr char indentBuffer[] = "\n                                               ";
static_assert(sizeof indentBuffer == 49);

}  // namespace

void JsomStringWriter::complain(const char* operation, const char* problem) const {
  std::fprintf(stderr, "ERROR: JsonWriter::%s() %s state: %c\n", operation, problem, _state);
  std::fflush(stderr);
}

bool JsomStringWriter::beginAnyValue(const char* operation) {
  if (inObject()) {
    complain(operation, "Invalid sequence.");
    return false;
  }
  if (_state == ':') popState();
  if (_state == '[') {
    _state = ']';
  } else if (_state == ']') {
    _out.append(',');
  }
  if (_whiteSpace && _state != 0) {
    if (inObject()) {
      _out.append(' ');
    } else {
      indent();
    }
  }
  return true;
}

void JsomStringWriter::startContainer(const char* operation, char bracket) {
  if (!beginValue(operation)) return;
  _out.append(bracket);
  pushState(bracket);
}

void JsomStringWriter::closeContainer(char bracket) {
  popState();
  if (_whiteSpace) indent();
  _out.append(bracket);
}

void JsomStringWriter::startArray() {
  startContainer("startArray", '[');
}

void JsomStringWriter::startObject() {
  startContainer("startObject", '{');
}

void JsomStringWriter::endArray() {
  if (!inArray()) return complain("endArray", "No current array on stack.");
  closeContainer(']');
}

void JsomStringWriter::endObject() {
  if (!inObject()) return complain("endObject", "No current object on stack.");
  closeContainer('}');
}

void JsomStringWriter::appendLabel(const char* text, int length, bool raw) {
  if (!inObject()) return complain("appendLabel", "No current object on stack.");
  if (_state == '{') {
    _state = '}';
  } else {
    _out.append(',');
  }
  if (_whiteSpace) indent();
  quote(text, length, raw);
  _out.append(':');
  pushState(':');
}

void JsomStringWriter::appendLabel(const char* text, bool raw) {
  appendLabel(text, static_cast<int>(std::strlen(text)), raw);
}

template <typename Number>
void JsomStringWriter::appendNumber(const char* operation, Number value) {
  if (!beginValue(operation)) return;
  _out.appendNumber(value);
}

void JsomStringWriter::appendInt(int value) {
  appendNumber("appendInt", value);
}

void JsomStringWriter::appendUnsignedInt(unsigned int value) {
  appendNumber("appendUnsignedInt", value);
}

void JsomStringWriter::appendLong(long long value) {
  appendNumber("appendLong", value);
}

void JsomStringWriter::appendUnsignedLong(unsigned long long value) {
  appendNumber("appendUnsignedLong", value);
}

void JsomStringWriter::appendDouble(double value, int precision) {
  if (!beginValue("appendDouble")) return;
  if (precision == kDocumentDecimals || hasExponent(value)) {
    _out.append(kFixedRoom, [value](char* out) { return writeDocumentNumber(out, value); });
  } else if (precision != 0) {
    _out.append(trimmedDecimals(value, precision));
  } else {
    _out.append(kFixedRoom, [value](char* out) { return writeFixed<kPointDecimals>(out, value); });
  }
}

void JsomStringWriter::appendString(const std::string& text, bool raw) {
  appendString(text.data(), static_cast<int>(text.size()), raw);
}

void JsomStringWriter::appendString(const char* text, int length, bool raw) {
  if (beginValue("appendString")) quote(text, length, raw);
}

void JsomStringWriter::appendBoolean(bool value) {
  if (beginValue("appendBoolean")) _out.append(std::string_view(value ? "true" : "false"));
}

void JsomStringWriter::appendNull() {
  if (beginValue("appendNull")) _out.append(std::string_view("null"));
}

void JsomStringWriter::appendJsonValue(std::string_view text) {
  if (beginValue("appendJsonValue")) _out.append(text);
}

void JsomStringWriter::end() {
  if (_state == ':') appendNull();
  while (_state != 0) closeContainer(inObject() ? '}' : ']');
  _stack.clear();
}

void JsomStringWriter::write(const char* text, int length) {
  _out.append({text, static_cast<std::size_t>(length)});
}

void JsomStringWriter::writeChar(char byte) {
  _out.append(byte);
}

void JsomStringWriter::pushState(char state) {
  if (_state != 0) _stack += static_cast<char>(_state);
  _state = static_cast<unsigned char>(state);
}

void JsomStringWriter::popState() {
  if (_stack.empty()) {
    _state = 0;
  } else {
    _state = static_cast<unsigned char>(_stack.back());
    _stack.pop_back();
  }
}

void JsomStringWriter::indent() {
  if (_state == 0) {
    _out.append('\n');
    return;
  }
  const std::size_t depth = _stack.size();
  _out.append({indentBuffer, depth <= 46 ? depth + 2 : sizeof indentBuffer});
}

void JsomStringWriter::quote(const char* text, int length, bool raw) {
  if (text == nullptr) {
    _out.append(std::string_view("null"));
  } else if (raw) {
    _out.append('"');
    write(text, length);
    _out.append('"');
  } else {
    _scratch.clear();
    appendQuoted(_scratch, text, static_cast<std::size_t>(length));
    _out.append(_scratch);
  }
}

}  // namespace loomstat
