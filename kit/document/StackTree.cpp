#include "document/StackTree.h"

#include <random>

namespace zelkit {

namespace {

constexpr std::size_t kFewestSlots = 1024;
constexpr std::size_t kRecentPaths = std::size_t{1} << 15U;

/// The finalizer of MurmurHash3: every bit of the input reaches every bit of the result.
std::uint64_t mixed(std::uint64_t value) {
  value = (value ^ (value >> 33U)) * 0xFF51AFD7ED558CCDU;
  value = (value ^ (value >> 33U)) * 0xC4CEB9FE1A85EC53U;
  return value ^ (value >> 33U);
}

std::uint64_t randomSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32U) | device();
}

}  // namespace

StackTree::StackTree() : _nodes(1), _slots(kFewestSlots), _recent(kRecentPaths), _seed(randomSeed()) {}

StackTree::Node StackTree::child(Node parent, std::uint64_t label) {
  const std::size_t slot = slotOf(parent, label);
  if (_slots[slot] != kRoot) return _slots[slot];
  const Node node = size();
  _slots[slot] = node;
  _nodes.push_back({label, parent, 0});
  if (_nodes.size() * 2 > _slots.size()) grow();
  return node;
}

StackTree::Node StackTree::path(Node root, std::span<const std::uint32_t> labels) {
  std::uint64_t hash = _seed ^ root;
  for (const std::uint32_t label : labels) hash = (hash ^ label) * 0x9E3779B97F4A7C15U;
  Node& recent = _recent[mixed(hash) & (kRecentPaths - 1)];
  if (recent != kRoot && isPath(recent, root, labels)) return recent;
  Node node = root;
  for (std::size_t i = labels.size(); i-- > 0;) node = child(node, labels[i]);
  return recent = node;
}

bool StackTree::isPath(Node node, Node root, std::span<const std::uint32_t> labels) const {
  for (const std::uint32_t label : labels) {
    if (node == kRoot || _nodes[node].label != label) return false;
    node = _nodes[node].parent;
  }
  return node == root;
}

std::size_t StackTree::slotOf(Node parent, std::uint64_t label) const {
  const std::size_t mask = _slots.size() - 1;
  // Labels come from the document: they are mixed twice with a seed, so that nobody can choose labels that
  // collide.
  std::size_t slot = mixed(mixed(label ^ _seed) + parent) & mask;
  for (; _slots[slot] != kRoot; slot = (slot + 1) & mask)
    if (const Entry& entry = _nodes[_slots[slot]]; entry.parent == parent && entry.label == label) break;
  return slot;
}

void StackTree::grow() {
  _slots.assign(_slots.size() * 2, kRoot);
  for (Node node = 1; node < size(); ++node) _slots[slotOf(_nodes[node].parent, _nodes[node].label)] = node;
}

}  // namespace zelkit
