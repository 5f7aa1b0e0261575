// Makes recordings and machine files that are the worst cases of the program's tables:
// make_worst FOLDER COUNT
//
// Each FOLDER/<case> is a folder for convert_for_machine with a recording "perf.data" of COUNT records, or of
// lines in a text file, and a file "options" with what to convert it by.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_set>

#include "support/TraceEvents.h"

namespace {

constexpr const char* kProfile = "-b 5";
constexpr const char* kTimechart = "-t -q";
constexpr std::uint64_t kTop = 0x80000000;

/// The folder of one case.
class Case {
 public:
  Case(const std::string& folder, const std::string& name, const std::string& options)
      : _folder(folder + "/" + name) {
    std::filesystem::create_directories(_folder);
    file("options") << options << "\n";
  }
  std::ofstream file(const std::string& name) const { return std::ofstream(_folder + "/" + name); }
  void save(const RecordingBuilder& recording) const { recording.save(_folder + "/perf.data"); }

 private:
  std::string _folder;
};

class Maker {
 public:
  Maker(std::string folder, unsigned int count) : _folder(std::move(folder)), _count(count) {}

  void maps() const {
    RecordingBuilder descending;
    RecordingBuilder scattered;
    RecordingBuilder amongSamples;
    for (unsigned int i = 0; i < _count; ++i) {
      descending.mmap(7, 7, kTop - i * 16, 16, "/lib/one.so");
      scattered.mmap(7, 7, i * 2654435761ULL % kTop, 16, "/lib/one.so");
      amongSamples.mmap(7, 7, kTop - i * 16, 16, "/lib/one.so").sample(at(kTop - i * 16, 7));
    }
    Case(_folder, "maps-descending", kProfile).save(descending);
    Case(_folder, "maps-scattered", kProfile).save(scattered);
    Case(_folder, "maps-among-samples", kProfile).save(amongSamples);
  }

  /// Symbols used by more and more maps, those of this program.
  void sharedSymbols() const {
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    RecordingBuilder recording;
    for (unsigned int i = 0; i < _count; ++i) {
      const unsigned int pid = i / 4 + 1;
      const std::uint64_t start = 0x40000000 + i % 4 * 0x200000;
      recording.mmap(pid, pid, start, 0x100000, program);
      PlainSample sample = at(start + 0x5000, pid);
      for (std::uint64_t offset = 0x3000; offset < 0x9000; offset += 0x800)
        sample.trace.push_back(start + offset);
      recording.sample(sample);
    }
    Case(_folder, "symbols-in-every-map", kProfile).save(recording);
  }

  void files() const {
    RecordingBuilder recording;
    for (unsigned int i = 0; i < _count; ++i)
      recording.mmap(7, 7, kTop - i * 16, 16, "/lib/library" + std::to_string(i) + ".so");
    Case(_folder, "files-that-are-nowhere", kProfile).save(recording);
  }

  void samples() const {
    RecordingBuilder oneAddress;
    RecordingBuilder newPages;
    RecordingBuilder newProcesses;
    oneAddress.comm(7, 7, "task").mmap(7, 7, 0x10000, 16, "/app/tool");
    newPages.comm(7, 7, "task").mmap(7, 7, 0x10000, 16, "/app/tool");
    for (unsigned int i = 0; i < _count; ++i) {
      oneAddress.sample(at(kTop, 7));
      newPages.sample(at(kTop + std::uint64_t{i} * 0x10000 % 0x2F000000, 7 + i / 0x2F00));
      if (i % 4 == 0) newProcesses.comm(i / 4, i / 4, "task");
      newProcesses.sample(at(kTop, i / 4));
    }
    Case(_folder, "samples-at-one-address-without-a-map", kProfile).save(oneAddress);
    Case(_folder, "samples-in-new-pages", kProfile).save(newPages);
    Case(_folder, "samples-of-new-processes", kProfile).save(newProcesses);
  }

  void events() const {
    TraceBuilder newTasks;
    TraceBuilder backward;
    TraceBuilder newInterrupts;
    for (unsigned int i = 0; i < _count; ++i) {
      newTasks.at(i, i % 16).schedSwitch(static_cast<int>(i), 0, static_cast<int>(i + 1));
      backward.at(_count - i, i % 16).schedSwitch(7, i % 3, 8);
      newInterrupts.at(i, i % 16).add("irq:irq_handler_entry", Payload().u32(i).located("device"));
    }
    Case(_folder, "events-of-new-tasks", kTimechart).save(newTasks);
    Case(_folder, "events-backward-in-time", kTimechart).save(backward);
    Case(_folder, "events-of-new-interrupts", kTimechart).save(newInterrupts);
  }

