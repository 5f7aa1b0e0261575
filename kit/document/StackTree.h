/// Samples with equal stacks, counted together.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zelkit {

/// A prefix tree of stacks, outermost frame first. Node 0 is the root; nodes are numbered in order of
/// creation, so a parent's number is lower than its children's. A node takes 24 bytes.
class StackTree {
 public:
  using Node = std::uint32_t;
  static constexpr Node kRoot = 0;

  StackTree();

  /// Returns the node's child with that label, and creates it if needed.
  Node child(Node parent, std::uint64_t label);
  /// Returns the node of a whole stack below `root`, and creates it if needed. The innermost label comes
  /// first, as in a back-trace. Most stacks are repetitions and found in a cache of whole stacks.
  Node path(Node root, std::span<const std::uint32_t> labels);
  void count(Node node) { ++_nodes[node].self; }

  std::uint32_t size() const { return static_cast<std::uint32_t>(_nodes.size()); }
  Node parent(Node node) const { return _nodes[node].parent; }
  std::uint64_t label(Node node) const { return _nodes[node].label; }
  /// Returns the number of samples that end at the node.
  std::uint32_t self(Node node) const { return _nodes[node].self; }

 private:
  struct Entry {
    std::uint64_t label = 0;
    Node parent = kRoot;
    std::uint32_t self = 0;
  };

  std::size_t slotOf(Node parent, std::uint64_t label) const;
  void grow();
  bool isPath(Node node, Node root, std::span<const std::uint32_t> labels) const;

  std::vector<Entry> _nodes;
  /// Open addressing; 0 marks an empty slot, as the root is nobody's child.
  std::vector<Node> _slots;
  /// Latest results of path, by a hash of its labels; kRoot where there is none.
  std::vector<Node> _recent;
  std::uint64_t _seed;
};

}  // namespace zelkit
