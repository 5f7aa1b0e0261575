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

/// Base of all trace-point decoders, PRSE_<event>, and the registry that ties the kernel's event numbers to
/// them.
///
/// Decoders register by name during static initialisation; the event table of the recording then says which
/// number each name has there. Decoders hand what they learn to the TimechartManager, in both modes.
class PerfRecordSampleEvent : public PerfRecordSample {
 public:
  explicit PerfRecordSampleEvent(const PerfRecordSampleEventS& record);

  /// Called once on every new decoder. Decoders whose constructor does the work leave it at that.
  virtual int process(const PerfRecordSampleEventS& /*record*/) { return 1; }

  /// A trace-point sample has no row in the profile document.
  int _out(PerfJSONWriter& /*writer*/) override { return 0; }

  static void initVectors();
  static void registerEvent(const char* name, PerfRecordFunction function);
  /// For a layout that differs on a 64-bit kernel; with is64 set it is preferred to the general one.
  static void registerEvent64(const char* name, PerfRecordFunction function);

  /// The decoder's factory, or null.
  static PerfRecordFunction findFunction(const char* name);

  /// Reads the event table between the attributes and the data section: entries of 72 bytes, the event's
  /// number (8) and its name (64, NUL-terminated). A number that the table of factories cannot take ends the
  /// run with an uncaught std::out_of_range; so does one whose table would not fit a 32-bit target.
  static void readEvents(PerfReader& reader, const PerfRecordHeaderS& header);

  /// The decoder of a trace-point sample, or null for a sample outside the selected range or an event without
  /// one.
  static PerfRecord* factoryCreate(char* record);

  /// How many trace-point samples have been decoded.
  static unsigned long long count() { return _decoded; }

 protected:
  /// What every decoder's factory does: null for a null record, the banner as a line at verbosity above 0, a
  /// decoder.
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
