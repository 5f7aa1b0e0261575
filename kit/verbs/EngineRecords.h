#pragma once

#include <functional>
#include <string>

#include "layout/OldFile.h"
#include "layout/OldRecords.h"
#include "run/profile.h"

namespace zelkit {

/// Passes records to the engine in the same process, without a file in between and so without the size limit
/// of a file's records.
class EngineRecords : public RecordTaker, public RecordSource {
 public:
  /// `walk` writes the records.
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
