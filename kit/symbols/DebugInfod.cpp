#include "symbols/DebugInfod.h"

#include <dlfcn.h>
#include <elfutils/debuginfod.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

namespace zelkit {

namespace {

/// The functions used of the library. Linking it would load an HTTP client in every run.
struct Library {
  Library() {
    const char* servers = std::getenv("DEBUGINFOD_URLS");
    if (servers == nullptr || *servers == '\0') return;
    void* library = dlopen("libdebuginfod.so.1", RTLD_LAZY);
    if (library == nullptr) return;
    load(library, "debuginfod_begin", begin);
    load(library, "debuginfod_end", end);
    load(library, "debuginfod_find_debuginfo", findDebugInformation);
    load(library, "debuginfod_find_executable", findExecutable);
  }

  template <typename Function>
  static void load(void* library, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(dlsym(library, name));
  }

  [[nodiscard]] bool complete() const {
    return begin != nullptr && end != nullptr && findDebugInformation != nullptr && findExecutable != nullptr;
  }

  decltype(debuginfod_begin)* begin = nullptr;
  decltype(debuginfod_end)* end = nullptr;
  decltype(debuginfod_find_debuginfo)* findDebugInformation = nullptr;
  decltype(debuginfod_find_executable)* findExecutable = nullptr;
};

}  // namespace

std::string DebugInfod::find(const std::string& buildId, Kind kind) {
  static const Library library;
  if (buildId.empty() || !library.complete()) return {};
  const std::unique_ptr<debuginfod_client, decltype(library.end)> client(library.begin(), library.end);
  if (client == nullptr) return {};
  char* path = nullptr;
  auto* request = kind == Kind::kExecutable ? library.findExecutable : library.findDebugInformation;
  // A length of 0 means that the build-id is passed as text.
  const int file = request(client.get(), reinterpret_cast<const unsigned char*>(buildId.c_str()), 0, &path);
  if (file < 0) return {};
  ::close(file);
  const std::unique_ptr<char, decltype(&std::free)> owned(path, std::free);
  return path;
}

}  // namespace zelkit
