#pragma once

#include <string>
#include <string_view>

#include "base/PerfFoundation.h"

class PerfJSONWriter;

/// Base class of all records. Records that are kept live until the process ends.
class PerfRecord : public PerfFoundation {
 public:
  PerfRecord() : PerfRecord(0, 0) {}
  PerfRecord(unsigned int pid_, unsigned int tid_) : pid(pid_), tid(tid_) {}
  virtual ~PerfRecord() = default;
  PerfRecord(const PerfRecord&) = delete;
  PerfRecord& operator=(const PerfRecord&) = delete;

  /// Returns the name of the record's type, for diagnostics.
  virtual const char* perfRecordType() const { return "BASE"; }
  /// Returns the number by which other rows of the document refer to this record.
  virtual unsigned int getKey() const { return key; }
  virtual unsigned int getLen() const { return 0; }
  virtual unsigned long long getAddress() const { return 0; }
  virtual const char* getName() const { return "noname"; }
  virtual int _process() { return 0; }
  /// Writes this record's row, if it has one. Returns 0.
  virtual int _out(PerfJSONWriter& /*writer*/) { return 0; }

  /// Returns whether tables keep the record. If not, the caller that created it must delete it.
  virtual bool isKept() const { return true; }

  int out(PerfJSONWriter& writer) { return _out(writer); }

  /// Sets type and size as in the recording.
  void setFraming(unsigned int type, unsigned short size) {
    _type = type;
    _size = size;
  }

  unsigned int pid;
  unsigned int tid;
  unsigned int key = 0;

 protected:
  unsigned int _type = 0;
  unsigned short _size = 0;
};

/// Returns a process or file name, cut at " (deleted)", which the kernel appends to names of removed files.
std::string withoutDeletedMark(std::string_view name);
