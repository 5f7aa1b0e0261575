// Feeds a made-up text to the readers of texts: by its first byte to the JSON parsers, which must agree, to
// the reader of symbol lists, or to that of the ftrace text.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "json/JSONData.h"
#include "run/MachineFiles.h"
#include "symbols/SymbolTable.h"
#include "timechart/TimechartManager.h"

namespace {

std::string fileWith(const std::string& text) {
  static const std::string name = "/tmp/zelconv-fuzz." + std::to_string(getpid());
  std::FILE* file = std::fopen(name.c_str(), "w");
  std::fwrite(text.data(), 1, text.size(), file);
  std::fclose(file);
  return name;
}

void parseJson(const std::string& text) {
  using loomstat::JSONData;
  if (text.find('\0') != std::string::npos) return;
  JSONData fromText;
  JSONData fromStream;
  std::istringstream stream(text);
  const bool textGood = fromText.setFromJsonStlString(text);
  const bool streamGood = fromStream.setFromStream(stream);
  std::string one;
  std::string other;
  fromText.toJsonString(one, true, 4);
  fromStream.toJsonString(other, true, 4);
  if (textGood != streamGood || one != other) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  switch (data[0] % 3) {
    case 0:
      parseJson(text);
      break;
    case 1: {
      SymbolTable table;
      table.readFromFile(fileWith(text).c_str());
      for (unsigned long long address = 0; address < 64; ++address)
        table.findElement(address << (data[0] >> 2));
      break;
    }
    default:
      gMachineFiles.traceText = fileWith(text);
      TimechartManager::Instance()->inspectTraceFile();
  }
  return 0;
}
