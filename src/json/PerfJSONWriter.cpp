#include "json/PerfJSONWriter.h"

#include <cstdio>
#include <cstring>

#include "json/FixedDecimals.h"
#include "run/Settings.h"

PerfJSONWriter::PerfJSONWriter(bool includeLabels, bool whiteSpace, bool isDocumentWriter)
    : _includeLabels(includeLabels), _whiteSpace(whiteSpace), _isDocumentWriter(isDocumentWriter) {}

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
  _error = _file.open(name);
  _writer = std::make_unique<loomstat::JsomStringWriter>(_document);
  _writer->_whiteSpace = _whiteSpace;
  return 0;
}

void PerfJSONWriter::close() {
  if (!_writer) return;
  _writer->end();
  _writer->flush();
  if (_isWritten) return;
  _isWritten = true;
  _document.append('\n');
  if (_error == 0) _error = _file.write(_document.pieces());
  if (_error != 0 && verbose())
    std::printf("Document not written to %s: %s\n", _fileName.c_str(), std::strerror(_error));
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

void PerfJSONWriter::writeJson(const char* text) {
  _bufferJsonValue(text, static_cast<int>(std::strlen(text)));
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

void PerfJSONWriter::writeNamed(const char* label, char* value) {
  PerfJSONWriter::writeNamed(label, const_cast<const char*>(value));
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

void PerfJSONWriter::writeNamed(const char* label, const BackTrace& trace) {
  writeArrayStart(label);
  for (const BackTraceEntries::Index index : trace.indexes) {
    const BackTraceEntry& entry = trace.entries[index];
    writeRow(Named{trace.addressLabel, entry.address()}, Named{trace.keyLabel, entry.key()});
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

void PerfJSONWriter::_bufferJsonValue(const char* text, int length) {
  if (!_buffer.empty()) _buffer.append(',');
  _buffer.append({text, static_cast<std::size_t>(length)});
}

void PerfJSONWriter::_flushBuffer() {
  _writer->appendJsonValue([this](loomstat::TextBuffer& out) { out.append(_buffer); });
  _buffer.clear();
}
