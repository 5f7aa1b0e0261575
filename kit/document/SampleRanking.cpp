#include "document/SampleRanking.h"

#include <algorithm>
#include <tuple>

namespace zelkit {

namespace {

template <typename Values>
void makeUnique(Values& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

}  // namespace

void SampleRanking::sample(const SampleRow& row) {
  _firstTime = _samples == 0 ? row.time : std::min(_firstTime, row.time);
  _lastTime = _samples == 0 ? row.time : std::max(_lastTime, row.time);
  ++_samples;
  if (countsFrames()) return countFrames(row);
  Group& group = _groups[groupOfSample(row)];
  ++group.self;
  ++group.total;
}

void SampleRanking::countFrames(const SampleRow& row) {
  _frames.clear();
  forEachFrame(row, [&](std::uint32_t key) { _frames.push_back(groupOfFrame(key)); });
  ++_groups[_frames.front()].self;
  if (_withCallers) {
    _calls.clear();
    for (std::size_t i = 1; i < _frames.size(); ++i) _calls.emplace_back(_frames[i - 1], _frames[i]);
    makeUnique(_calls);
    for (const auto& call : _calls) ++_callers[call];
  }
  makeUnique(_frames);
  for (const GroupId group : _frames) ++_groups[group].total;
}

SampleRanking::GroupId SampleRanking::groupOfFrame(std::uint32_t key) {
  const auto [place, isNew] = _byKey.try_emplace(key, kNoGroup);
  if (isNew) {
    const bool isFunction = _by == By::kFunction && findFunction(key) != nullptr;
    const Library* library = isFunction ? libraryOf(key) : nullptr;
    place->second = groupNamed(frameGroupName(key), library == nullptr ? "" : library->name);
  }
  return place->second;
}

SampleRanking::GroupId SampleRanking::groupOfSample(const SampleRow& row) {
  const std::uint64_t number = _by == By::kCore      ? row.cpu
                               : _by == By::kProcess ? row.pidKey
                                                     : std::uint64_t{row.pidKey} << 32U | row.tid;
  const auto [place, isNew] = _byKey.try_emplace(number, kNoGroup);
  if (isNew) place->second = groupNamed(sampleGroupName(row), "");
  return place->second;
}

SampleRanking::GroupId SampleRanking::groupNamed(std::string name, std::string library) {
  const auto [place, isNew] =
      _byName.try_emplace({std::move(name), std::move(library)}, static_cast<GroupId>(_groups.size()));
  if (isNew) _groups.push_back({place->first.first, place->first.second, 0, 0, {}});
  return place->second;
}

std::string SampleRanking::frameGroupName(std::uint32_t key) const {
  if (_by == By::kFunction) return frameName(key);
  const Function* function = findFunction(key);
  if (_by == By::kFile) return function == nullptr || function->file.empty() ? "[no file]" : function->file;
  const Library* library = libraryOf(key);
  return library == nullptr ? "[unknown]" : library->name;
}

std::string SampleRanking::sampleGroupName(const SampleRow& row) const {
  if (_by == By::kCore) return "core " + std::to_string(row.cpu);
  const Process* process = findProcess(row.pidKey);
  if (process == nullptr) return "[unknown]";
  if (_by == By::kThread) return process->name + " " + std::to_string(row.tid);
  return processName(row.pidKey) + " " + std::to_string(process->pid);
}

std::vector<SampleRanking::Group> SampleRanking::groups(std::size_t most) const {
  std::vector<GroupId> order(_groups.size());
  for (GroupId id = 0; id < order.size(); ++id) order[id] = id;
  std::sort(order.begin(), order.end(), [this](GroupId left, GroupId right) {
    const Group& a = _groups[left];
    const Group& b = _groups[right];
    return std::tie(b.self, b.total, a.name, a.library) < std::tie(a.self, a.total, b.name, b.library);
  });
  order.resize(std::min(order.size(), most));
  std::vector<Group> ranked;
  for (const GroupId id : order) {
    Group& group = ranked.emplace_back(_groups[id]);
    for (auto call = _callers.lower_bound({id, 0}); call != _callers.end() && call->first.first == id; ++call)
      group.callers.emplace_back(_groups[call->first.second].name, call->second);
    std::stable_sort(group.callers.begin(), group.callers.end(),
                     [](const auto& left, const auto& right) { return left.second > right.second; });
  }
  return ranked;
}

}  // namespace zelkit
