#include "document/exports/Base64Output.h"

namespace zelkit {

void Base64Output::write(std::string_view bytes) {
  _text.clear();
  for (const char byte : bytes) {
    _group[_filled++] = static_cast<unsigned char>(byte);
    if (_filled == _group.size()) encodeGroup(_filled);
  }
  _output.write(_text);
}

void Base64Output::finish() {
  _text.clear();
  if (_filled != 0) encodeGroup(_filled);
  _output.write(_text);
}

void Base64Output::encodeGroup(std::size_t used) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t i = used; i < _group.size(); ++i) _group[i] = 0;
  const unsigned int bits = static_cast<unsigned int>(_group[0] << 16U | _group[1] << 8U | _group[2]);
  for (std::size_t i = 0; i <= _group.size(); ++i)
    _text += i <= used ? kDigits[bits >> (18U - 6U * i) & 63U] : '=';
  _filled = 0;
}

}  // namespace zelkit
