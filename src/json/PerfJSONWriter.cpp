#include "json/PerfJSONWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "json/FixedDecimals.h"
#include "run/Settings.h"

PerfJSONWriter::PerfJSONWriter(bool includeLabels, bool whiteSpace)
    : _includeLabels(includeLabels), _whiteSpace(whiteSpace) {}

PerfJSONWriter::~PerfJSONWriter() {
  PerfJSONWriter::close();
}

void PerfJSONWriter::setWhiteSpace(bool whiteSpace) {
  _whiteSpace = whiteSpace;
  if (_writer) _writer->_whiteSpace = whiteSpace;
}

void PerfJSONWriter::setIncludeLabels(bool includeLabels) {
  _includeLabels = includeLabels;
}

int PerfJSONWriter::open(const char* name) {
  if (name == nullptr) return -1;
  _fileName = name;
  _file = std::fopen(name, "w");
  if (_file != nullptr) std::setvbuf(_file, nullptr, _IONBF, 0);  // the document comes in large pieces
  _error = _openError = _file == nullptr ? errno : 0;
  _writer = std::make_unique<loomstat::JsomStringWriter>(_document);
  _writer->_whiteSpace = _whiteSpace;
  return 0;
}

void PerfJSONWriter::close() {
  if (!_writer) return;
  _writer->end();
  _writer->flush();
  const int error = _file != nullptr ? _writeFile() : std::exchange(_openError, 0);
  if (error != 0) _error = error;
  if (error != 0 && gVerbosity > 0)
    std::printf("Document not written to %s: %s\n", _fileName.c_str(), std::strerror(error));
}

/// Writes the document and closes the file. Answers 0, or the errno of what failed.
int PerfJSONWriter::_writeFile() {
  std::FILE* file = std::exchange(_file, nullptr);
  _document.append('\n');
  const std::vector<std::string_view> pieces = _document.pieces();
  const bool written = std::all_of(pieces.begin(), pieces.end(), [&](std::string_view piece) {
    return std::fwrite(piece.data(), 1, piece.size(), file) == piece.size();
  });
  const int writeError = written ? 0 : errno;
  const bool closed = std::fclose(file) == 0;
  return written && !closed ? errno : writeError;
}

void PerfJSONWriter::write(unsigned long long value) {
  _writer->appendUnsignedLong(value);
}

void PerfJSONWriter::write(unsigned int value) {
  _writer->appendUnsignedInt(value);
}

void PerfJSONWriter::write(double value) {
  _writer->appendDouble(value, kDocumentDecimals);
}

void PerfJSONWriter::write(const std::string& value) {
  _writer->appendString(value, false);
}

void PerfJSONWriter::writeJson(std::string_view text) {
  _bufferJsonValue(text);
}

void PerfJSONWriter::writeNamed(const char* label, unsigned long long value) {
  _doLabel(label);
  _writer->appendUnsignedLong(value);
}

void PerfJSONWriter::writeNamed(const char* label, unsigned int value) {
  _doLabel(label);
  _writer->appendUnsignedInt(value);
}

void PerfJSONWriter::writeNamed(const char* label, unsigned short value) {
  _doLabel(label);
  _writer->appendInt(value);
}

void PerfJSONWriter::writeNamed(const char* label, double value) {
  _doLabel(label);
  _writer->appendDouble(value, kDocumentDecimals);
}

void PerfJSONWriter::writeNamed(const char* label, const char* value) {
  _doLabel(label);
  _writer->appendString(value, static_cast<int>(std::strlen(value)), false);
}

void PerfJSONWriter::writeArrayStart(const char* label) {
  if (label != nullptr) _doLabel(label);
  _writer->startArray();
}

void PerfJSONWriter::writeArrayEnd() {
  _flushBuffer();
  _writer->endArray();
}

void PerfJSONWriter::writeBackTrace(const char* label, const char* addressLabel, const char* keyLabel,
                                    std::span<const BackTraceEntry> entries) {
  if (!_includeLabels && !_whiteSpace)
    return _writer->appendJsonValue([&](loomstat::TextBuffer& out) { _backTraces.append(entries, out); });
  writeArrayStart(label);
  for (const BackTraceEntry& entry : entries) {
    writeArrayStart(nullptr);
    writeNamed(addressLabel, entry.address());
    writeNamed(keyLabel, entry.key());
    writeArrayEnd();
  }
  writeArrayEnd();
}

void PerfJSONWriter::writeStructStart() {
  _terminateLine();
  if (_includeLabels) _writer->startObject();
}

void PerfJSONWriter::writeStructEnd() {
  if (_includeLabels) _writer->endObject();
}

void PerfJSONWriter::newElementStart(const char* label) {
  if (label != nullptr) _doLabel(label);
  _writer->startObject();
}

void PerfJSONWriter::newElementEnd() {
  _writer->endObject();
}

void PerfJSONWriter::writeNamed(const char* label, const unsigned long long* /*values*/, unsigned int count) {
  _doLabel(label);
  _writer->startArray();
  for (unsigned int i = 0; i < count; ++i) _writer->appendUnsignedInt(count);
  _writer->endArray();
}

void PerfJSONWriter::_doLabel(const char* label) {
  if (_includeLabels) _writer->appendLabel(label, true);
}

void PerfJSONWriter::_terminateLine() {
  if (gReadable) _writer->writeChar('\n');
}

void PerfJSONWriter::_bufferJsonValue(std::string_view text) {
  _separateBuffered();
  _buffer.append(text);
}

void PerfJSONWriter::_flushBuffer() {
  _writer->appendJsonValue([this](loomstat::TextBuffer& out) { out.append(_buffer); });
  _buffer.clear();
}
