#pragma once

#include <cstdint>

#include "recording/Recording.h"

namespace zelkit {

/// One pass over a recording: sorts the records by time and passes each to the sink as an event.
class RecordWalk {
 public:
  RecordWalk(Recording& recording, EventSink& sink, Recording::Progress progress);

  /// `ordered`: by time; otherwise in the order of the file.
  void run(bool ordered);

 private:
  void queue(const Record& record, const char* place);
  [[nodiscard]] std::uint64_t timeOf(const Record& record);
  void finishRound();
  void emitAt(const char* place);
  void use(const Record& record);
  void emit(const Record& record);
  void emitSample(const Record& record);
  void emitMapping(const Record& record);
  void emitName(const Record& record);
  void emitTask(const Record& record);
  void emitLost(const Record& record);
  [[nodiscard]] std::string_view withoutTrailer(std::string_view body) const;
  void report(std::uint64_t done);

  Recording& _recording;
  EventSink& _sink;
  Recording::Progress _progress;
  EventIds _ids;
  RecordReader _reader;
  TimeOrder _order;
  std::uint64_t _reported = 0;
  std::uint64_t _used = 0;
};

}  // namespace zelkit