  /// Keys that are multiples of the size of a table of the standard library with that many elements.
  void collidingKeys() const {
    RecordingBuilder processes;
    RecordingBuilder threads;
    RecordingBuilder pages;
    TraceBuilder tasks;
    TraceBuilder interrupts;
    TraceBuilder frequencies;
    const std::uint64_t tableSize = sizeOfTable();
    pages.comm(7, 7, "task").mmap(7, 7, 0x10000, 16, "/app/tool");
    for (std::uint64_t i = 0; i < _count; ++i) {
      const std::uint64_t key = i * tableSize;
      // As many keys of 32 bits as possible that share few slots of the table.
      const std::uint64_t mostMultiples = 0xFFFFFFFF / tableSize;
      const std::uint64_t narrow = i % mostMultiples * tableSize + i / mostMultiples;
      processes.comm(static_cast<unsigned int>(key >> 32), static_cast<unsigned int>(key), "task");
      threads.comm(static_cast<unsigned int>(i + 1), 7, "task");
      pages.sample(at(key << 16, 7));
      tasks.at(i, i % 16).add("task:task_rename", Payload().u32(narrow).text("old", 16).text("new", 16));
      interrupts.at(i, i % 16).add("irq:irq_handler_entry", Payload().u32(narrow).located("device"));
      frequencies.at(i, i % 16).add("power:cpu_frequency", Payload().u32(1000 + i).u32(narrow));
    }
    Case(_folder, "colliding-processes", kProfile).save(processes);
    Case(_folder, "colliding-threads", kProfile).save(threads);
    Case(_folder, "colliding-pages", kProfile).save(pages);
    Case(_folder, "colliding-tasks", kTimechart).save(tasks);
    Case(_folder, "colliding-interrupts", kTimechart).save(interrupts);
    Case(_folder, "colliding-cpus", kTimechart).save(frequencies);
  }

  void eventTable() const {
    RecordingBuilder recording;
    for (unsigned int i = 0; i < _count; ++i) recording.event(i % 4000, "sched:no_such_event");
    Case(_folder, "event-table", kTimechart).save(recording);
  }

  void damage() const {
    RecordingBuilder recording;
    for (unsigned int i = 0; i < _count; ++i) recording.bytes(Bytes().u64(0xFFFF0000FFFFULL * i | 1).str());
    Case(_folder, "bytes-that-are-no-records", kProfile).save(recording);
  }

  void texts() const {
    const Case markers(_folder, "markers", kTimechart);
    const Case symbols(_folder, "symbols-backward", kProfile);
    const Case types(_folder, "counter-types-in-depth", kTimechart);
    std::ofstream trace = markers.file("trace");
    std::ofstream list = symbols.file("kallsyms");
    std::ofstream json = types.file("types");
    for (unsigned int i = 0; i < _count; ++i) {
      trace << " <...>-" << i << " [000] ..... " << i << ".5: tracing_mark_write: ZVIEW,1,name,arguments\n";
      list << std::hex << 0xBFFFFFFFU - i << " T symbol" << i << "\n";
      json << "[";
    }
    std::filesystem::create_directories(_folder + "/counter-types-in-depth/configx");
    json.close();
    std::filesystem::rename(_folder + "/counter-types-in-depth/types",
                            _folder + "/counter-types-in-depth/configx/cfgx-types.json");
    std::filesystem::create_directories(_folder + "/counter-types-in-depth/plotx");
    std::ofstream(_folder + "/counter-types-in-depth/plotx/activeCounters") << "11\n";
    for (const Case& each : {markers, symbols, types}) each.save(TraceBuilder());
  }

 private:
  std::uint64_t sizeOfTable() const {
    std::unordered_set<unsigned int> table;
    for (unsigned int i = 0; i < _count; ++i) table.insert(i);
    return table.bucket_count();
  }

  static PlainSample at(std::uint64_t address, unsigned int pid) {
    return {.ip = address, .pid = pid, .tid = pid, .time = 1000000000, .trace = {address, address}};
  }

  std::string _folder;
  unsigned int _count;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_worst FOLDER COUNT\n");
    return 2;
  }
  const Maker maker(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)));
  maker.maps();
  maker.sharedSymbols();
  maker.files();
  maker.samples();
  maker.events();
  maker.collidingKeys();
  maker.eventTable();
  maker.damage();
  maker.texts();
  return 0;
}
