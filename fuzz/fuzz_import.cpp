// Rewrites random bytes as a recording: every sample must be in the output or counted as lost, and no record
// may be longer than the engine reads.

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "layout/Layout.h"
#include "recording/Recording.h"
#include "tracepoints/OldPayloads.h"

namespace {

/// Checks the framing of each record and drops it.
class CheckedRecords : public zelkit::RecordTaker {
 public:
  char* room(std::size_t size) override {
    if (size < 12 || size > zelkit::OldRecords::kLargest) std::abort();
    _record.resize(size);
    return _record.data();
  }
  void done(std::size_t size) override {
    if (zelkit::numberAt<std::uint16_t>(_record, 6) != size) std::abort();
  }

 private:
  std::string _record;
};

void rewrite(zelkit::Recording& recording) {
  const zelkit::OldPayloads payloads(recording.info());
  zelkit::LayoutChoice choice;
  choice.event = 0;
  choice.payloads = [&](const zelkit::Sample& sample, std::uint16_t& number, std::string& raw) {
    return payloads.make(sample.event, sample.raw, number, raw);
  };
  CheckedRecords records;
  zelkit::Layout layout(recording.info(), choice, nullptr, records);
  recording.walk(layout);
  if (!layout.account().balanced()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    zelkit::Recording recording("fuzz", std::string(reinterpret_cast<const char*>(data), size));
    rewrite(recording);
  } catch (const std::runtime_error&) {
    // No recording.
  }
  return 0;
}
