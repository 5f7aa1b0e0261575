#include "events/PerfRecordSampleEventS.h"

#include "run/Settings.h"

std::string_view EventPayload::locatedText(std::size_t offset, std::size_t skip) const {
  return _view.text(PerfRecordSampleEventS::kRaw + (u32(offset) & 0xFFFF) + skip);
}

EventPayload PerfRecordSampleEventS::payload() const {
  return {view(), kRaw + (kern_ver < 310 ? 12 : 8)};
}
