// Settings that a program that links the converter may change, unlike the command line.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

#include "base/MachineFiles.h"
#include "records/PerfFactory.h"
#include "run/Settings.h"
#include "run/profile.h"
#include "support/Conversion.h"
#include "symbols/SymbolTable.h"

namespace {

/// Passes the records of a recording to the engine without a file.
class RecordsInMemory : public RecordSource {
 public:
  explicit RecordsInMemory(std::string records) : _records(std::move(records)) {}

  void open() override {}
  void walk() override {
    for (std::size_t at = 0; at < _records.size();) {
      std::uint32_t type = 0;
      std::uint16_t size = 0;
      std::memcpy(&type, &_records[at], sizeof type);
      std::memcpy(&size, &_records[at + 6], sizeof size);
      char* buffer = PerfFactory::buffer(2048);
      std::memcpy(buffer, &_records[at], size);
      PerfFactory::create(type, size, buffer);
      at += size;
    }
  }
  void close() override {}

 private:
  std::string _records;
};

/// Two functions of 256 bytes.
class TwoFunctions : public SymbolSource {
 public:
  TwoFunctions(unsigned long long start, const char* first, const char* second)
      : _start(start), _first(first), _second(second) {}

  std::size_t find(unsigned long long address) const override {
    return address >= _start && address < _start + 0x200
               ? static_cast<std::size_t>((address - _start) / 0x100)
               : kNone;
  }
  Symbol at(std::size_t number) override {
    return {.start = _start + 0x100 * number, .size = 0xFF, .name = number == 0 ? _first : _second};
  }
  unsigned long long lowest() const override { return _start; }
  unsigned long long highest() const override { return _start + 0x100; }

 private:
  unsigned long long _start;
  std::string _first;
  std::string _second;
};

std::unique_ptr<SymbolSource> symbolsOf(const char* name) {
  if (gMachineFiles.kernelSymbols == name)
    return std::make_unique<TwoFunctions>(0xC0000000, "kernel_start", "kernel_next");
  if (std::strcmp(name, "/a/libx.so") != 0) return nullptr;
  return std::make_unique<TwoFunctions>(0, "start", "middle");
}

TEST(LinkedProgram, ProvidesRecordsAndSymbolsAndKeepsDeepTraces) {
  Conversion conversion;
  gMachineFiles.symbolSource = symbolsOf;
  gDeepestTrace = 40;
  RecordingBuilder recording;
  recording.comm(7, 7, "tool");
  recording.mmap(7, 7, 0x40000000, 0x300, "/a/libx.so").mmap(7, 7, 0x50000000, 0x300, "/b/libx.so");
  recording.sample({.ip = 0xC0000101, .pid = 7, .tid = 7, .time = 1});
  recording.sample({.ip = 0x50000104,
                    .pid = 7,
                    .tid = 7,
                    .time = 1500000000,
                    .trace = std::vector<std::uint64_t>(41, 0x40000104)});
  RecordsInMemory records(recording.data());
  std::string output = conversion.path("out.json");
  char* arguments[] = {const_cast<char*>("zelconv"), const_cast<char*>("-o"), output.data(), nullptr};
  optind = 1;
  ASSERT_EQ(profile(3, arguments, records), 0);
  const std::string document = conversion.read("out.json");
  EXPECT_EQ(rows(document, "functions"),
            "8,\"kernel_next\",3221225728,255,[3,]\n7,\"middle\",256,255,[5,]\n");
  std::string entries;
  for (int i = 0; i < 40; ++i) entries += "[1073742084,7,],";
  // Two files of one name, of which only the first has a list.
  EXPECT_NE(rows(document, "samples").find("2,1342177540,6,"), std::string::npos);
  EXPECT_NE(rows(document, "samples").find("[" + entries + "]"), std::string::npos);
}

TEST(LinkedProgram, SearchesForFilesBelowItsRootFirst) {
  const Conversion folder;
  folder.write("device/bin/sh", "");
  gMachineFiles.root = folder.path("device");
  SymbolTable::setPath("/");
  int index = 0;
  EXPECT_EQ(SymbolTable::findPathForFile("/bin/sh", index), folder.path("device/bin/sh"));
  index = 0;
  EXPECT_EQ(SymbolTable::findPathForFile("/bin/env", index), "");
}

}  // namespace
