// The complete standard output of verbose runs. Addresses of this program, which differ between builds, and
// the temporary folder are masked.

#include <gtest/gtest.h>
#include <unistd.h>

#include <regex>

#include "support/Conversion.h"
#include "support/TraceEvents.h"

namespace {

std::string without(const std::string& text, const char* pattern, const char* instead = "") {
  return std::regex_replace(text, std::regex(pattern), instead);
}

/// Returns the output of a run. Reads are printed from level 2 on, everything else from level 1 on.
std::string verbose(Conversion& conversion, const RecordingBuilder& recording,
                    std::vector<std::string> options) {
  options.insert(options.end(), {"-v", "level"});
  const auto said = [&](const char* level) {
    options.back() = level;
    const std::string text = printed([&] { conversion.run(recording, options); });
    const std::string masked = without(without(text, "(func:|st:0x)[0-9a-f]+", "$1X"), "=[0-9]+:", "=FD:");
    return without(masked, conversion.path("root").c_str(), "ROOT");
  };
  const std::string all = said("2");
  EXPECT_EQ(said("1"), without(all, "PerfReader:size:[0-9]+\n"));
  return all;
}

TEST(Verbose, ProfilePrintsEachStep) {
  Conversion conversion;
  conversion.kernelSymbols("c0008000 T stext\nc0008100 T schedule\n");
  conversion.library("/app/tool", "00010000 T main\n00010100 T work\n");
  RecordingBuilder recording;
  recording.event(26, "irq:irq_handler_entry");
  recording.comm(7, 7, "tool").mmap(7, 7, 0x10000, 0x1000, "/app/tool");
  recording.bytes(Bytes().u32(0).u16(0).u16(8).str());
  recording.record(5, "body");
  recording.sample({.ip = 0x10104, .pid = 7, .tid = 7, .time = 1500000000, .trace = {0x10004, 0x20008}});
  EXPECT_EQ(verbose(conversion, recording, {"-b", "5"}),
            R"(SYMB k:00000 a:00000000 l:00000 u00000 n:default
SYMB k:00000 a:c0008000 l:00100 u00000 n:stext

SYMB k:00000 a:c0008100 l:00000 u00000 n:schedule
SYMB k:00000 a:ffff0000 l:0ffff u00000 n:*interrupt-FFFF0000*
SYMB k:00000 a:00000000 l:00000 u00000 n:default
PerfReader:size:56
Seek to b8 (50+68) c:1
PerfReader:size:72
readEvent: i:0026 n:irq:irq_handler_entry
findFunction cmp irq:irq_handler_entry:irq:irq_handler_entry
PerfReader:size:8
PerfReader:size:16
PROC k:3 p:1 t:1 *init*
PROC k:4 p:7 t:7 tool
PerfReader:size:8
PerfReader:size:48
SymTab:findAndRead /app/tool
SymTab:findAndRead tool
checkFile /app/tool=-1:2
checkFile /tool=-1:2
checkFile ROOT/app/tool=FD:2
SymbolTable:findAndRead ROOT/app/tool
SymbolTable:generateAndRead ROOT/app/tool
SYMB k:00000 a:00000000 l:00000 u00000 n:ROOT/app/tool
Symtab adding ROOT/app/tool
Symtab adding tool
SYMB k:00000 a:00010000 l:00100 u00000 n:main

SYMB k:00000 a:00010100 l:00000 u00000 n:work
MMAP k:5 p:7 t:7 a:10000 s:4096 r:4
PerfReader:size:8
PerfReader:size:4
PerfReader:size:4
FIXED
PerfReader:size:4
Unknown Type:5 len:12(c)
PerfReader:size:8
PerfReader:size:64
getKey /app/tool st:0xX 10004:0
getKey 10004:0
SYMB k:00000 a:00020000 l:10000 u00000 n:{tool-00020000}
getKey /app/tool st:0xX 20008:0
getKey 20008:0
SAMP k:1 p:7 t:7 a:10104
PerfReader:size:8
getKey /app/tool st:0xX 10104:0
getKey 10104:0
Lost Bytes: 8
)");
}

TEST(Verbose, TimechartPrintsEachTracePoint) {
  Conversion conversion;
  conversion.softInterrupts("CPU0\nHI: 0\n");
  RecordingBuilder recording;
  recording.event(26, "irq:irq_handler_entry").event(27, "irq:none").event(28, "power:cpu_idle");
  recording.event(29, "kgsl:kgsl_a2xx_irq_status").event(30, "kgsl:kgsl_issueibcmds");
  const auto add = [&](unsigned int event, const Payload& payload) {
    recording.tracePoint({.event = event, .time = 1000000, .cpu = 1}, payload);
  };
  add(26, Payload().u32(17).located("timer"));
  add(27, Payload());
  add(28, Payload().u32(2).u32(3));
  add(29, Payload().located("kgsl-3d0").u32(0).u32(1));
  add(30, Payload().located("kgsl-3d0").u32(0).u32(0).u32(0).u32(0).u32(0x100).u32(0).u32(2));
  const std::string said = verbose(conversion, recording, {"-t", "-b", "0.5"});
  EXPECT_EQ(without(said, "findFunction cmp (irq:none|kgsl|power)[^\n]*\n"),
            R"(SYMB k:00000 a:00000000 l:00000 u00000 n:default
PerfReader:size:56
Seek to b8 (50+68) c:5
PerfReader:size:72
readEvent: i:0026 n:irq:irq_handler_entry
findFunction cmp irq:irq_handler_entry:irq:irq_handler_entry
PerfReader:size:72
readEvent: i:0027 n:irq:none
PerfReader:size:72
readEvent: i:0028 n:power:cpu_idle
PerfReader:size:72
readEvent: i:0029 n:kgsl:kgsl_a2xx_irq_status
PerfReader:size:72
readEvent: i:0030 n:kgsl:kgsl_issueibcmds
PerfReader:size:8
PerfReader:size:72
Found event type:26 func:X
PRSE: Found irq_handler_entry
sxxx k:1 p:0 t:0 a:0
PerfReader:size:8
PerfReader:size:56
Found event type:27 func:X
PerfReader:size:8
PerfReader:size:64
Found event type:28 func:X
PRSE: Found cpu_idle
sxxx k:2 p:0 t:0 a:0
PRSE: cpu_idle.state=5, cpu_id=3
PerfReader:size:8
PerfReader:size:80
Found event type:29 func:X
PRSE: Found kgsl_a2xx_irq_status
sxxx k:3 p:0 t:0 a:0
a2xx_irq status: 1 on device: kgsl-3d0
PerfReader:size:8
PerfReader:size:104
Found event type:30 func:X
PRSE: Found kgsl_issueibcmds
sxxx k:4 p:0 t:0 a:0
issueibcmds eof: 256, drawctxt_type: 2
PerfReader:size:8
Lost Bytes: 0
)");
}

TEST(Verbose, TruncatedEventTableRepeatsItsLastEntry) {
  Conversion conversion;
  const auto linesOf = [&](const std::string& recording) {
    conversion.write("perf.data", recording);
    const std::string said = printed([&] { conversion.runFile(conversion.path("perf.data"), {"-v", "1"}); });
    std::size_t lines = 0;
    for (std::size_t at = said.find("readEvent: "); at != std::string::npos;
         at = said.find("readEvent: i:0026 n:irq:irq_handler_entry\n", at + 1))
      ++lines;
    return lines;
  };
  const std::string whole = RecordingBuilder().event(26, "irq:irq_handler_entry").build();
  ASSERT_EQ(linesOf(whole), 1U);
  const auto withDataAt = [&](std::uint64_t offset) {
    return whole.substr(0, 40) + Bytes().u64(offset).str() + whole.substr(48);
  };
  EXPECT_EQ(linesOf(withDataAt(whole.size() + 72 * std::uint64_t{4})), 5U);
  EXPECT_EQ(linesOf(withDataAt(0)), 1U + 100000U);  // a count that wraps
}

}  // namespace
