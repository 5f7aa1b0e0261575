#include "records/PerfFactory.h"

#include <gtest/gtest.h>

#include "records/PerfRecord.h"
#include "records/PerfRecordComm.h"
#include "run/Settings.h"
#include "support/MemoryReader.h"
#include "support/RecordingBuilder.h"
#include "symbols/SymbolTable.h"

namespace {

std::string header(unsigned int type, unsigned int size) {
  return Bytes().u32(type).u16(0).u16(size).str();
}

std::string comm(unsigned int pid, const std::string& name) {
  const std::string body = Bytes().u32(pid).u32(pid).padded(name).str();
  return header(3, static_cast<unsigned int>(body.size() + 8)) + body;
}

/// The names of the processes created by a walk over the bytes, and its output.
struct Walk {
  std::string names;
  std::string output;
};

Walk walk(const std::string& bytes) {
  gVerbosity = 1;
  testing::internal::CaptureStdout();
  MemoryReader reader(bytes);
  Walk result;
  while (reader.status())
    if (const PerfRecord* record = PerfFactory::readNext(reader); record != nullptr)
      result.names += std::string(record->getName()) + " ";
  PerfFactory::showStats();
  result.output = testing::internal::GetCapturedStdout();
  return result;
}

std::string lastLine(const std::string& text) {
  return text.substr(text.rfind('\n', text.size() - 2) + 1);
}

TEST(PerfFactory, ReadsEveryRecordOfAnIntactFile) {
  const Walk result =
      walk(comm(5, "one") + header(5, 12) + "body" + comm(6, "two") + header(16, 12) + "body");
  EXPECT_EQ(result.names, "one two ");
  EXPECT_NE(result.output.find("Unknown Type:5 len:12(c)\n"), std::string::npos);
  EXPECT_NE(result.output.find("Overflow Type:10 len:12(c)\n"), std::string::npos);
  EXPECT_EQ(lastLine(result.output), "Lost Bytes: 0\n");
}

TEST(PerfFactory, SkipsImplausibleHeaders) {
  // The rejected header is not counted; the words of the one that is found are.
  for (const std::string& damage : {header(0, 24), header(17, 24), header(3, 11), header(3, 257)}) {
    SCOPED_TRACE(damage[0]);
    const Walk result = walk(damage + comm(5, "one"));
    EXPECT_EQ(result.names, "one ");
    EXPECT_NE(result.output.find("FIXED\n"), std::string::npos);
  }
}

TEST(PerfFactory, CountsTheWordsOfTheScan) {
  EXPECT_EQ(lastLine(walk(header(0, 0) + std::string(12, '\xff') + comm(5, "one")).output),
            "Lost Bytes: 20\n");
}

TEST(PerfFactory, NeverUsesTheSecondWordOfARejectedHeaderAsAType) {
  // 3 in the upper word of the bad header, then a word that would do as a size.
  const std::string misleading = Bytes().u32(0).u32(3).u16(0).u16(24).str();
  EXPECT_EQ(walk(misleading + comm(5, "one")).names, "one ");
}

TEST(PerfFactory, AcceptsRecordsOf12To256Bytes) {
  EXPECT_EQ(walk(header(3, 12) + Bytes().u32(9).str() + comm(5, "one")).names, " one ");
  const std::string longest = header(3, 256) + Bytes().u32(8).u32(8).text(std::string(300, 'x'), 240).str();
  EXPECT_EQ(walk(longest).names.substr(0, 240), std::string(240, 'x'));
}

TEST(PerfFactory, ReadsATruncatedBodyOverStaleBytes) {
  // The record buffer still holds the longer name of the record before.
  const std::string cut = header(3, 24) + Bytes().u32(9).u32(9).text("ab", 2).str();
  EXPECT_EQ(walk(comm(5, "longname") + cut).names, "longname abngname ");
}

TEST(PerfFactory, ReadsARecordInABufferOfTheCaller) {
  std::string record = comm(5, "one");  // and the factory has no buffer yet
  const PerfRecord* process = PerfRecordComm::createInstance(record.data());
  EXPECT_EQ(process->pid, 5U);
  EXPECT_STREQ(process->getName(), "one");
}

TEST(PerfRecordComm, HasSymbolsOfKernelAddressesOnly) {
  SymbolTable kernel;
  SymbolTable::_kernelSymTable = &kernel;
  gKernelStart = 0xC0008000;
  EXPECT_EQ(PerfRecordComm::_kernelArea.findSymbolTable(0xC0008000), &kernel);
  EXPECT_EQ(PerfRecordComm::_kernelArea.findSymbolTable(0xC0007FFF), nullptr);
}

TEST(PerfFactory, KeepsTheFirstFunctionOfAType) {
  const auto none = [](char*) -> PerfRecord* { return nullptr; };
  EXPECT_EQ(PerfFactory::addFunction(3, "other", none), -1);
  EXPECT_EQ(PerfFactory::addFunction(16, "beyond", none), -1);
  EXPECT_EQ(PerfFactory::addFunction(12, nullptr, none), 0);
}

}  // namespace
