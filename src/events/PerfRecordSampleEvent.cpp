#include "events/PerfRecordSampleEvent.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "records/PerfReader.h"
#include "run/Settings.h"

std::vector<PerfNameToFunctionS>* PerfRecordSampleEvent::_nameAndFunction = nullptr;
std::vector<PerfNameToFunctionS>* PerfRecordSampleEvent::_nameAndFunction64 = nullptr;
EventTable* PerfRecordSampleEvent::_functions = nullptr;
unsigned long long PerfRecordSampleEvent::_decoded = 0;

namespace {

/// An entry of the event table; the byte after the name terminates a name without a NUL.
struct EventTableEntry {
  static constexpr int kSize = 72;
  char bytes[kSize + 1] = {};

  unsigned long long eventId() const {
    unsigned long long id = 0;
    std::memcpy(&id, bytes, sizeof id);
    return id;
  }
  const char* name() const { return bytes + 8; }
};

constexpr std::uint32_t kMostRepetitions = 100000;

/// Returns a function's address as "%x" prints it on the target.
unsigned int shownAddress(PerfRecordFunction function) {
  return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(function));
}

/// Keeps the table sorted by name: static constructors run in an order that the linker chooses, and the
/// output of a verbose run must not depend on it.
void enter(std::vector<PerfNameToFunctionS>& table, const PerfNameToFunctionS& entry) {
  const auto isBefore = [](const PerfNameToFunctionS& a, const PerfNameToFunctionS& b) {
    return std::strcmp(a.name, b.name) < 0;
  };
  table.insert(std::upper_bound(table.begin(), table.end(), entry, isBefore), entry);
}

PerfRecordFunction findIn(const std::vector<PerfNameToFunctionS>& table, const char* tableName,
                          const char* name) {
  for (const PerfNameToFunctionS& entry : table) {
    if (verbose()) std::printf("%s cmp %s:%s\n", tableName, name, entry.name);
    if (std::strcmp(name, entry.name) == 0) return entry.function;
  }
  return nullptr;
}

}  // namespace

void PerfRecordSampleEvent::initVectors() {
  if (_functions != nullptr) return;
  _nameAndFunction = new std::vector<PerfNameToFunctionS>;
  _nameAndFunction64 = new std::vector<PerfNameToFunctionS>;
  _functions = new EventTable;
}

void PerfRecordSampleEvent::registerEvent(const char* name, PerfRecordFunction function) {
  if (verbose()) std::printf("registerEvent %s:%x\n", name, shownAddress(function));
  enter(*_nameAndFunction, {name, function});
}

void PerfRecordSampleEvent::registerEvent64(const char* name, PerfRecordFunction function) {
  if (verbose()) std::printf("registerEvent64 %s:%x\n", name, shownAddress(function));
  enter(*_nameAndFunction64, {name, function});
}

PerfRecordFunction PerfRecordSampleEvent::findFunction(const char* name) {
  if (is64)
    if (const PerfRecordFunction found = findIn(*_nameAndFunction64, "findFunction64", name);
        found != nullptr)
      return found;
  return findIn(*_nameAndFunction, "findFunction", name);
}

void PerfRecordSampleEvent::readEvents(PerfReader& reader, const PerfRecordHeaderS& header) {
  initVectors();
  const auto start = static_cast<std::uint32_t>(header.attrsOffset + header.attrsSize);
  const std::uint32_t count =
      (static_cast<std::uint32_t>(header.dataOffset) - start) / EventTableEntry::kSize;
  reader.seek(static_cast<int>(start));
  if (verbose())
    std::printf("Seek to %x (%llx+%llx) c:%d\n", start, static_cast<unsigned long long>(header.attrsSize),
                static_cast<unsigned long long>(header.attrsOffset), static_cast<int>(count));
  EventTableEntry entry;
  std::uint32_t repetitions = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    // After the end of the file the last entry is repeated, which only a verbose run prints. The count of a
    // damaged header may be huge.
    const bool ended = reader.read(entry.bytes, EventTableEntry::kSize) <= 0;
    if (ended && (!verbose() || ++repetitions > kMostRepetitions)) return;
    if (verbose())
      std::printf("readEvent: i:%04lld n:%s\n", static_cast<long long>(entry.eventId()), entry.name());
    _functions->store(entry.eventId(), findFunction(entry.name()));
  }
}

PerfRecord* PerfRecordSampleEvent::factoryCreate(char* record) {
  const PerfRecordSampleEventS sample(record);
  if (sample.time() < gFirstTimestampToProcess || sample.time() > gLastTimestampToProcess) return nullptr;
  const std::uint16_t type = sample.commonType();
  if (_functions == nullptr || !_functions->covers(type)) return nullptr;
  const PerfRecordFunction function = _functions->find(type);
  if (verbose()) std::printf("Found event type:%d func:%x\n", static_cast<int>(type), shownAddress(function));
  if (function == nullptr) return nullptr;
  auto* event = static_cast<PerfRecordSampleEvent*>(function(record));
  event->process(sample);
  ++_decoded;
  return event;
}

void PerfRecordSampleEvent::showBanner(const char* banner) {
  if (verbose()) std::puts(banner);
}

PerfRecordSampleFactoryRegister::PerfRecordSampleFactoryRegister(const char* name,
                                                                 PerfRecordFunction function) {
  PerfRecordSampleEvent::initVectors();
  PerfRecordSampleEvent::registerEvent(name, function);
}

PerfRecordSampleFactoryRegister64::PerfRecordSampleFactoryRegister64(const char* name,
                                                                     PerfRecordFunction function) {
  PerfRecordSampleEvent::initVectors();
  PerfRecordSampleEvent::registerEvent64(name, function);
}
