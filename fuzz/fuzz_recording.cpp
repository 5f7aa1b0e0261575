// Feeds a made-up recording to the event table's reader and the record walk, and writes both documents.

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "events/PerfRecordSampleEvent.h"
#include "json/PerfJSONWriter.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordMMap.h"
#include "records/PerfRecordSample.h"
#include "run/Settings.h"
#include "support/MemoryReader.h"
#include "symbols/SymbolTable.h"
#include "timechart/TimechartManager.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < sizeof(PerfRecordHeaderS)) return 0;
  static const bool ready = [] {
    SymbolTable::createSyntheticTable();
    return true;
  }();
  (void)ready;
  // The first byte of the magic, which nobody looks at, chooses the kernel.
  kern_ver = (data[0] & 1) != 0 ? 304 : 310;
  is64 = (data[0] & 2) != 0;

  PerfRecordHeaderS header;
  std::memcpy(&header, data, sizeof header);
  MemoryReader reader(std::string(reinterpret_cast<const char*>(data), size));
  try {
    PerfRecordSampleEvent::readEvents(reader, header);
  } catch (const std::out_of_range&) {
    return 0;  // what ends the program here is part of the rules
  }
  reader.seek(static_cast<int>(header.dataOffset));
  while (reader.status()) PerfFactory::readNext(reader);

  static unsigned int runs = 0;
  if (++runs % 64 != 0) return 0;  // the documents hold everything so far
  PerfJSONWriter writer(true, (data[0] & 4) != 0);
  writer.open("/dev/null");
  PerfRecordSample::verifyKeys();
  TimechartManager::Instance()->writeData(writer);
  return 0;
}
