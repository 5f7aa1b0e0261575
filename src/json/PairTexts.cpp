#include "json/PairTexts.h"

#include <charconv>

void PairTexts::Text::write(unsigned long long first_, unsigned int second_) {
  first = first_;
  second = second_;
  char* const start = bytes.data();
  char* const limit = start + bytes.size();
  char* end = start;
  *end++ = '[';
  end = std::to_chars(end, limit, first).ptr;
  *end++ = ',';
  end = std::to_chars(end, limit, second).ptr;
  for (const char byte : {',', ']', ','}) *end++ = byte;
  length = static_cast<std::uint8_t>(end - start);
}
