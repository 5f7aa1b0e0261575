#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "layout/OldRecords.h"
#include "recording/RecordTypes.h"

/// Writes old-layout records as lines of text.
class RecordText : public zelkit::RecordTaker {
 public:
  char* room(std::size_t size) override {
    _record.assign(size, '\xAA');
    return _record.data();
  }

  void done(std::size_t size) override {
    largest = std::max(largest, size);
    zelkit::Bytes bytes(_record);
    const std::uint32_t type = bytes.u32();
    bytes.skip(4);
    if (type == zelkit::kRecordComm) addComm(bytes);
    if (type == zelkit::kRecordMmap) addMapping(bytes);
    if (type == zelkit::kRecordSample) addSample(bytes);
  }

  [[nodiscard]] const std::string& str() const { return _text; }
  std::size_t largest = 0;

 private:
  static std::string hex(std::uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(number));
    return text;
  }
  static std::string decimal(std::uint64_t number) { return std::to_string(number); }

  void addComm(zelkit::Bytes bytes) {
    const std::uint32_t pid = bytes.u32();
    const std::uint32_t tid = bytes.u32();
    _text += "comm " + decimal(pid) + "/" + decimal(tid) + " " + std::string(bytes.text()) + "\n";
  }
  void addMapping(zelkit::Bytes bytes) {
    const std::uint32_t pid = bytes.u32();
    if (pid != bytes.u32()) _text += "BAD ";
    const std::uint64_t start = bytes.u64();
    const std::string place = hex(start) + "+" + hex(bytes.u64());
    bytes.skip(8);
    // The one of the kernel is in every layout.
    if (pid != 0xFFFFFFFF)
      _text += "mmap " + decimal(pid) + " " + place + " " + std::string(bytes.text()) + "\n";
  }
  void addSample(zelkit::Bytes bytes) {
    std::string line = hex(bytes.u64());
    line += " of " + decimal(bytes.u32());
    line += "/" + decimal(bytes.u32());
    bytes.skip(8);
    const std::uint64_t core = bytes.u64();
    if (core > 16) {
      line += " id " + decimal(core) + " cpu " + decimal(bytes.u32());
      bytes.skip(4);
      line += " raw " + decimal(bytes.u32());
    } else {
      bytes.skip(8);
      line += " cpu " + decimal(core) + ":";
      for (std::uint64_t left = bytes.u64(); left > 0; --left) line += " " + hex(bytes.u64());
    }
    _text += "sample " + line + "\n";
  }

  std::string _record;
  std::string _text;
};
