#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "json/BackTraceTexts.h"
#include "json/JsomStringWriter.h"
#include "json/TextBuffer.h"

/// The one way to the document. Every routine that writes a piece of it gets the writer by reference.
///
/// The document is built in memory and reaches the file as a whole, at close. The order of calls is:
/// construct, open, any writes and switches, close. Nothing may be written before open.
///
/// A non-empty array that is written element by element ends in a comma before its closing bracket, [1,2,]:
/// the viewer's parser accepts it, and documents have always had it.
class PerfJSONWriter {
 public:
  PerfJSONWriter() : PerfJSONWriter(true, true) {}
  PerfJSONWriter(bool includeLabels, bool whiteSpace);
  ~PerfJSONWriter();
  PerfJSONWriter(const PerfJSONWriter&) = delete;
  PerfJSONWriter& operator=(const PerfJSONWriter&) = delete;

  /// Both take effect on the next token, in the middle of a container too.
  void setWhiteSpace(bool whiteSpace);
  void setIncludeLabels(bool includeLabels);

  /// Truncates the file. Answers 0, or -1 for a null name. A file that cannot be opened still gives 0; the
  /// run goes on and its document is lost at close.
  int open(const char* name);

  /// Ends every open container and writes the document and a newline to the file. May be called again, to no
  /// effect.
  void close();

  void write(unsigned long long value);
  void write(unsigned int value);
  void write(double value);  ///< up to nine decimals
  void write(const std::string& value);

  /// Keeps finished JSON text back until the next writeArrayEnd, which writes all of it as one value, joined
  /// by commas.
  void writeJson(std::string_view text);
  /// The same for a text that the function writes, at most so many bytes: it gets the place and answers the
  /// end.
  template <typename Write>
  void writeJson(std::size_t most, Write write) {
    _separateBuffered();
    _buffer.append(most, write);
  }

  /// The errno of what kept the document from its file, or 0: after open, and again after close.
  int error() const { return _error; }

  /// A label and a value; without labels the value alone. A label is not escaped.
  void writeNamed(const char* label, unsigned long long value);
  void writeNamed(const char* label, unsigned int value);
  void writeNamed(const char* label, unsigned short value);
  void writeNamed(const char* label, double value);
  void writeNamed(const char* label, const char* value);

  /// A null label is left out.
  void writeArrayStart(const char* label);
  void writeArrayEnd();

  /// Writes a back-trace as an array of arrays, each of an address and a key.
  void writeBackTrace(const char* label, const char* addressLabel, const char* keyLabel,
                      std::span<const BackTraceEntry> entries);

  /// A record of its own line. Without labels it dissolves into bare values of the array around it.
  void writeStructStart();
  void writeStructEnd();

  /// An object, whatever the label switch says. A null label is left out.
  void newElementStart(const char* label);
  void newElementEnd();

  /// An array of `count` numbers, each of them the count; the values are not read.
  void writeNamed(const char* label, const unsigned long long* values, unsigned int count);

 private:
  void _doLabel(const char* label);
  void _terminateLine();
  void _separateBuffered() {
    if (!_buffer.empty()) _buffer.append(',');
  }
  void _bufferJsonValue(std::string_view text);
  void _flushBuffer();
  int _writeFile();

  std::FILE* _file = nullptr;
  std::string _fileName;
  int _openError = 0;  ///< errno of an open that failed
  int _error = 0;
  loomstat::TextBuffer _document;
  std::unique_ptr<loomstat::JsomStringWriter> _writer;
  loomstat::TextBuffer _buffer;
  BackTraceTexts _backTraces;
  bool _includeLabels;
  bool _whiteSpace;
};
