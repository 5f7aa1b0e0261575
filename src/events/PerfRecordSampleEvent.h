#pragma once

#include <vector>

#include "events/EventTable.h"
#include "events/PerfRecordSampleEventS.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordHeader.h"
#include "records/PerfRecordSample.h"

class PerfReader;

/// One entry of a name table; the name is a literal.
struct PerfNameToFunctionS {
  const char* name;
  PerfRecordFunction function;
};

/// Base of all trace-point decoders, PRSE_<event>, and the registry that maps the kernel's event numbers to
/// them.
///
/// Decoders register by name during static initialisation; the event table of the recording then gives the
/// number of each name. Decoders report to the TimechartManager, in both modes.
class PerfRecordSampleEvent : public PerfRecordSample {
 public:
  explicit PerfRecordSampleEvent(const PerfRecordSampleEventS& record)
      : PerfRecordSample(record.ip(), record.time(), 0, record.pid(), record.tid(), 0, 0, record.sample()) {
    initVectors();
  }

  /// Called once on every new decoder. Returns nonzero. Decoders do their work either in the constructor or
  /// here, where a derived decoder can read another layout.
  virtual int process(const PerfRecordSampleEventS& /*record*/) { return 1; }

  /// A trace-point sample has no row in the profile document.
  int _out(PerfJSONWriter& /*writer*/) override { return 0; }

  /// Creates the tables of registered decoders, once.
  static void initVectors();
  /// Registers the decoder of an event, named as in the event table: "system:event".
  static void registerEvent(const char* name, PerfRecordFunction function);
  /// Registers a decoder for the layout of a 64-bit kernel; if is64 is set it is preferred to the general
  /// one.
  static void registerEvent64(const char* name, PerfRecordFunction function);

  /// Returns the factory registered for a name, or null.
  static PerfRecordFunction findFunction(const char* name);

  /// Reads the event table between the attributes and the data section: entries of 72 bytes, the event's
  /// number (8) and its name (64, NUL-terminated). A number that EventTable::store refuses ends the run with
  /// an uncaught std::out_of_range.
  static void readEvents(PerfReader& reader, const PerfRecordHeaderS& header);

  /// Returns the decoder of a trace-point sample, or null for a sample outside the selected range and for an
  /// event without a decoder.
  static PerfRecord* factoryCreate(char* record);

  /// Returns how many trace-point samples were decoded.
  static unsigned long long count() { return _decoded; }

 protected:
  /// Implements the factory of every decoder: returns null for a null record; otherwise prints the banner in
  /// a verbose run and returns a new decoder.
  template <typename Decoder>
  static PerfRecord* create(char* record, const char* banner = nullptr) {
    if (record == nullptr) return nullptr;
    if (banner != nullptr) showBanner(banner);
    return new Decoder(PerfRecordSampleEventS(record));
  }

 private:
  static void showBanner(const char* banner);

  // Pointers, so that the tables exist whichever static constructor runs first.
  static std::vector<PerfNameToFunctionS>* _nameAndFunction;
  static std::vector<PerfNameToFunctionS>* _nameAndFunction64;
  static EventTable* _functions;
  static unsigned long long _decoded;
};

/// Registers a decoder: every decoder's source holds one, named f.
class PerfRecordSampleFactoryRegister {
 public:
  PerfRecordSampleFactoryRegister(const char* name, PerfRecordFunction function);
};

class PerfRecordSampleFactoryRegister64 {
 public:
  PerfRecordSampleFactoryRegister64(const char* name, PerfRecordFunction function);
};
