#include "layout/Layout.h"

#include <algorithm>

#include "recording/RecordTypes.h"

namespace zelkit {

namespace {

/// The lowest context marker (PERF_CONTEXT_*): entries of a back-trace from here up are not addresses but say
/// what the following ones belong to.
constexpr std::uint64_t kFirstMarker = ~std::uint64_t{0} - 4094;
constexpr std::uint64_t kKernelMarker = ~std::uint64_t{0} - 127;
constexpr std::uint64_t kUserMarker = ~std::uint64_t{0} - 511;
constexpr std::uint64_t kDeferredMarker = ~std::uint64_t{0} - 639;

/// Below the kernel addresses of every 64-bit machine, and far above user space.
constexpr std::uint64_t kWideKernel = 0xFF00000000000000;

Mode modeAfter(std::uint64_t marker) {
  if (marker == kUserMarker) return Mode::user;
  return marker == kKernelMarker ? Mode::kernel : Mode::hypervisor;
}

}  // namespace

Layout::Layout(const RecordingInfo& info, LayoutChoice choice, FileKnowledge* knowledge, RecordTaker& taker)
    : _info(info),
      _choice(std::move(choice)),
      _knowledge(knowledge),
      _records(taker),
      _files(info.architecture, info.buildIds, knowledge),
      _mover(_files, _records, _account),
      _processes(_account) {
  _mover.limit(_choice.kernelStart);
}

void Layout::mapping(const MappingEvent& event) {
  if (event.kernel) {
    if (event.start >= Places::kFirst) _choice.kernelStart = std::min(_choice.kernelStart, event.start);
    _mover.limit(_choice.kernelStart);
    count(_account.dropped, "mapping: of the kernel, which has its own table");
    return;
  }
  Process& process = _processes.of(event.pid);
  AddressSpace::Mapping mapping{event.start, event.start + event.length};
  if (mapping.end <= mapping.start) return count(_account.dropped, "mapping: of no length");
  // Android's recorder reports interpreted code, which is in data mappings.
  const bool holdsCode = event.executable || (_info.android() && event.name.starts_with('/'));
  if (holdsCode) mapping.entered = _files.enter(event);
  mapping.offset = event.pageOffset;
  _processes.map(process, mapping, holdsCode);
  count(_account.dropped,
        holdsCode ? "mapping: replaced by one made where a sample needs it" : "mapping: of data");
}

void Layout::name(const NameEvent& event) {
  Thread& thread = _processes.name(event.pid, event.tid, event.name, event.exec);
  tell(_processes.of(event.pid), event.tid, thread, _account.kept);
}

void Layout::fork(const TaskEvent& event) {
  _processes.fork(event.pid, event.parentPid, event.tid, event.parentTid, event.inheritsMappings);
  count(_account.dropped, "fork: its child's records are made when a sample needs them");
}

void Layout::exit(const TaskEvent&) {
  count(_account.dropped, "exit: not shown in documents");
}

void Layout::lost(std::uint64_t records, bool samplesOnly) {
  (samplesOnly ? _account.samplesLostByKernel : _account.recordsLostByKernel) += records;
  count(_account.dropped, "lost: counted in this account");
}

void Layout::damaged(std::uint32_t type) {
  if (type == kRecordSample) {
    ++_account.samplesIn;
    count(_account.samplesLost, "damaged, or of an unknown event");
  } else {
    count(_account.dropped, "type " + std::to_string(type) + ": damaged");
  }
}

void Layout::other(std::uint32_t type) {
  count(_account.dropped, "type " + std::to_string(type) + ": not shown in documents");
}

void Layout::sample(const Sample& sample) {
  ++_account.samplesIn;
  if (sample.event == _choice.event) return plainSample(sample);
  const EventDescription& event = _info.events[sample.event];
  if (event.isTracePoint()) return tracePoint(sample);
  count(_account.samplesLost, "of another event: " + event.label());
}

void Layout::tracePoint(const Sample& sample) {
  std::uint16_t number = 0;
  if (!_choice.payloads)
    return count(_account.samplesLost, "of a trace-point, which has a document of its own");
  if (!_choice.payloads(sample, number, _raw))
    return count(_account.samplesLost,
                 "of a trace-point that no chart shows: " + _info.events[sample.event].label());
  announce(_processes.of(sample.pid), sample.tid);
  // Addresses of trace-points are not shown.
  _records.tracePoint({sample.ip, sample.pid, sample.tid, sample.time, sample.cpu, sample.period}, number,
                      _raw);
  if (sample.cpu > OldRecords::kHighestChartedCore) ++_account.highTracePoints;
  ++_account.tracePointsOut;
}

/// The engine creates its map of the kernel with the first mapping that it reads.
void Layout::tellKernel() {
  if (_kernelTold) return;
  _kernelTold = true;
  _records.mapping(MappingEvent::kKernelPid, std::max(_choice.kernelStart, Places::kLimit), 0,
                   RecordingInfo::kKernel);
  count(_account.made, "mmap");
}

void Layout::plainSample(const Sample& sample) {
  tellKernel();
  Process& process = _processes.of(sample.pid);
  announce(process, sample.tid);
  if (sample.hasUserStack && sample.laterChain.size() == 0) ++_account.userStacks;
  const std::uint64_t ip = movedIp(process, sample);
  _trace.clear();
  addTrace(process, sample.chain, sample.mode);
  addTrace(process, sample.laterChain, Mode::user);
  if (_trace.size() > _choice.depth) {
    ++_account.cutTraces;
    _account.cutEntries += _trace.size() - _choice.depth;
    _trace.resize(_choice.depth);
  }
  if (sample.cpu > OldRecords::kHighestCore) ++_account.highCores;
  const std::uint32_t core = std::min(sample.cpu, OldRecords::kHighestCore);
  _records.sample({ip, sample.pid, sample.tid, sample.time, core, sample.period}, _trace);
  ++_account.plainSamplesOut;
}

/// Writes the records that name a sample's process and thread, if not written before.
void Layout::announce(Process& process, std::uint32_t tid) {
  // The engine has these two itself: the idle task and the one for ended processes.
  if (process.pid == 0 || process.pid == MappingEvent::kKernelPid) return;
  Thread& leader = _processes.threadOf(process, process.pid);
  if (leader.told.empty()) tell(process, process.pid, leader, _account.made);
  if (tid == process.pid) return;
  Thread& thread = _processes.threadOf(process, tid);
  if (thread.told != thread.name) tell(process, tid, thread, _account.made);
}

void Layout::tell(Process& process, std::uint32_t tid, Thread& thread, Account::Tally& tally) {
  thread.told = thread.name;
  const std::string name = shortenedFromLeft(thread.name, OldRecords::kLongestThreadName);
  if (name.size() != thread.name.size()) count(_account.shortened, "name of a thread");
  _records.comm(process.pid, tid, name);
  count(tally, "comm");
}

bool Layout::isKernel(Mode mode, std::uint64_t address) const {
  if (mode == Mode::user) return false;
  return mode != Mode::unknown || address >= _choice.kernelStart || address >= kWideKernel;
}

std::uint64_t Layout::movedIp(Process& process, const Sample& sample) {
  if (isKernel(sample.mode, sample.ip)) {
    if (_choice.countsNames) countNaming(_knowledge->whyKernelUnnamed(sample.ip));
    return sample.ip;
  }
  const Process::Shift* shift = _mover.shiftOf(process, sample.ip);
  if (shift == nullptr) {
    if (_choice.countsNames) countNaming("the address is in no mapping of the process");
    return _mover.keep(process, sample.ip);
  }
  MappedFile& file = _files[shift->file];
  ++file.samples;
  if (_choice.countsNames) {
    const char* reason = _knowledge->whyUnnamed(file, sample.ip + shift->toSymbol);
    countNaming(reason);
    if (reason != nullptr) ++file.unnamed;
  }
  return sample.ip + shift->shift;
}

void Layout::countNaming(const char* reason) {
  if (reason != nullptr) count(_account.unnamed, reason);
}

void Layout::addTrace(Process& process, const Chain& chain, Mode mode) {
  for (std::size_t i = 0; i < chain.size(); ++i) {
    const std::uint64_t entry = chain[i];
    if (entry < kFirstMarker) {
      _trace.push_back(isKernel(mode, entry) ? entry : _mover.moved(process, entry));
      continue;
    }
    mode = modeAfter(entry);
    // Followed by a number that identifies the user part of the back-trace.
    if (entry == kDeferredMarker) ++i;
  }
}

}  // namespace zelkit
