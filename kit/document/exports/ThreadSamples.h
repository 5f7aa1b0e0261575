/// The samples of a profile by thread, with their stacks in one tree; the base of most formats.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "document/ProfileTables.h"
#include "document/StackTree.h"

namespace zelkit {

class ThreadSamples : public ProfileTables {
 public:
  /// A thread and its samples in order of time: time in seconds and the node of the stack.
  struct Thread {
    std::uint32_t pidKey = 0;
    std::uint32_t tid = 0;
    std::deque<double> times;
    std::deque<StackTree::Node> nodes;
  };

  void description(std::string_view name, std::string_view value) override;
  void sample(const SampleRow& row) override;

  /// Sorts the samples of each thread by time; to be called after the document was read.
  void sort();

  /// Returns the threads in the order of their first samples in the document.
  const std::deque<Thread>& threads() const { return _threads; }
  const StackTree& tree() const { return _tree; }
  /// Returns the key of the function or library of a node.
  static std::uint32_t frameKey(const StackTree& tree, StackTree::Node node) {
    return static_cast<std::uint32_t>(tree.label(node));
  }

  /// Returns the seconds that the document gives as its duration.
  double duration() const { return _duration; }

  /// Returns "NAME TID", or only the number for a process without a name in the document.
  std::string threadTitle(const Thread& thread) const;

  void clear() { *this = {}; }

 private:
  double _duration = 0.0;
  StackTree _tree;
  std::deque<Thread> _threads;
  std::map<std::pair<std::uint32_t, std::uint32_t>, Thread*> _byId;
  Thread* _latest = nullptr;
  std::vector<std::uint32_t> _frames;
};

}  // namespace zelkit
