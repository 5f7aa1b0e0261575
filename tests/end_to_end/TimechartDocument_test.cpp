#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <tuple>

#include "support/Conversion.h"
#include "support/TraceEvents.h"

namespace {

/// A document's entries, a line each, less the comma before all but the first.
std::string entries(const std::string& document) {
  std::string lines;
  std::size_t start = document.find("[\n");
  while (start != std::string::npos) {
    start = document.find('{', start);
    if (start == std::string::npos) break;
    const std::size_t end = document.find('\n', start);
    lines += document.substr(start, end - start) + "\n";
    start = end;
  }
  const std::size_t tail = lines.rfind(",]}");
  return tail == std::string::npos ? lines : lines.substr(0, tail) + "\n";
}

/// The points of the entry of that id, or nothing.
std::string data(const std::string& document, const std::string& id) {
  const std::size_t entry = document.find("{\"id\":\"" + id + "\"");
  if (entry == std::string::npos) return "no entry";
  const std::size_t start = document.find("\"data\":", entry) + 7;
  return document.substr(start, document.find("]}", start) + 1 - start);
}

std::string convert(const RecordingBuilder& recording, std::vector<std::string> options = {"-b", "0.5"}) {
  Conversion conversion;
  conversion.softInterrupts(
      "                    CPU0\n          HI:          0\n       TIMER:         12\n\n  BEHIND THE END:\n");
  options.insert(options.begin(), "-t");
  return conversion.run(recording, options);
}

TEST(TimechartDocument, OfARecordingWithoutTracePointsIsEmpty) {
  EXPECT_EQ(convert(RecordingBuilder().comm(7, 7, "tool")), "\n{\"entries\":[]}\n");
}

TEST(TimechartDocument, SchedulerEventsBecomeRunningAndWaiting) {
  TraceBuilder trace;
  trace.comm(10, 11, "thread").comm(0, 0, "swapper");
  trace.at(1000, 0).schedSwitch(0, 0, 11).at(2000, 0).schedSwitch(11, 130, 12);
  trace.at(3000, 1).wakeup(11).at(4000, 1).schedSwitch(0, 0, 11);
  trace.at(5000, 1).schedSwitch(11, 1, 0).at(6000, 0).schedSwitch(12, 0, 0);
  EXPECT_EQ(
      entries(convert(trace)),
      R"({"id":"cpu-0-b","name":"CPU 0 Busy","treeId":"b_0_cpu_root","type":"binary","class":"cpu:busy","show":1,"hints":{"white":"#000000","black":"#ffffff"},"data":[[0.001000,1],[0.006000,0]]}
{"id":"cpu-1-b","name":"CPU 1 Busy","treeId":"b_1_cpu_root","type":"binary","class":"cpu:busy","show":1,"hints":{"white":"#4b0082","black":"#caa1e0"},"data":[[0.004000,1],[0.005000,0]]}
{"id":"proc-0-r0","name":"0 - swapper","treeId":"0_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 0","hints":{"white":"#000000","black":"#ffffff"},"data":[[0.006000, 1]]}
{"id":"proc-0-r1","name":"0 - swapper","treeId":"0_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 1","hints":{"white":"#4b0082","black":"#caa1e0"},"data":[[0.005000, 1],[0.006000, 0]]}
{"id":"proc-11-r0","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 0","hints":{"white":"#000000","black":"#ffffff"},"data":[[0.001000, 1],[0.002000, 0]]}
{"id":"proc-11-r1","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 1","hints":{"white":"#4b0082","black":"#caa1e0"},"data":[[0.004000, 1],[0.005000, 0]]}
{"id":"proc-11-d","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:wait","tip":"Waiting for I/O","show":0,"hints":{"white":"#b0e0e6","black":"#b0e0e6"},"data":[[0.002000,1],[0.003000,0]]}
{"id":"proc-11-w","name":"11 - thread","treeId":"11_10_proc_root","type":"binary","class":"proc:wait","tip":"Waiting for CPU","show":0,"hints":{"white":"#f0c44c","black":"#f0e68c"},"data":[[0.003000,1],[0.004000,0]]}
{"id":"proc-12-r0","name":"12 - ","treeId":"12_proc_root","type":"binary","class":"proc:running","show":0,"tip":"Running on CPU 0","hints":{"white":"#000000","black":"#ffffff"},"data":[[0.002000, 1],[0.006000, 0]]}
)");
}

TEST(TimechartDocument, MigrationEndsTheTaskOnTheCpuThatItLeft) {
  TraceBuilder trace;
  trace.at(1000, 0).schedSwitch(0, 0, 11).at(2000, 2).schedSwitch(0, 0, 11);
  const std::string document = convert(trace);
  EXPECT_EQ(data(document, "proc-11-r0"), "[[0.001000, 1],[0.002000, 0]]");
  EXPECT_EQ(data(document, "proc-11-r2"), "[[0.002000, 1]]");
  EXPECT_EQ(data(document, "cpu-0-b"), "[[0.001000,1],[0.002000,0]]");
}

TEST(TimechartDocument, TasksGetNamesParentsAndTheirOrder) {
  TraceBuilder trace;
  const auto newTask = [&](unsigned int creator, unsigned int pid, const char* name, unsigned int flags) {
    trace.at(100, 0, creator).add("task:task_newtask", Payload().u32(pid).text(name, 16).u32(flags).u32(0));
  };
  const auto rename = [&](unsigned int pid, const char* name) {
    trace.at(110, 0).add("task:task_rename", Payload().u32(pid).text("old", 16).text(name, 16).u32(0));
  };
  newTask(150, 200, "thread", 0x10000);
  newTask(1, 300, "process", 0x100);
  newTask(1, 300, "again", 0);
  newTask(400, 3, "clone", 0x10000 | 0x2);
  rename(200, "renamed");
  rename(400, "early");
  newTask(1, 400, "late", 0);
  for (const unsigned int pid : {3U, 200U, 300U, 400U}) trace.at(500, 1).wakeup(pid);
  trace.at(600, 1).add("sched:sched_wakeup_new", Payload().text("n", 16).u32(300).u32(0));
  const std::string document = convert(trace);
  std::string names;
  for (std::size_t at = document.find("\"name\":\""); at != std::string::npos;
       at = document.find("\"name\":\"", at + 1))
    names += document.substr(at + 8, document.find("\",\"type\"", at) - at - 8) + "\n";
  EXPECT_EQ(names,
            "200 - renamed\",\"treeId\":\"200_150_proc_root\n300 - process\",\"treeId\":\"300_proc_root\n"
            "3 - clone\",\"treeId\":\"3_400_proc_root\n400 - early\",\"treeId\":\"400_proc_root\n");
}

/// A switch, a new task and a change of frequency in the layouts that the environment selects.
std::string inLayoutsOf(int kernel, const char* version, bool wide) {
  Conversion conversion;
  conversion.environment().set("kern_ver", version);
  conversion.environment().set("ARM64", wide ? "y" : "Y");
  TraceBuilder trace;
  trace.kernel(wide ? 310 : kernel);  // the wide layouts never have the extra word
  if (wide) {
    trace.at(1000, 0).add("sched:sched_switch",
                          Payload().text("a", 16).u32(5).u32(0).u64(2).text("b", 16).u32(6).u32(0));
    trace.at(1000, 0, 4).add("task:task_newtask", Payload().u32(6).text("six", 16).u32(0).u64(0x10000));
  } else {
    trace.at(1000, 0).schedSwitch(5, 2, 6);
    trace.at(1000, 0, 4).add("task:task_newtask", Payload().u32(6).text("six", 16).u32(0x10000).u32(0));
  }
  trace.kernel(kernel);
  trace.at(2000, 3).value("power:cpu_frequency", 1512000, 1);
  const std::string document = conversion.run(trace, {"-t", "-b", "0.5"});
  return data(document, "proc-6-r0") + data(document, "proc-5-d") + data(document, "cpu-1-f") +
         (document.find("\"6 - six\",\"treeId\":\"6_4_proc_root\"") != std::string::npos ? " named" : "");
}

TEST(TimechartDocument, LayoutsFollowKernelVersionAndWordWidth) {
  const std::tuple<int, const char*, bool> cases[] = {
      {304, "3", false}, {309, "3.9", false}, {310, "3.10", false}, {601, "6.1", true}, {304, "3.4x", true}};
  for (const auto& [kernel, version, wide] : cases)
    EXPECT_EXIT(
        {
          const std::string facts = inLayoutsOf(kernel, version, wide);
          std::fprintf(stderr, "%s\n", facts.c_str());
          std::exit(facts == "[[0.001000, 1]][[0.001000,1]][[0.002000,1512]] named" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << version;
}

TEST(TimechartDocument, InterruptsMakeTheirCpuBusyAndGetTheirNamesOnce) {
  TraceBuilder trace;
  const auto entry = [&](unsigned int time, unsigned int cpu, unsigned int irq, const char* name) {
    trace.at(time, cpu).add("irq:irq_handler_entry", Payload().u32(irq).located(name));
  };
  trace.at(1000, 0).schedSwitch(0, 0, 0);
  entry(2000, 0, 17, "timer");
  trace.at(3000, 0).value("irq:irq_handler_exit", 17, 1);
  entry(4000, 0, 17, "other");
  entry(4500, 0, 18, "nested \"quoted\"");
  trace.at(5000, 0).value("irq:irq_handler_exit", 18, 1).at(5500, 0).value("irq:irq_handler_exit", 17, 1);
  trace.at(6000, 5).value("irq:softirq_entry", 1).at(7000, 5).value("irq:softirq_exit", 1);
  trace.at(7000, 1).value("irq:softirq_exit", 1).at(8000, 1).value("irq:softirq_exit", 3);
  testing::internal::CaptureStdout();
  const std::string document = convert(trace);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "IRQ name not found: 1003\n");
  const std::string all = entries(document);
  EXPECT_EQ(
      all.substr(0, all.find("{\"id\":\"proc")),
      R"({"id":"cpu-0-b","name":"CPU 0 Busy","treeId":"b_0_cpu_root","type":"binary","class":"cpu:busy","show":1,"hints":{"white":"#000000","black":"#ffffff"},"data":[[0.002000,1],[0.003000,0],[0.004000,1]]}
{"id":"irq-17-0","name":"timer","treeId":"17_irq_root","type":"binary","class":"irq","show":0,"tip":"Running on CPU 0","hints":{"white":"#000000","black":"#ffffff"},"data":[[0.002000,1],[0.003000,0],[0.004000,1],[0.005500,0]]}
{"id":"irq-18-0","name":"nested \"quoted\"","treeId":"18_irq_root","type":"binary","class":"irq","show":0,"tip":"Running on CPU 0","hints":{"white":"#000000","black":"#ffffff"},"data":[[0.004500,1],[0.005000,0]]}
{"id":"irq-1001-1","name":"TIMER","treeId":"1001_irq_root","type":"binary","class":"irq","show":0,"tip":"Running on CPU 1","hints":{"white":"#4b0082","black":"#caa1e0"},"data":[]}
{"id":"irq-1001-5","name":"TIMER","treeId":"1001_irq_root","type":"binary","class":"irq","show":0,"tip":"Running on CPU 5","hints":{},"data":[[0.006000,1],[0.007000,0]]}
{"id":"irq-1003-1","name":"IRQ","treeId":"1003_irq_root","type":"binary","class":"irq","show":0,"tip":"Running on CPU 1","hints":{"white":"#4b0082","black":"#caa1e0"},"data":[]}
)");
}

TEST(TimechartDocument, ShowsIdleStatesAndFrequenciesPerCpu) {
  TraceBuilder trace;
  for (const unsigned int state : {0U, 0xFFFFFFFFU, 1U, 2U, 0x7FFFFFFFU, 0U})
    trace.at(1000 + (state & 3) * 1000, 4).value("power:cpu_idle", state, 9);
  trace.at(5000, 0)
      .value("power:cpu_frequency", 999, 20)
      .at(4000, 0)
      .value("power:cpu_frequency", 300000, 20);
  EXPECT_EQ(
      entries(convert(trace)),
      R"({"id":"cpu-4-s-0","name":"CPU 4 Idle State","treeId":"s_4_cpu_root","type":"binary","class":"cpu:idle","show":1,"tip":"Wait For Interrupt","hints":{"white":"#ffffdc","black":"#555555"},"data":[[0.001000,1]]}
{"id":"cpu-4-s-2","name":"CPU 4 Idle State","treeId":"s_4_cpu_root","type":"binary","class":"cpu:idle","show":1,"tip":"Standalone Power Collapse","hints":{"white":"#cd5c5c","black":"#cd5c5c"},"data":[[0.002000,1]]}
{"id":"cpu-20-f","name":"CPU 20 Frequency","treeId":"f_20_cpu_root","type":"bar","class":"cpu:freq","show":1,"tip":"MHz","hints":{},"data":[[0.004000,300],[0.005000,0]]}
)");
}

TEST(TimechartDocument, GpuEventsSetThePowerLevels) {
  TraceBuilder trace;
  const std::string core = "kgsl-3d0";
  trace.at(1000, 0).gpu("kgsl:kgsl_rail", core, 0).at(2000, 0).gpu("kgsl:kgsl_rail", core, 1);
  trace.at(2500, 0).gpu("kgsl:kgsl_bus", core, 0).at(3000, 0).gpu("kgsl:kgsl_bus", core, 1);
  trace.at(4000, 0).gpu("kgsl:kgsl_clk", core, 1).at(5000, 0).gpu("kgsl:kgsl_irq", core, 1);
  trace.at(5500, 0).gpu("kgsl:kgsl_irq", core, 9);
  trace.at(6000, 0)
      .gpu("kgsl:kgsl_pwrlevel", core, 3, 400000000)
      .at(6500, 0)
      .gpu("kgsl:kgsl_pwrlevel", core, 0, 999999);
  trace.at(7000, 0).gpu("kgsl:kgsl_a3xx_irq_status", core, 0x80000000);
  trace.at(7100, 0).gpu("kgsl:kgsl_a3xx_irq_status", core, 0xC0000000);
  trace.at(7200, 0).gpu("kgsl:kgsl_a2xx_irq_status", "no-digits", 0, 0x40000000);
  trace.at(7300, 0).gpu("kgsl:kgsl_z180_irq_status", "kgsl-2d1", 0x40000000);
  const auto issue = [&](std::uint64_t flags, std::uint64_t result, std::uint64_t context) {
    trace.at(8000, 3, 42)
        .add("kgsl:kgsl_issueibcmds",
             Payload().located(core).u32(0).u32(0).u32(0).u32(0).u32(flags).u32(result).u32(context));
  };
  issue(0x100, 0, 2);
  issue(0x1, 0, 7);
  issue(0x1, 5, 1);
  trace.at(9000, 3, 42).add("kgsl:kgsl_waittimestamp_entry", Payload().u32(0).u32(0));
  trace.at(9500, 3, 42).add("kgsl:kgsl_waittimestamp_exit", Payload().u32(0).u32(0));
  trace.at(9500, 3, 43).add("kgsl:kgsl_waittimestamp_exit", Payload().u32(0).u32(0));
  EXPECT_EQ(
      entries(convert(trace)),
      R"({"id":"gpu-0-0-q0","name":"GPU-0D0 IRQ","treeId":"irq_GPU-0D0_kgsl_root","type":"marker","class":"gpu:irq","show":1,"tip":"IB1 Complete","hints":{"white":"#bfbf34","black":"#e6e6a3"},"data":[[0.007200,1]]}
{"id":"gpu-2-1-q2","name":"GPU-2D1 IRQ","treeId":"irq_GPU-2D1_kgsl_root","type":"marker","class":"gpu:irq","show":1,"hints":{"white":"#812323","black":"#e6a3a3"},"data":[[0.007300,1]]}
{"id":"gpu-3-0-p0","name":"GPU-3D0 Power State","treeId":"power_GPU-3D0_kgsl_root","type":"binary","class":"gpu:power","show":1,"tip":"OFF","hints":{"white":"#d3d3d3","black":"#444444"},"data":[[0.001000,1],[0.002000,0]]}
{"id":"gpu-3-0-p1","name":"GPU-3D0 Power State","treeId":"power_GPU-3D0_kgsl_root","type":"binary","class":"gpu:power","show":1,"tip":"ON","hints":{"white":"#ffffdc","black":"#555555"},"data":[[0.002000,1],[0.003000,0]]}
{"id":"gpu-3-0-p2","name":"GPU-3D0 Power State","treeId":"power_GPU-3D0_kgsl_root","type":"binary","class":"gpu:power","show":1,"tip":"ON | AXI","hints":{"white":"#e0ffe0","black":"#005500"},"data":[[0.003000,1],[0.004000,0]]}
{"id":"gpu-3-0-p3","name":"GPU-3D0 Power State","treeId":"power_GPU-3D0_kgsl_root","type":"binary","class":"gpu:power","show":1,"tip":"ON | CLK | AXI","hints":{"white":"#cd5c5c","black":"#cd5c5c"},"data":[[0.004000,1],[0.005000,0]]}
{"id":"gpu-3-0-p4","name":"GPU-3D0 Power State","treeId":"power_GPU-3D0_kgsl_root","type":"binary","class":"gpu:power","show":1,"tip":"ON | CLK | AXI | IRQ","hints":{"white":"#8fbc8f","black":"#8fbc8f"},"data":[[0.005000,1]]}
{"id":"gpu-3-0-f","name":"GPU-3D0 Frequency","treeId":"freq_GPU-3D0_kgsl_root","type":"bar","class":"gpu:freq","show":1,"tip":"MHz","hints":{"white":"#8fbc8f","black":"#8fbc8f"},"data":[[0.006000,400],[0.006500,0]]}
{"id":"gpu-3-0-q1","name":"GPU-3D0 IRQ","treeId":"irq_GPU-3D0_kgsl_root","type":"marker","class":"gpu:irq","show":1,"tip":"RB Complete","hints":{"white":"#815223","black":"#d69e67"},"data":[[0.007000,1]]}
{"id":"gpu-3-0-q2","name":"GPU-3D0 IRQ","treeId":"irq_GPU-3D0_kgsl_root","type":"marker","class":"gpu:irq","show":1,"hints":{"white":"#812323","black":"#e6a3a3"},"data":[[0.007100,1]]}
{"id":"gpu-3-0-i0","name":"GPU-3D0 Issue","treeId":"issue_GPU-3D0_kgsl_root","type":"marker","class":"gpu:issue","show":1,"hints":{"white":"#66ccff","black":"#66ccff"},"data":[[0.008000,1]]}
{"id":"gpu-3-0-i2","name":"GPU-3D0 Issue","treeId":"issue_GPU-3D0_kgsl_root","type":"marker","class":"gpu:issue","show":1,"tip":"CL","hints":{"white":"#993CF3","black":"#993CF3"},"data":[[0.008000,2]]}
{"id":"proc-42-g","name":"42 - ","treeId":"42_proc_root","type":"binary","tip":"Waiting for GPU","class":"proc:wait","show":1,"hints":{"white":"#db7093","black":"#db7093"},"data":[[0.009000,1],[0.009500,0]]}
{"id":"proc-42-i0","name":"42 - ","treeId":"42_proc_root","type":"marker","class":"proc:issue","show":1,"tip":"Issue","hints":{"white":"#66ccff","black":"#66ccff"},"data":[[0.008000,1]]}
{"id":"proc-42-i2","name":"42 - ","treeId":"42_proc_root","type":"marker","class":"proc:issue","show":1,"tip":"CL Issue","hints":{"white":"#993CF3","black":"#993CF3"},"data":[[0.008000,2]]}
{"id":"proc-43-g","name":"43 - ","treeId":"43_proc_root","type":"binary","tip":"Waiting for GPU","class":"proc:wait","show":0,"hints":{"white":"#db7093","black":"#db7093"},"data":[]}
)");
}

TEST(TimechartDocument, GpuIssuesAndInterruptsAreDistinguishedByKind) {
  TraceBuilder trace;
  for (const unsigned int context : {1U, 3U, 4U})
    trace.at(1000 * context, 3, 42)
        .add("kgsl:kgsl_issueibcmds",
             Payload().located("kgsl-3d0").u32(0).u32(0).u32(0).u32(0).u32(0).u32(0).u32(context));
  trace.at(5000, 0).gpu("kgsl:kgsl_z180_irq_status", "kgsl-2d0", 0x80000000);
  const std::string document = convert(trace);
  EXPECT_EQ(data(document, "proc-42-i1"), "[[0.001000,1]]");
  EXPECT_EQ(data(document, "proc-42-i3"), "[[0.003000,1]]");
  EXPECT_EQ(data(document, "proc-42-i0"), "[[0.004000,1]]");
  EXPECT_EQ(data(document, "gpu-2-0-q2"), "[[0.005000,1]]");
  EXPECT_EQ(data(document, "gpu-2-0-q1"), "no entry");
}

TEST(TimechartDocument, PointsAreCutAt31Characters) {
  TraceBuilder trace;
  trace.at(1000, 0).schedSwitch(0, 0, 11);
  EXPECT_EQ(data(convert(trace, {"-r", "-b", "-1e19"}), "proc-11-r0"), "[[10000000000000000000.000000, 1]");
}

/// Counter samples of one task: cycles, and the same value for the first counter of each level.
TraceBuilder counters() {
  TraceBuilder trace;
  const auto add = [&](unsigned int time, unsigned int out, unsigned int in, unsigned int cycles) {
    Payload payload;
    payload.u32(out).u32(in).u32(cycles).u32(cycles).u32(0).u32(0).u32(0).u32(cycles).u32(0);
    trace.at(time, 0).add("perf_trace_counters:sched_switch_with_ctrs", payload);
  };
  add(1000, 7, 8, 500);  // the first sample of a CPU is dropped
  add(2000, 8, 9, 70);
  add(3000, 9, 8, 5);
  add(4000, 8, 9, 70);
  add(5000, 8, 8, 0);
  add(6000, 8, 8, 70);
  return trace;
}

TEST(TimechartDocument, CountersHaveTheNamesOfTheirConfiguration) {
  Conversion conversion;
  conversion.environment().set("ZELVIEW_CONFIG", conversion.path("config"));
  conversion.environment().set("DOCUMENT_ROOT", conversion.path("www"));
  conversion.environment().set("BUILD_TYPE", "release");
  conversion.write("config/plotx/activeCounters",
                   "11\nskip\n0a\n0A\nffffffff\n0a\nskip\n0b\nffffffff\nskip\n");
  conversion.write("www/configx/cfgx-types.json",
                   R"({ "items": [ // known counters
 {"info":{"raw perf code":"0A"},"inputs":[{"event_type":4}],"name":"L1 misses"},
 {"info":{"raw perf code":"0b"},"inputs":[{"event_type":"6"}],"name":"L2 hits"},
 {"info":{"raw perf code":11},"inputs":[{"event_type":4}],"name":"cycles"},
 {"info":{}}, {"info":{"raw perf code":"0b"},"name":"no group"}, 5, ] })");
  const std::string document = conversion.run(counters(), {"-t", "-b", "0.5"});
  EXPECT_EQ(
      entries(document),
      R"({"id":"proc-8-ctr0","name":"8 - ","tip":"11","treeId":"0_8_proc_root","type":"bar","class":"ctr:","show":0,"hints":{"white":"#232381","black":"#a3a3e6"},"data":[[0.001000,70],[0.002000,0],[0.003000,70],[0.004000,0],[0.005000,0],[0.005000,70],[0.006000,0],[0.006000,0]]}
{"id":"proc-8-ctr1","name":"8 - ","tip":"L1 misses","treeId":"1_8_proc_root","type":"bar","class":"ctr:","show":0,"hints":{"white":"#232381","black":"#a3a3e6"},"data":[[0.001000,70],[0.002000,0],[0.003000,70],[0.004000,0],[0.005000,0],[0.005000,70],[0.006000,0],[0.006000,0]]}
{"id":"proc-8-ctr5","name":"8 - ","tip":"L2 hits","treeId":"5_8_proc_root","type":"bar","class":"ctr:","show":0,"hints":{"white":"#232381","black":"#a3a3e6"},"data":[[0.001000,70],[0.002000,0],[0.003000,70],[0.004000,0],[0.005000,0],[0.005000,70],[0.006000,0],[0.006000,0]]}
{"id":"proc-9-ctr0","name":"9 - ","tip":"11","treeId":"0_9_proc_root","type":"bar","class":"ctr:","show":0,"hints":{"white":"#232381","black":"#a3a3e6"},"data":[[0.002000,5],[0.003000,0],[0.004000,0]]}
{"id":"proc-9-ctr1","name":"9 - ","tip":"L1 misses","treeId":"1_9_proc_root","type":"bar","class":"ctr:","show":0,"hints":{"white":"#232381","black":"#a3a3e6"},"data":[[0.002000,5],[0.003000,0],[0.004000,0]]}
{"id":"proc-9-ctr5","name":"9 - ","tip":"L2 hits","treeId":"5_9_proc_root","type":"bar","class":"ctr:","show":0,"hints":{"white":"#232381","black":"#a3a3e6"},"data":[[0.002000,5],[0.003000,0],[0.004000,0]]}
)");
}

TEST(TimechartDocument, ShowsCounterCodesWhereNoFileTranslatesThem) {
  Conversion conversion;
  conversion.softInterrupts("");
  conversion.environment().set("ZELVIEW_CONFIG", conversion.path("config"));
  conversion.environment().set("DOCUMENT_ROOT", conversion.path("www"));
  conversion.write("config/plotx/activeCounters", "11\nskip\n0a\n\n0b\n");
  testing::internal::CaptureStderr();
  const std::string document = conversion.run(counters(), {"-t", "-b", "0.5"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "JSOM::fromFile(): could not open file\n");
  EXPECT_NE(document.find("\"tip\":\"0a\""), std::string::npos);
  for (const char* id : {"proc-8-ctr2", "proc-8-ctr5"}) EXPECT_EQ(data(document, id), "no entry");
}

TEST(TimechartDocument, CountersWithoutAConfigurationHaveNoEntries) {
  Conversion conversion;
  conversion.environment().set("ZELVIEW_CONFIG", conversion.path("none"));
  EXPECT_EQ(entries(conversion.run(counters(), {"-t", "-b", "0.5"})), "");
}

TEST(TimechartDocument, ListsMarkersUnderTheirProcessAndInOneEntry) {
  Conversion conversion;
  conversion.traceText(
      "# tracer: nop\n"
      "           <...>-77    [000] ....   12.500000: tracing_mark_write: ZVIEW,7,draw \"x\",a,b\n"
      "           <...>-77    [000] ....   12.250000: tracing_mark_write: ZVIEW,2147483648,end,\n"
      "             app-55    [000] ....   13.000000: tracing_mark_write: ZVIEW,-1,named,args\n"
      "           <...>-78    [000] ....   14.000000: tracing_mark_write: ZVIEW,5,frame\n"
      "           <...>-79    [000] ....   14.000000: tracing_mark_write: OTHER,5,frame,x\n"
      "           <...>-80    [000] ....   14.000000: sched_switch: ZVIEW,5,frame,x\n"
      "           <...>-nopid [000] ....   never: tracing_mark_write: x,code,of ZVIEW,last");
  EXPECT_EQ(
      entries(conversion.run(RecordingBuilder(), {"-t", "-q", "-c", "2", "-g", "0.5", "-b", "20"})),
      R"({"id":"proc-0-e","name":"0 - kernel","treeId":"0_proc_root","type":"events","class":"proc:events","tip":"FTrace Markers","show":1,"hints":{"white":"#cd5c5c","black":"#cd5c5c"},"data":[[6.5,4294967295,"named","args",],[-19.5,0,"of ZVIEW","last",],]}
{"id":"proc-77-e","name":"77 - ","treeId":"77_proc_root","type":"events","class":"proc:events","tip":"FTrace Markers","show":1,"hints":{"white":"#cd5c5c","black":"#cd5c5c"},"data":[[5.5,7,"draw \"x\"","a,b",],[5,2147483647,"end","",],]}
{"id":"evt","name":"FTrace Events","treeId":"evt_root","type":"events","class":"proc:events","tip":"FTrace Events","show":1,"hints":{"white":"#cd5c5c","black":"#cd5c5c"},"data":[[5.5,7,"draw \"x\"","a,b",],[5,2147483647,"end","",],[6.5,4294967295,"named","args",],[-19.5,0,"of ZVIEW","last",],]}
)");
}

TEST(TimechartDocument, AMarkerOfANamedTaskIsReadFromItsSecondCharacterOn) {
  Conversion conversion;
  conversion.traceText("12 [000] 1.0: tracing_mark_write: ZVIEW,5,digits,x\n");
  EXPECT_NE(conversion.run(RecordingBuilder(), {"-t", "-q"}).find("\"id\":\"proc-2-e\""), std::string::npos);
}

TEST(TimechartDocument, KeepsWhatIsInTheSelectedRange) {
  TraceBuilder trace;
  for (const unsigned int time : {4000000U, 4999999U, 5000000U, 6000000U, 6000001U})
    trace.at(time, time / 1000000 % 2).schedSwitch(0, 0, static_cast<int>(time / 1000));
  const std::string document = convert(trace, {"-r", "-s", "5", "-f", "6"});
  EXPECT_EQ(data(document, "proc-5000-r1"), "[[0.000000, 1]]");
  EXPECT_EQ(data(document, "proc-6000-r0"), "[[1.000000, 1]]");
  EXPECT_EQ(data(document, "proc-4999-r0"), "no entry");
  EXPECT_EQ(data(document, "cpu-0-b"), "[[1.000000,1]]");
}

TEST(TimechartDocument, ReadsNamesUpToASecondOutsideTheSelectedRange) {
  TraceBuilder trace;
  const auto rename = [&](std::uint64_t time, unsigned int pid, const char* name) {
    trace.at(time, 0).add("task:task_rename", Payload().u32(pid).text("old", 16).text(name, 16).u32(0));
  };
  trace.at(5000000, 0).schedSwitch(0, 0, 21).schedSwitch(21, 0, 22);
  rename(3999999, 22, "early");
  rename(4000000, 21, "first");
  rename(7000000, 22, "last");
  rename(7000001, 21, "late");
  const std::string document = convert(trace, {"-r", "-s", "5", "-f", "6"});
  EXPECT_NE(document.find("\"21 - first\""), std::string::npos);
  EXPECT_NE(document.find("\"22 - last\""), std::string::npos);
}

TEST(TimechartDocument, TasksAreNamedAfterTheFirstProcessOfTheirThreadId) {
  TraceBuilder trace;
  trace.comm(10, 11, "first").comm(12, 11, "second");
  trace.at(1000, 0).schedSwitch(0, 0, 11);
  EXPECT_NE(convert(trace).find("\"11 - first\",\"treeId\":\"11_10_proc_root\""), std::string::npos);
}

TEST(TimechartDocument, DropsFactsOfCpusWithoutASlot) {
  TraceBuilder trace;
  trace.at(1000, 16).schedSwitch(0, 0, 11).at(2000, 0xFFFFFFFF).schedSwitch(11, 2, 0);
  trace.at(2000, 16).value("irq:softirq_entry", 1).at(2000, 99).value("irq:irq_handler_exit", 3);
  trace.at(2000, 1).add("irq:irq_handler_entry", Payload().u32(3).u32(0xFFFF));  // a name outside the buffer
  trace.at(2000, 40).add("perf_trace_counters:sched_switch_with_ctrs", Payload().u32(1).u32(2).u32(3));
  testing::internal::CaptureStdout();
  const std::string document = convert(trace);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "IRQ name not found: 3\n");
  EXPECT_EQ(data(document, "cpu-16-b"), "[[0.001000,1]]");
  EXPECT_EQ(data(document, "proc-11-d"), "[[0.002000,1]]");
  EXPECT_EQ(document.find("proc-11-r"), std::string::npos);
  EXPECT_EQ(document.find("irq-1001"), std::string::npos);
}

TEST(TimechartDocument, AnEventNumberThatNoTableTakesEndsTheRun) {
  const std::vector<std::vector<std::uint64_t>> bad = {
      {4000}, {5000, 6000, 7000}, {0xFFFFFFFF}, {0xF0000000}};
  for (const auto& numbers : bad)
    EXPECT_EXIT(
        [&]() noexcept {
          RecordingBuilder recording;
          for (const std::uint64_t number : numbers) recording.event(number, "x:y");
          convert(recording);
        }(),
        testing::KilledBySignal(SIGABRT), "vector::_M_range_check")
        << numbers[0];
  RecordingBuilder recording;
  for (const std::uint64_t number :
       {std::uint64_t{3999}, std::uint64_t{0}, std::uint64_t{9000}, std::uint64_t{1} << 32 | 5})
    recording.event(number, "x:y");
  EXPECT_EQ(convert(recording), "\n{\"entries\":[]}\n");
}

}  // namespace
