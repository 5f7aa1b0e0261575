#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "recording/EventIds.h"
#include "recording/Events.h"
#include "recording/FileHeader.h"
#include "recording/InputFile.h"
#include "recording/RecordReader.h"
#include "recording/RecordingInfo.h"
#include "recording/TimeOrder.h"

namespace zelkit {

/// A perf.data file of any version: file or pipe mode, compressed or not, of perf or of Android's recorder.
/// The only reader of recordings; all other code receives its events.
class Recording {
 public:
  /// Opens the file and reads its header and descriptions. Throws std::runtime_error with "FILE: reason" if
  /// it is not a recording. Of a damaged file the part before the damage is read.
  explicit Recording(const std::string& path);
  /// The same for bytes in memory; the path is for messages.
  Recording(std::string path, std::string bytes);

  [[nodiscard]] const std::string& path() const { return _file.path(); }
  /// Returns what messages call the recording: its path, unless callIt() was called.
  [[nodiscard]] const std::string& name() const { return _name.empty() ? path() : _name; }
  void callIt(std::string name) { _name = std::move(name); }
  /// Returns the size of the file in bytes.
  [[nodiscard]] std::uint64_t size() const { return _file.bytes().size(); }
  [[nodiscard]] const RecordingInfo& info() const { return _info; }
  [[nodiscard]] const std::vector<EventDescription>& events() const { return _info.events; }
  [[nodiscard]] bool pipeMode() const { return _header.pipe; }
  /// Returns messages about the damage found so far.
  [[nodiscard]] const std::vector<std::string>& damage() const { return _info.damage; }

  /// Called from time to time with the numbers of bytes done and of all bytes.
  using Progress = std::function<void(std::uint64_t done, std::uint64_t all)>;

  /// Passes all events to the sink, in order of time. Records without a time keep their position in the file.
  void walk(EventSink& sink, const Progress& progress = {});
  /// The same in the order of the file, which is faster.
  void walkUnordered(EventSink& sink);

 private:
  void describe();
  void readAttributes();
  void readFeatures();
  void readOwnRecords();
  void takeOwnRecord(const Record& record, std::string_view whole, std::string_view tracingData);
  void takeAttribute(std::string_view body);
  void takeEventIds(std::string_view body);
  void takeCallChain(std::string_view body);
  [[nodiscard]] std::string_view data() const { return _header.data.of(_file.bytes()); }
  void note(const std::string& damage);

  InputFile _file;
  std::string _name;
  FileHeader _header;
  RecordingInfo _info;
  std::string _split;  ///< the parts so far of a record split by Android's recorder
  /// Call chains that were unwound later, by time and thread of their sample.
  std::map<std::pair<std::uint64_t, std::uint32_t>, Chain> _laterChains;
  friend class RecordWalk;
};

}  // namespace zelkit
