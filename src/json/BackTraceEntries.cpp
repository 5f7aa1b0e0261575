#include "json/BackTraceEntries.h"

#include "json/Digits.h"

void BackTraceEntries::format(Text& text, Index index) const {
  const BackTraceEntry& entry = (*this)[index];
  char* end = text.bytes.data();
  *end++ = '[';
  end = writeDigits(end, entry.address());
  *end++ = ',';
  end = writeDigits(end, entry.key());
  for (const char byte : {',', ']', ','}) *end++ = byte;
  text.index = index;
  text.length = static_cast<std::uint8_t>(end - text.bytes.data());
}
