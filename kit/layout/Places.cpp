#include "layout/Places.h"

#include <algorithm>

namespace zelkit {

namespace {

/// The size of the engine's pages for addresses without a map.
constexpr std::uint64_t kUnit = 0x10000;

/// Limit of claims by processes with the same lower 16 bits of the id; further programs are moved.
constexpr std::size_t kMostClaims = 64;

constexpr std::uint64_t unitOf(std::uint64_t address) {
  return address & ~(kUnit - 1);
}

}  // namespace

void Places::limit(std::uint64_t kernelStart) {
  if (kernelStart > kFirst) _limit = std::min(_limit, unitOf(kernelStart));
}

std::optional<std::uint64_t> Places::allocate(std::uint32_t pid, std::uint64_t size) {
  if (size > _limit - kFirst) return std::nullopt;
  Taken& taken = takenOf(pid);
  const std::uint64_t room = unitOf(size + kUnit);
  std::uint64_t start = taken.next;
  for (auto kept = taken.kept.lower_bound(start); kept != taken.kept.end() && *kept < start + room; ++kept)
    start = *kept + kUnit;
  if (start + room > _limit) return std::nullopt;
  taken.next = start + room;
  return start;
}

bool Places::claim(std::uint32_t pid, std::uint64_t start, std::uint64_t end) {
  Taken& taken = takenOf(pid);
  if (taken.claims.size() >= kMostClaims) return false;
  for (const Claim& claim : taken.claims)
    if (claim.pid != pid && start <= claim.end && claim.start <= end) return false;
  taken.claims.push_back({start, end, pid});
  return true;
}

std::uint64_t Places::keep(std::uint32_t pid, std::uint64_t address) {
  if (address < kFirst || address >= _limit) return address;
  Taken& taken = takenOf(pid);
  const std::uint64_t unit = unitOf(address);
  if (unit >= taken.next || taken.kept.contains(unit)) {
    taken.kept.insert(unit);
    return address;
  }
  auto moved = taken.moved.find(unit);
  if (moved == taken.moved.end()) {
    const std::optional<std::uint64_t> fresh = allocate(pid, kUnit - 1);
    if (!fresh) return address;
    moved = taken.moved.emplace(unit, *fresh).first;
  }
  return moved->second + (address - unit);
}

}  // namespace zelkit
