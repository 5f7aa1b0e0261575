#include "events/PRSE_kgsl_issueibcmds.h"

#include <cstdio>

#include "events/GpuEvents.h"
#include "run/Settings.h"
#include "timechart/TimechartManager.h"

namespace {

const PerfRecordSampleFactoryRegister f("kgsl:kgsl_issueibcmds", PRSE_kgsl_issueibcmds::factory);

constexpr unsigned int kEndOfFrame = 0x100;
constexpr unsigned int kLastKnownContext = 3;

}  // namespace

PRSE_kgsl_issueibcmds::PRSE_kgsl_issueibcmds(const PerfRecordSampleEventS& record)
    : PerfRecordSampleEvent(record) {
  const EventPayload payload = record.payload();
  if (payload.u32(24) != 0) return;
  const unsigned int endOfFrame = payload.u32(20) & kEndOfFrame;
  const unsigned int contextType = payload.u32(28);
  if (verbose()) std::printf("issueibcmds eof: %u, drawctxt_type: %u\n", endOfFrame, contextType);
  const unsigned int kind = contextType <= kLastKnownContext ? contextType : 0;
  const int status = static_cast<int>(ProcessChart::kIssue + kind);
  const unsigned int sub = endOfFrame != 0 ? 1 : 0;
  TimechartManager::Instance()->addStatusToProcessChart(record.time(), record.commonPid(), status, 0, sub);
  reportGpuStatus(record, status, sub);
}

PerfRecord* PRSE_kgsl_issueibcmds::factory(char* record) {
  return create<PRSE_kgsl_issueibcmds>(record, "PRSE: Found kgsl_issueibcmds");
}
