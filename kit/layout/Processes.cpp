#include "layout/Processes.h"

namespace zelkit {

namespace {

/// Limit against recordings made to grow tables beyond their own size; real ones stay far below it.
constexpr std::uint64_t kMostCopies = 2'000'000;

}  // namespace

Process& Processes::enter(std::uint32_t pid) {
  const auto [entry, fresh] = _processes.try_emplace(pid);
  if (fresh) entry->second.pid = pid;
  // References into the table stay valid when it grows.
  return entry->second;
}

Thread& Processes::threadOf(Process& process, std::uint32_t tid) {
  const auto [entry, fresh] = process.threads.try_emplace(tid);
  if (fresh) entry->second.name = ":" + std::to_string(tid);
  return entry->second;
}

Thread& Processes::name(std::uint32_t pid, std::uint32_t tid, std::string_view name, bool exec) {
  Process& process = of(pid);
  if (exec) {
    process.space = std::make_shared<AddressSpace>();
    process.mappingsChanged();
  }
  Thread& thread = process.threads[tid];
  thread.name = name;
  return thread;
}

void Processes::fork(std::uint32_t pid, std::uint32_t parentPid, std::uint32_t tid, std::uint32_t parentTid,
                     bool inheritsMappings) {
  Process& parent = of(parentPid);
  const auto parentThread = parent.threads.find(parentTid);
  const std::string name = parentThread != parent.threads.end() ? parentThread->second.name : "";
  const std::shared_ptr<AddressSpace> space = parent.space;
  Process& process = of(pid);
  if (!name.empty()) process.threads[tid].name = name;
  if (pid == parentPid) return;
  process.space = inheritsMappings ? space : std::make_shared<AddressSpace>();
  process.mappingsChanged();
}

void Processes::map(Process& process, const AddressSpace::Mapping& mapping, bool executable) {
  AddressSpace& space = ownSpace(process);
  if (executable) {
    space.insert(mapping);
  } else {
    space.cut(mapping.start, mapping.end);
  }
  process.mappingsChanged();
}

AddressSpace& Processes::ownSpace(Process& process) {
  if (process.space.use_count() > 1) {
    _copied += process.space->size();
    if (_copied < kMostCopies) {
      process.space = std::make_shared<AddressSpace>(*process.space);
    } else {
      process.space = std::make_shared<AddressSpace>();
      ++_account.cutLineages;
    }
  }
  return *process.space;
}

}  // namespace zelkit
