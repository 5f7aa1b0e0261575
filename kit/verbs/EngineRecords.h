#pragma once

#include <functional>
#include <string>

#include "layout/OldFile.h"
#include "layout/OldRecords.h"
#include "run/profile.h"

namespace zelkit {

/// Hands records to the engine in its own process, without a file between the two and so without the bounds
/// that a file's framing sets.
class EngineRecords : public RecordTaker, public RecordSource {
 public:
  /// `walk` makes the records.
  EngineRecords(const OldFile::EventTable& events, std::function<void()> walk)
      : _events(events), _walk(std::move(walk)) {}

  char* room(std::size_t size) override;
  void done(std::size_t size) override;

  void open() override {}
  void walk() override;
  void close() override {}

 private:
  const OldFile::EventTable& _events;
  std::function<void()> _walk;
};

}  // namespace zelkit
