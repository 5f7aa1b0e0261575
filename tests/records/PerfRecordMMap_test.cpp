#include "records/PerfRecordMMap.h"

#include <gtest/gtest.h>

#include "records/PerfRecordComm.h"
#include "run/Settings.h"
#include "symbols/FileNames.h"
#include "symbols/SymbolTable.h"

namespace {

constexpr unsigned long long kKernelStart = 0xC0000000;

/// One process with a map that has two symbols, and a kernel.
class PerfRecordMMapTest : public testing::Test {
 protected:
  PerfRecordMMapTest() {
    FileNames::createEmptyRef();
    SymbolTable::createSyntheticTable();
    gKernelStart = kKernelStart;
    SymbolTable::_kernelSymTable = new SymbolTable;
    for (const unsigned long long address : {0xB0000010ULL, 0xB0000020ULL, 0xC0000010ULL})
      SymbolTable::_kernelSymTable->addElement(address, 8, "kernel", nullptr, 0);
    auto* table = new SymbolTable("/app/tool", 0, 0);
    table->addElement(0x10000, 16, "main", nullptr, 0);
    _symbol = table->addElement(0x10010, 16, "work", nullptr, 0);
    new PerfRecordComm(7, 7, "tool");
    _map = new PerfRecordMMap(7, 7, 0x10000, 0x1000, 0, "/app/tool");
  }

  static unsigned int resolve(unsigned long long address, unsigned int pid = 7) {
    ResolutionBasis basis = PerfRecordMMap::basisNow(AddressClass::mapped);
    return PerfRecordMMap::_callers[PerfRecordMMap::resolveCaller({address, pid, pid}, basis)].key();
  }

  SymbolTableElement* _symbol;
  PerfRecordMMap* _map;
};

TEST_F(PerfRecordMMapTest, CountsEveryUseWhetherCachedOrNot) {
  const auto kernelUses = [](std::size_t index) {
    return SymbolTable::_kernelSymTable->elements()[index].useCount();
  };
  for (unsigned int uses = 1; uses < 4; ++uses) {
    const unsigned int key = resolve(0x10014);
    EXPECT_EQ(key, _symbol->key());
    EXPECT_EQ(_symbol->useCount(), uses);
  }
  for (unsigned int samples = 1; samples < 4; ++samples) {
    // A sample's own address counts when its map is found and when its key is taken.
    EXPECT_EQ(PerfRecordMMap::resolveSample({0x10014, 7, 7}), _symbol->key());
    EXPECT_EQ(_symbol->useCount(), 3 + 2 * samples);
    // A stack address counts for the kernel's symbol there, and leads to the stack's map.
    EXPECT_EQ(PerfRecordMMap::resolveSample({0xB0000020, 7, 7}), PerfRecordMMap::_stackMap->getKey());
    EXPECT_EQ(kernelUses(1), samples);
    PerfRecordMMap::resolveSample({0xC0000010, 7, 7});
    EXPECT_EQ(kernelUses(2), 2 * samples);
    // An address without a map: the page's symbol, once.
    EXPECT_EQ(PerfRecordMMap::resolveSample({0x80001234, 7, 7}), _map->getKey());
    EXPECT_EQ(SymbolTable::findSyntheticEntry(0x80000000)->useCount(), samples);
  }
  EXPECT_EQ(_symbol->mapKeys(), std::vector<unsigned int>{_map->getKey()});
}

TEST_F(PerfRecordMMapTest, NeverUsesAResolutionFromBeforeANewMap) {
  EXPECT_EQ(resolve(0x90000004), _map->getKey());
  EXPECT_EQ(resolve(0x90000004), _map->getKey());
  const PerfRecordMMap* further = new PerfRecordMMap(7, 7, 0x90000000, 0x1000, 0, "/app/further");
  EXPECT_EQ(resolve(0x90000004), further->getKey());
}

}  // namespace
