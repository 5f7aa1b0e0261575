#include "json/BackTraceTexts.h"

#include "json/Digits.h"

void BackTraceTexts::Text::write(unsigned long long newAddress, unsigned int newKey) {
  address = newAddress;
  key = newKey;
  char* end = bytes.data();
  *end++ = '[';
  end = writeDigits(end, address);
  *end++ = ',';
  end = writeDigits(end, key);
  for (const char byte : {',', ']', ','}) *end++ = byte;
  length = static_cast<std::uint8_t>(end - bytes.data());
}
