#include "run/profile.h"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/MachineFiles.h"
#include "base/TargetNumbers.h"
#include "events/PerfRecordSampleEvent.h"
#include "json/PerfJSONWriter.h"
#include "records/PerfBlockReader.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordComm.h"
#include "records/PerfRecordHeader.h"
#include "records/PerfRecordMMap.h"
#include "records/PerfRecordSample.h"
#include "run/ErrorExit.h"
#include "run/KernelLog.h"
#include "run/Options.h"
#include "run/Settings.h"
#include "run/TerminalReport.h"
#include "run/TimeBase.h"
#include "symbols/FileNames.h"
#include "symbols/SymbolTable.h"
#include "timechart/TimechartManager.h"

namespace {

/// Sets the version to 100 * major + minor of "major.minor"; any other text does not change it.
void parseKernelVersion(const char* text) {
  const char* point = nullptr;
  const int major = targetStrtol(text, &point);
  if (point == text || *point != '.') return;
  const char* end = nullptr;
  const int minor = targetStrtol(point + 1, &end);
  if (end == point + 1) return;
  kern_ver = static_cast<int>(static_cast<unsigned int>(major) * 100 + static_cast<unsigned int>(minor));
}

void readEnvironment() {
  if (const char* version = std::getenv("kern_ver"); version != nullptr) parseKernelVersion(version);
  const char* wordWidth = std::getenv("ARM64");
  is64 = wordWidth != nullptr && std::strcmp(wordWidth, "y") == 0;
}

void loadKernelSymbols() {
  SymbolTable::setPath(symPath);
  auto* kernel = new SymbolTable;
  const char* path = gMachineFiles.kernelSymbols.c_str();
  if (gMachineFiles.symbolSource) {
    kernel->setSource(gMachineFiles.symbolSource(path));
  } else {
    kernel->readFromFile(path);
  }
  gKernelStart = kernel->lowAddress();
  gKernelEnd = kernel->highAddress();
  // After the bounds are set: the vector page must not widen them.
  kernel->addElement(0xFFFF0000, 0xFFFF, "*interrupt-FFFF0000*", nullptr, 0);
  SymbolTable::_kernelSymTable = kernel;
}

/// The recording named by the options.
class RecordingFile : public RecordSource {
 public:
  explicit RecordingFile(TerminalReport& report) : _report(report) {}

  void open() override {
    _report.inspectFiles();
    if (_reader.open(inFileName.c_str()) == 0) return;
    _report.tellUnreadable(errno);
    errorExit("Bad In File Name", -1);
  }

  void walk() override {
    const PerfRecordHeaderS header = readHeader();
    PerfRecordSampleEvent::readEvents(_reader, header);
    _report.watch();
    _reader.seek(static_cast<int>(static_cast<std::uint32_t>(header.dataOffset)));
    // The size of the data section is ignored: records are read up to the end of the file.
    while (_reader.status() && !gDoneProcessing)
      if (PerfRecord* record = PerfFactory::readNext(_reader); record != nullptr && !record->isKept())
        delete record;
  }

  void close() override { _reader.close(); }

 private:
  PerfRecordHeaderS readHeader() {
    PerfRecordHeaderS header{};
    const int count = _reader.read(reinterpret_cast<char*>(&header), sizeof header);
    if (count > 0) return header;
    _report.tellUnreadable(count < 0 ? errno : 0);
    errorExit("Invalid In File", -1);
  }

  TerminalReport& _report;
  PerfBlockReader _reader;
};

void writeDescription(PerfJSONWriter& writer, const char* chip) {
  writer.newElementStart("Description");
  writer.writeNamed("Version", "1.0");
  writer.writeNamed("Target Chip", chip != nullptr ? chip : "unknown");
  writer.writeNamed("Start Time", gtodAtStart);
  writer.writeNamed("First Sample Time", PerfRecordSample::_firstSampleTime);
  writer.writeNamed("duration",
                    time64ToDouble(PerfRecordSample::_lastSampleTime) - PerfRecordSample::_firstSampleTime);
  writer.newElementEnd();
}

void writeProfileDocument(PerfJSONWriter& writer, TerminalReport& report) {
  writer.newElementStart(nullptr);
  writeDescription(writer, std::getenv("CHIP"));
  // Before all sections, as it may create maps and symbols.
  PerfRecordSample::verifyKeys();
  report.stopWatching();
  report.countSamples();
  PerfRecordComm::outAll(writer);
  PerfRecordMMap::outAll(writer);
  FileNames::outAll(writer);
  SymbolTable::outAll(writer);
  PerfRecordSample::outAll(writer);
  writer.newElementEnd();
}

void writeTimechartDocument(PerfJSONWriter& writer) {
  TimechartManager* manager = TimechartManager::Instance();
  manager->inspectTraceFile();
  manager->finalizeChartData();
  manager->writeData(writer);
}

/// Returns 0, or the errno of what kept the document from being written.
int convert(int argc, char** argv, RecordSource& records, TerminalReport& report) {
  const PerfRecordMMap firstMap;  // has key 1, so that the keys of a recording's maps start at 2
  const SymbolTable defaultTable;
  FileNames::createEmptyRef();

  parseOptions(argc, argv);
  if (optind < argc) report.tellIgnored({argv + optind, argv + argc});
  // Crossed on purpose: the option for white space controls the labels and the one for labels the white
  // space.
  auto* writer = new DocumentWriter(addJSONWhiteSpace, addJSONLabels);
  calcTimeConversion();
  readEnvironment();
  PerfRecordSample::_keepsSamples = !gTimechartMode;
  if (!gTimechartMode) loadKernelSymbols();
  SymbolTable::createSyntheticTable();

  records.open();
  if (writer->open(outFileName.c_str()) == -1) errorExit("Bad Out File Name", -1);
  report.tellUnwritable(writer->error());
  records.walk();
  if (gTimechartMode) {
    report.stopWatching();
    writeTimechartDocument(*writer);
  } else {
    writeProfileDocument(*writer, report);
  }
  writer->close();
  report.tellUnwritable(writer->error());
  report.summarize();
  records.close();
  closeKernelLog();
  if (verbose()) PerfFactory::showStats();
  return writer->error();
}

}  // namespace

int profile(int argc, char** argv) {
  TerminalReport report(TerminalReport::isTerminal());
  RecordingFile recording(report);
  convert(argc, argv, recording, report);
  return 0;
}

int profile(int argc, char** argv, RecordSource& records) {
  TerminalReport silence(false);
  return convert(argc, argv, records, silence);
}
