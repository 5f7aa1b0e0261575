// Drives the text writer by a random sequence of calls. The document must be one that the parser accepts as
// long as no call was refused; a refused call must write nothing.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "json/JSONData.h"
#include "json/JsomStringWriter.h"
#include "support/WholeText.h"

namespace {

using loomstat::JsomStringWriter;
using loomstat::JSONData;
using loomstat::TextBuffer;

/// Derives calls from the input's bytes and tracks which ones the writer must accept.
class Session {
 public:
  Session(const std::uint8_t* data, std::size_t size) : _data(data), _end(data + size) {}

  void run() {
    while (_data != _end && !_closed) step(*_data++);
    _writer.end();
    const std::string text = wholeText(_text);
    _writer.end();
    if (wholeText(_text) != text) std::abort();
    // A NUL comes from a string, or from the white space of a deep indent, and ends what the parser sees.
    if (_refused || text.empty() || text.find('\0') != std::string::npos) return;
    JSONData document;
    if (!document.setFromJsonStlString(text)) std::abort();
  }

 private:
  std::size_t length() const { return wholeText(_text).size(); }

  std::uint8_t next() { return _data != _end ? *_data++ : std::uint8_t{0}; }

  std::string bytes() {
    std::string text(next() % 16, ' ');
    for (char& byte : text) byte = static_cast<char>(next());
    return text;
  }

  double number() {
    const int magnitude = static_cast<int>(next() % 15);
    double value = next() * 256.0 + next();
    for (int i = 0; i < magnitude; ++i) value = (i % 2) == 0 ? value * 10 : value / 7;
    return next() % 2 != 0 ? value : -value;
  }

  void step(std::uint8_t call) {
    const std::size_t before = length();
    _writer._whiteSpace = (call & 128) != 0;
    perform(call & 15);
    // Every call but that of an empty finished value writes something, unless it is refused.
    if (length() == before) _refused = true;
    // After the root there are no separators.
    _opened += opens(call & 15) && length() != before ? 1 : 0;
    _opened -= closes(call & 15) && length() != before ? 1 : 0;
    _closed = _opened == 0 && length() != before;
  }

  static bool opens(int call) { return call == 0 || call == 2; }
  static bool closes(int call) { return call == 1 || call == 3; }

  void perform(int call) {
    switch (call) {
      case 0:
        return _writer.startArray();
      case 1:
        return _writer.endArray();
      case 2:
        return _writer.startObject();
      case 3:
        return _writer.endObject();
      case 4:
      case 5:
      case 6:
        return _writer.appendLabel(bytes().c_str(), false);
      case 7:
        return _writer.appendInt(static_cast<int>(number()));
      case 8:
        return _writer.appendUnsignedInt(next() * 16777619U);
      case 9:
        return _writer.appendLong(-static_cast<long long>(next() * 1099511628211ULL));
      case 10:
        return _writer.appendUnsignedLong(next() * 1099511628211ULL);
      case 11:
        return _writer.appendDouble(number(), next() % 12);
      case 12:
        return _writer.appendString(bytes(), false);
      case 13:
        return _writer.appendBoolean(next() % 2 != 0);
      case 14:
        return next() % 2 != 0 ? _writer.appendNull() : _writer.appendString(nullptr, 0, false);
      default:
        return _writer.appendJsonValue("[1,{\"a\":2},]");
    }
  }

  const std::uint8_t* _data;
  const std::uint8_t* _end;
  TextBuffer _text;
  JsomStringWriter _writer{_text};
  bool _refused = false;
  bool _closed = false;
  int _opened = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Session(data, size).run();
  return 0;
}
