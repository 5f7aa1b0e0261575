#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "layout/Account.h"
#include "layout/AddressMover.h"
#include "layout/MappedFiles.h"
#include "layout/OldRecords.h"
#include "layout/Processes.h"
#include "recording/Events.h"
#include "recording/RecordingInfo.h"

namespace zelkit {

/// Makes the payload of a trace-point that the engine decodes: its number in the event table and the raw
/// data. Returns false for a trace-point that the engine does not know.
using PayloadMaker = std::function<bool(const Sample& sample, std::uint16_t& number, std::string& raw)>;

/// Choices for the layout of a recording.
struct LayoutChoice {
  static constexpr std::size_t kNoEvent = ~std::size_t{0};

  std::size_t event = kNoEvent;                    ///< the event whose samples become plain samples
  std::size_t depth = OldRecords::kDeepestInFile;  ///< maximum number of entries of back-traces
  PayloadMaker payloads = {};                      ///< unset: trace-points are left out
  bool countsNames = false;                        ///< whether samples without a function are counted
  std::uint64_t kernelStart = ~std::uint64_t{0};   ///< lowest address of the kernel, if known
};

/// Converts the events of a recording into a stream of old-layout records, with addresses moved to ranges in
/// which the engine resolves them correctly.
///
/// - Every file that a process maps gets its own range, starting with its symbol address 0, and the addresses
///   of samples and back-traces move with it; see Places.
/// - Records of a process and its mappings are written when a sample first needs them, including those of
///   mappings that a child inherited.
/// - Context markers are removed from back-traces, and so are their outermost entries beyond the depth.
class Layout : public EventSink {
 public:
  /// `knowledge` may be null; all references must outlive the layout.
  Layout(const RecordingInfo& info, LayoutChoice choice, FileKnowledge* knowledge, RecordTaker& taker);

  void mapping(const MappingEvent& event) override;
  void name(const NameEvent& event) override;
  void fork(const TaskEvent& event) override;
  void exit(const TaskEvent& event) override;
  void sample(const Sample& sample) override;
  void lost(std::uint64_t records, bool samplesOnly) override;
  void damaged(std::uint32_t type) override;
  void other(std::uint32_t type) override;

  [[nodiscard]] const Account& account() const { return _account; }
  [[nodiscard]] const MappedFiles& files() const { return _files; }

 private:
  void plainSample(const Sample& sample);
  void tracePoint(const Sample& sample);
  void tellKernel();
  void announce(Process& process, std::uint32_t tid);
  void tell(Process& process, std::uint32_t tid, Thread& thread, Account::Tally& tally);
  [[nodiscard]] bool isKernel(Mode mode, std::uint64_t address) const;
  std::uint64_t movedIp(Process& process, const Sample& sample);
  void countNaming(const char* reason);
  void addTrace(Process& process, const Chain& chain, Mode mode);

  const RecordingInfo& _info;
  LayoutChoice _choice;
  FileKnowledge* _knowledge;
  OldRecords _records;
  MappedFiles _files;
  Account _account;
  AddressMover _mover;
  Processes _processes;
  bool _kernelTold = false;
  std::vector<std::uint64_t> _trace;  ///< of the current sample
  std::string _raw;
};

}  // namespace zelkit
