#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <utility>

#include "json/JSOM.h"
#include "support/Conversion.h"
#include "support/RawRecording.h"
#include "support/Recordings.h"

namespace {

using loomstat::JSOM;

/// A real trace, and the offset of next_pid in its layout.
struct Trace {
  const char* file;
  bool wide;
  std::size_t nextPid;
  std::vector<const char*> classes;  ///< that the document must hold
};

void PrintTo(const Trace& trace, std::ostream* stream) {
  *stream << trace.file;
}

const std::vector<Trace> kTraces = {
    {"arm32/tracepoints.data", false, 44, {"cpu:busy", "cpu:idle", "irq", "proc:running", "proc:wait"}},
    {"arm32/joint.data", false, 44, {"cpu:busy", "cpu:idle", "irq", "proc:running", "proc:wait"}},
    {"x86-64/sched.data", true, 48, {"cpu:busy", "cpu:idle", "irq", "proc:running", "proc:wait"}}};

constexpr std::uint32_t kSample = 9;
constexpr std::size_t kRaw = 52;
constexpr std::size_t kPayload = kRaw + 8;

/// One CPU in the raw records: busy while a process other than 0 is switched in or the handler of a hard
/// interrupt runs.
struct Cpu {
  std::uint32_t process = 0;  ///< last switched in
  bool runs = false;
  bool handles = false;
  std::vector<std::pair<std::int64_t, bool>> states;

  void note(std::int64_t time) { states.emplace_back(time, runs || handles); }

  /// Nanoseconds; a span still open at the end does not count.
  std::int64_t busyTime() {
    std::stable_sort(states.begin(), states.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::int64_t total = 0;
    std::int64_t since = -1;
    for (const auto& [time, busy] : states) {
      if (busy && since < 0) since = time;
      if (!busy && since >= 0) total += time - std::exchange(since, -1);
    }
    return total;
  }
};

/// The busy time of each CPU, from the raw records.
std::map<std::uint32_t, std::int64_t> busyTimes(const std::string& file, std::size_t nextPid) {
  const std::uint64_t switches = eventNumber(file, "sched:sched_switch");
  const std::uint64_t entries = eventNumber(file, "irq:irq_handler_entry");
  const std::uint64_t exits = eventNumber(file, "irq:irq_handler_exit");
  std::map<std::uint32_t, Cpu> cpus;
  for (const RawRecord& record : rawRecords(file)) {
    const std::uint64_t event = record.u32(kRaw) & 0xFFFF;
    if (record.type != kSample || (event != switches && event != entries && event != exits)) continue;
    const auto time = static_cast<std::int64_t>(record.u64(24));
    Cpu& cpu = cpus[record.u32(40)];
    if (event == switches) {
      cpu.process = record.u32(kPayload + nextPid);
      cpu.runs = cpu.process != 0;
      // Ends the run of the process on other CPUs, whose own records come later or have ended.
      for (auto& [number, other] : cpus)
        if (&other != &cpu && cpu.runs && other.process == cpu.process) {
          other.runs = false;
          other.note(time);
        }
    } else {
      cpu.handles = event == entries;
    }
    cpu.note(time);
  }
  std::map<std::uint32_t, std::int64_t> totals;
  for (auto& [number, cpu] : cpus) totals[number] = cpu.busyTime();
  return totals;
}

/// The same from the document's busy entries, whose points are in milliseconds with six decimals.
std::map<std::uint32_t, std::int64_t> busyTimes(JSOM entries) {
  std::map<std::uint32_t, std::int64_t> totals;
  for (int i = 0; i < entries.size(); ++i) {
    if (entries[i]["class"].stringValue(JSOM::EMPTY_STRING) != "cpu:busy") continue;
    JSOM points = entries[i]["data"];
    std::int64_t total = 0;
    for (int p = 0; p + 1 < points.size(); p += 2)
      total += std::llround(points[p + 1][0].doubleValue(0) * 1e6) -
               std::llround(points[p][0].doubleValue(0) * 1e6);
    const std::string id = entries[i]["id"].stringValue(JSOM::EMPTY_STRING);
    totals[static_cast<std::uint32_t>(std::stoul(id.substr(4)))] = total;
  }
  return totals;
}

class RealTraces : public testing::TestWithParam<Trace> {};

TEST_P(RealTraces, BusyTimesAreThoseOfTheRecords) {
  const Trace& trace = GetParam();
  RECORDING_OR_SKIP(file, trace.file);
  Conversion conversion;
  conversion.environment().set("kern_ver", "6.1");
  if (trace.wide) conversion.environment().set("ARM64", "y");
  conversion.softInterrupts(readFile(ZELCONV_RECORDINGS "/arm32/softirqs"));
  if (std::string(trace.file) == "arm32/joint.data")
    conversion.traceText(readFile(ZELCONV_RECORDINGS "/arm32/joint.trace.txt"));
  const std::string document = conversion.runFile(file, {"-t", "-q", "-c", "1000"});
  for (const char* name : trace.classes)
    EXPECT_NE(document.find("\"class\":\"" + std::string(name) + "\""), std::string::npos) << name;

  JSOM parsed;
  ASSERT_TRUE(parsed.fromString(document).found());
  const auto expected = busyTimes(readFile(file), trace.nextPid);
  EXPECT_EQ(expected.size(), 2U);
  EXPECT_EQ(busyTimes(parsed["entries"]), expected);
}

INSTANTIATE_TEST_SUITE_P(All, RealTraces, testing::ValuesIn(kTraces),
                         [](const testing::TestParamInfo<Trace>& trace) {
                           std::string name = trace.param.file;
                           std::erase_if(
                               name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
                           return name;
                         });

}  // namespace
