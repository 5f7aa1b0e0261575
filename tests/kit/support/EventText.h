#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "recording/Recording.h"

/// Writes the events of a recording as lines of text.
class EventText : public zelkit::EventSink {
 public:
  void mapping(const zelkit::MappingEvent& event) override {
    add("map " + std::to_string(event.pid) + " " + hex(event.start) + "+" + hex(event.length) + "@" +
        hex(event.pageOffset) + " " + std::string(event.name) + (event.executable ? "" : " data"));
  }
  void name(const zelkit::NameEvent& event) override {
    add("name " + std::to_string(event.pid) + "/" + std::to_string(event.tid) + " " +
        std::string(event.name) + (event.exec ? " exec" : ""));
  }
  void fork(const zelkit::TaskEvent& event) override {
    add("fork " + std::to_string(event.parentPid) + ">" + std::to_string(event.pid));
  }
  void sample(const zelkit::Sample& sample) override {
    std::string line = "sample " + std::to_string(sample.event) + " " + hex(sample.ip) + " " +
                       std::to_string(sample.time) + " cpu " + std::to_string(sample.cpu);
    for (std::size_t i = 0; i < sample.chain.size(); ++i) line += " " + hex(sample.chain[i]);
    if (!sample.raw.empty()) line += " raw " + std::string(sample.raw);
    if (sample.hasUserStack) line += " stack";
    add(line);
  }
  void lost(std::uint64_t records, bool) override { add("lost " + std::to_string(records)); }
  void damaged(std::uint32_t type) override { add("damaged " + std::to_string(type)); }
  void other(std::uint32_t type) override { add("other " + std::to_string(type)); }

  [[nodiscard]] const std::string& str() const { return _text; }

 private:
  static std::string hex(std::uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(number));
    return text;
  }
  void add(const std::string& line) { _text += line + "\n"; }

  std::string _text;
};
