/// Strict JSON output.
#pragma once

#include <rapidjson/writer.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "document/ByteSink.h"
#include "document/Utf8.h"

namespace zelkit {

/// An output stream in the sense of RapidJSON.
class JsonStream {
 public:
  using Ch = char;

  explicit JsonStream(ByteSink& output) : _output(output) {}

  void Put(Ch byte) {
    if (_used == _block.size()) Flush();
    _block[_used++] = byte;
  }
  void Flush() {
    _output.write({_block.data(), _used});
    _used = 0;
  }

 private:
  ByteSink& _output;
  std::array<char, 65536> _block;
  std::size_t _used = 0;
};

/// Returns the text as a string of JSON, with its quotes; bytes that are no UTF-8 become U+FFFD.
std::string quotedJson(std::string_view text);

/// Writes JSON; text must be valid UTF-8.
class JsonOutput {
 public:
  explicit JsonOutput(ByteSink& output) : _stream(output), _writer(_stream) {}

  void startObject() { _writer.StartObject(); }
  void endObject() { _writer.EndObject(); }
  void startArray() { _writer.StartArray(); }
  void endArray() { _writer.EndArray(); }
  void key(std::string_view name) { _writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size())); }

  void value(std::string_view text) {
    _writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }
  void value(const char* text) { value(std::string_view(text)); }
  void value(const std::string& text) { value(std::string_view(text)); }
  void value(bool flag) { _writer.Bool(flag); }
  void value(int number) { _writer.Int(number); }
  void value(std::uint32_t number) { _writer.Uint(number); }
  void value(std::int64_t number) { _writer.Int64(number); }
  void value(std::uint64_t number) { _writer.Uint64(number); }
  void value(double number) { _writer.Double(number); }
  void null() { _writer.Null(); }
  /// Writes a text that is JSON already.
  void raw(std::string_view json, rapidjson::Type type) { _writer.RawValue(json.data(), json.size(), type); }

  template <typename Value>
  void member(std::string_view name, const Value& content) {
    key(name);
    value(content);
  }

  /// Writes the buffered bytes.
  void flush() { _stream.Flush(); }

 private:
  JsonStream _stream;
  rapidjson::Writer<JsonStream> _writer;
};

}  // namespace zelkit
