#include "events/GpuEvents.h"

#include <cstdio>
#include <string>
#include <string_view>

#include "base/TargetNumbers.h"
#include "run/Settings.h"
#include "timechart/TimechartManager.h"

namespace {

// Positions of the digits in a device's name.
constexpr std::size_t kDimensionPlace = 5;
constexpr std::size_t kDevicePlace = 7;

constexpr unsigned int kIb1Complete = 0x40000000;
constexpr unsigned int kRbComplete = 0x80000000;

int numberIn(std::string_view text) {
  return targetStrtol(std::string(text).c_str());
}

}  // namespace

GpuCore gpuCore(const EventPayload& payload) {
  return {numberIn(payload.locatedText(0, kDimensionPlace)), numberIn(payload.locatedText(0, kDevicePlace))};
}

void reportGpuStatus(const PerfRecordSampleEventS& record, int status, unsigned int sub) {
  const GpuCore core = gpuCore(record.payload());
  TimechartManager::Instance()->addStatusToGPUChart(record.time(), core.dimension, core.device, status, sub);
}

void reportPowerSwitch(const PerfRecordSampleEventS& record, int rung) {
  const unsigned int flag = record.payload().u32(4);
  reportGpuStatus(record, static_cast<int>(GPUChart::kPower + static_cast<unsigned int>(rung) + flag), 0);
}

void reportGpuInterrupt(const PerfRecordSampleEventS& record, unsigned int status, bool tellsApart) {
  int kind = 2;
  if (tellsApart && status == kIb1Complete) kind = 0;
  if (tellsApart && status == kRbComplete) kind = 1;
  reportGpuStatus(record, GPUChart::kInterrupt + kind, 0);
}

void showGpuValue(const PerfRecordSampleEventS& record, const char* what, unsigned int value) {
  if (!verbose()) return;
  const std::string device(record.payload().locatedText(0));
  std::printf("%s: %u on device: %s\n", what, value, device.c_str());
}
