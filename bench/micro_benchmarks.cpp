// Benchmarks of the parts of a conversion: number formatting, look-ups, the record walk and the writer.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "json/FixedDecimals.h"
#include "json/PerfJSONWriter.h"
#include "records/PerfFactory.h"
#include "records/PerfRecordMMap.h"
#include "records/PerfRecordSample.h"
#include "support/MemoryReader.h"
#include "support/RecordingBuilder.h"
#include "symbols/SymbolTable.h"

namespace {

std::vector<double> times() {
  std::mt19937_64 numbers(1);
  std::vector<double> all(4096);
  for (double& time : all) time = static_cast<double>(numbers() % 100000000000000) / 1e9;
  return all;
}

template <typename Format>
void formatTimes(benchmark::State& state, Format format) {
  const std::vector<double> all = times();
  char text[kFixedRoom];
  for ([[maybe_unused]] auto _ : state)
    for (const double time : all) benchmark::DoNotOptimize(format(text, time));
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(all.size()));
}

void decimalsByPrintf(benchmark::State& state) {
  formatTimes(state, [](char* text, double time) {
    return std::snprintf(text, kFixedRoom, "%.*f", kDocumentDecimals, time);
  });
}
BENCHMARK(decimalsByPrintf);

void decimalsByToChars(benchmark::State& state) {
  formatTimes(state, [](char* text, double time) {
    return std::to_chars(text, text + kFixedRoom, time, std::chars_format::fixed, kDocumentDecimals).ptr;
  });
}
BENCHMARK(decimalsByToChars);

void decimalsByWriteFixed(benchmark::State& state) {
  formatTimes(state, [](char* text, double time) { return writeFixed<kDocumentDecimals>(text, time); });
}
BENCHMARK(decimalsByWriteFixed);

void symbolLookUp(benchmark::State& state) {
  SymbolTable table;
  constexpr unsigned int count = 20000;
  for (unsigned int i = 0; i < count; ++i) table.addElement(i * 64, 64, "function", nullptr, 0);
  std::mt19937 numbers(1);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(table.findElement(numbers() % (count * 64)));
}
BENCHMARK(symbolLookUp);

void mapLookUp(benchmark::State& state) {
  constexpr unsigned int processes = 60;
  static const bool made = [] {
    SymbolTable::createSyntheticTable();
    for (unsigned int pid = 1; pid <= processes; ++pid)
      for (unsigned int map = 0; map < 5; ++map)
        new PerfRecordMMap(pid, pid, 0x40000000 + map * 0x100000, 0xF0000, 0, "");
    return true;
  }();
  benchmark::DoNotOptimize(made);
  std::mt19937 numbers(1);
  for ([[maybe_unused]] auto _ : state) {
    const auto pid = static_cast<unsigned int>(numbers() % processes + 1);
    benchmark::DoNotOptimize(PerfRecordMMap::findMap(0x40000000 + numbers() % 0x500000, pid, pid));
  }
}
BENCHMARK(mapLookUp);

/// Samples of one process that have the same back-trace: what is left of a record is the walk and the sample.
void recordWalk(benchmark::State& state) {
  RecordingBuilder recording;
  for (unsigned int i = 0; i < 10000; ++i)
    recording.sample(
        {.ip = 0x10104, .pid = 7, .tid = 7, .time = i, .trace = std::vector<std::uint64_t>(8, 0x10104)});
  PerfRecordSample::_keepsSamples = false;
  for ([[maybe_unused]] auto _ : state) {
    MemoryReader reader(recording.data());
    while (reader.status()) delete PerfFactory::readNext(reader);
  }
  state.SetItemsProcessed(state.iterations() * 10000);
}
BENCHMARK(recordWalk);

void writtenRows(benchmark::State& state) {
  constexpr unsigned int rows = 10000;
  for ([[maybe_unused]] auto _ : state) {
    PerfJSONWriter writer(false, false);
    writer.open("/dev/null");
    writer.writeArrayStart(nullptr);
    for (unsigned int row = 0; row < rows; ++row) {
      writer.writeArrayStart(nullptr);
      for (unsigned int column = 0; column < 6; ++column) writer.writeNamed("column", row * column);
      writer.writeNamed("time", row * 1e-3);
      writer.writeArrayEnd();
    }
    writer.writeArrayEnd();
    writer.close();
  }
  state.SetItemsProcessed(state.iterations() * rows);
}
BENCHMARK(writtenRows);

}  // namespace

BENCHMARK_MAIN();
