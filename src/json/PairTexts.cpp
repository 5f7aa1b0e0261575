#include "json/PairTexts.h"

#include "json/Digits.h"

void PairTexts::Text::write(unsigned long long first_, unsigned int second_) {
  first = first_;
  second = second_;
  char* end = bytes.data();
  *end++ = '[';
  end = writeDigits(end, first);
  *end++ = ',';
  end = writeDigits(end, second);
  for (const char byte : {',', ']', ','}) *end++ = byte;
  length = static_cast<std::uint8_t>(end - bytes.data());
}
