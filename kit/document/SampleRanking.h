/// Ranks functions, libraries, processes and so on by their samples.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "document/ProfileTables.h"

namespace zelkit {

/// Counts the samples of a profile document by group: those in the group itself, and the total with those in
/// its callees. A recursive call counts once.
class SampleRanking : public ProfileTables {
 public:
  enum class By { kFunction, kLibrary, kFile, kProcess, kThread, kCore };

  struct Group {
    std::string name;
    /// For functions the name of their library; otherwise empty.
    std::string library;
    std::uint64_t self = 0;
    std::uint64_t total = 0;
    /// Groups whose frames called those of this one, most samples first.
    std::vector<std::pair<std::string, std::uint64_t>> callers;
  };

  explicit SampleRanking(By by, bool withCallers = false) : _by(by), _withCallers(withCallers) {}

  void sample(const SampleRow& row) override;

  std::uint64_t sampleCount() const { return _samples; }
  /// Returns the seconds from the first sample to the last.
  double duration() const { return _samples == 0 ? 0.0 : _lastTime - _firstTime; }
  /// Returns whether groups consist of frames, so that totals differ from own samples.
  bool countsFrames() const { return _by <= By::kFile; }

  /// Returns at most `most` groups, sorted by own samples, total and name.
  std::vector<Group> groups(std::size_t most) const;

 private:
  using GroupId = std::uint32_t;
  static constexpr GroupId kNoGroup = ~GroupId{0};

  GroupId groupOfFrame(std::uint32_t key);
  GroupId groupOfSample(const SampleRow& row);
  GroupId groupNamed(std::string name, std::string library);
  std::string frameGroupName(std::uint32_t key) const;
  std::string sampleGroupName(const SampleRow& row) const;
  void countFrames(const SampleRow& row);

  By _by;
  bool _withCallers;
  std::uint64_t _samples = 0;
  double _firstTime = 0.0;
  double _lastTime = 0.0;
  std::vector<Group> _groups;
  std::map<std::pair<std::string, std::string>, GroupId> _byName;
  /// By the frame's key, or by the number that identifies the group of a sample.
  std::map<std::uint64_t, GroupId> _byKey;
  std::vector<GroupId> _frames;
  std::vector<std::pair<GroupId, GroupId>> _calls;
  /// Samples by group and its caller.
  std::map<std::pair<GroupId, GroupId>, std::uint64_t> _callers;
};

}  // namespace zelkit
