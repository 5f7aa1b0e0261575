#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "json/BackTraceEntries.h"
#include "json/Digits.h"
#include "json/DocumentFile.h"
#include "json/FixedDecimals.h"
#include "json/JsomStringWriter.h"
#include "json/JsonText.h"
#include "json/TextBuffer.h"

/// A value of a row and its label.
template <typename Value>
struct Named {
  const char* label;
  Value value;
};
template <typename Value>
Named(const char*, Value) -> Named<Value>;

/// A back-trace as the value of a row: an array of arrays, each of an address and a key.
struct BackTrace {
  BackTraceEntries& entries;
  std::span<const BackTraceEntries::Index> indexes;
  const char* addressLabel;
  const char* keyLabel;
};

/// Writes the document. Every function that writes a part of it gets the writer by reference.
///
/// The document is built in memory and written to the file as a whole by close. The order of calls is:
/// constructor, open, writes and switches, close. Nothing may be written before open.
///
/// A non-empty array that is written element by element ends in a comma before its closing bracket, [1,2,]:
/// the viewer's parser accepts it, and documents have always had it.
class PerfJSONWriter {
 public:
  PerfJSONWriter() : PerfJSONWriter(true, true) {}
  PerfJSONWriter(bool includeLabels, bool whiteSpace) : PerfJSONWriter(includeLabels, whiteSpace, false) {}
  virtual ~PerfJSONWriter();
  PerfJSONWriter(const PerfJSONWriter&) = delete;
  PerfJSONWriter& operator=(const PerfJSONWriter&) = delete;

  // Derived writers override the operations that they need. The order of the operations is part of the
  // interface.

  /// Both take effect with the next token, even in the middle of a container.
  virtual void setWhiteSpace(bool whiteSpace);
  virtual void setIncludeLabels(bool includeLabels);

  /// Truncates the file. Returns 0, or -1 for a null name. Returns 0 even for a file that cannot be opened;
  /// the run continues and its document is lost at close, see error.
  virtual int open(const char* name);

  /// Ends every open container and writes the document and a newline to the file. Further calls have no
  /// effect.
  virtual void close();

  virtual void write(unsigned long long value);
  virtual void write(unsigned int value);
  virtual void write(double value);  ///< up to nine decimals
  virtual void write(const std::string& value);

  /// Buffers JSON text until the next writeArrayEnd, which writes all buffered texts as one value, joined by
  /// commas.
  virtual void writeJson(const char* text);

  /// Write a label and a value, or without labels the value alone. A label is not escaped.
  virtual void writeNamed(const char* label, unsigned long long value);
  virtual void writeNamed(const char* label, unsigned int value);
  virtual void writeNamed(const char* label, unsigned short value);
  virtual void writeNamed(const char* label, double value);
  virtual void writeNamed(const char* label, char* value);
  virtual void writeNamed(const char* label, const char* value);

  /// A null label is left out.
  virtual void writeArrayStart(const char* label);
  virtual void writeArrayEnd();

  /// Starts a record on a new line. Without labels no braces are written: its values become elements of the
  /// enclosing array.
  virtual void writeStructStart();
  virtual void writeStructEnd();

  /// Starts an object, even without labels. A null label is left out.
  virtual void newElementStart(const char* label);
  virtual void newElementEnd();

  /// Writes an array of `count` numbers, each of which is the count; the values are not read.
  virtual void writeNamed(const char* label, const unsigned long long* values, unsigned int count);

  /// Returns the errno of a failure to open or write the file, or 0; valid after open, and again after close.
  int error() const { return _error; }

  // Bulk operations, equivalent to calls of the operations above. Only DocumentWriter takes a shorter path.

  /// Writes an array of finished JSON texts, one for each value: `write(char* out, value)` writes at most
  /// `most` bytes and returns their end. Equivalent to writeArrayStart, writeJson of each text, and
  /// writeArrayEnd.
  template <typename Value, typename Write>
  void writeJsonArray(const char* label, std::span<const Value> values, std::size_t most, Write write) {
    writeArrayStart(label);
    if (_isDocumentWriter) {
      _writer->appendJsonValue([&](loomstat::TextBuffer& out) { _append(values, most, write, out); });
      _buffer.clear();
      return _writer->endArray();
    }
    std::string text;
    for (const Value& value : values) {
      text.resize(most);
      text.resize(static_cast<std::size_t>(write(text.data(), value) - text.data()));
      writeJson(text.c_str());
    }
    writeArrayEnd();
  }

  /// Writes an array of values, numbers or back-traces. Equivalent to writeArrayStart, writeNamed of each,
  /// and writeArrayEnd.
  template <typename... Values>
  void writeRow(const Named<Values>&... values) {
    const bool isCompact = !_includeLabels && !_whiteSpace && _buffer.empty();
    if (_isDocumentWriter && isCompact) return _appendRow(values.value...);
    writeArrayStart(nullptr);
    (writeNamed(values.label, values.value), ...);
    writeArrayEnd();
  }

  /// Equivalent to writing an array of arrays, each of an address and a key.
  void writeNamed(const char* label, const BackTrace& trace);

 protected:
  PerfJSONWriter(bool includeLabels, bool whiteSpace, bool isDocumentWriter);

 private:
  void _doLabel(const char* label);
  void _terminateLine();
  /// Appends the texts of the values after what is in the buffer.
  template <typename Value, typename Write>
  void _append(std::span<const Value> values, std::size_t most, Write write,
               loomstat::TextBuffer& out) const {
    out.append(_buffer);
    bool separate = !_buffer.empty();
    for (const Value& value : values) {
      if (separate) out.append(',');
      separate = true;
      out.append(most, [&](char* text) { return write(text, value); });
    }
  }
  /// Appends an array without labels and white space.
  template <typename... Values>
  void _appendRow(const Values&... values) {
    _writer->appendJsonValue([&](loomstat::TextBuffer& out) {
      out.append((2 + ... + (_room(values) + 1)), [&](char* text) {
        *text++ = '[';
        ((text = _write(text, values), *text++ = ','), ...);
        *text++ = ']';
        return text;
      });
    });
  }
  /// Return how many bytes _write may write.
  static std::size_t _room(std::unsigned_integral auto) { return kMostDigits; }
  static std::size_t _room(double) { return kFixedRoom; }
  static std::size_t _room(const BackTrace& trace) { return BackTraceEntries::room(trace.indexes.size()); }
  /// Write a value and return the end of its text.
  static char* _write(char* text, std::unsigned_integral auto number) { return writeDigits(text, number); }
  static char* _write(char* text, double number) { return loomstat::writeDocumentNumber(text, number); }
  static char* _write(char* text, const BackTrace& trace) { return trace.entries.write(text, trace.indexes); }

  void _bufferJsonValue(const char* text, int length);
  void _flushBuffer();

  DocumentFile _file;
  std::string _fileName;
  int _error = 0;  ///< see error
  bool _isWritten = false;
  loomstat::TextBuffer _document;
  std::unique_ptr<loomstat::JsomStringWriter> _writer;
  loomstat::TextBuffer _buffer;
  bool _includeLabels;
  bool _whiteSpace;
  const bool _isDocumentWriter;  ///< no class overrides the operations, so bulk operations need not call them
};

/// The writer of a run.
class DocumentWriter final : public PerfJSONWriter {
 public:
  DocumentWriter(bool includeLabels, bool whiteSpace) : PerfJSONWriter(includeLabels, whiteSpace, true) {}
};
