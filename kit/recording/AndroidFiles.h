/// The feature sections of Android's recorder with files and their symbols.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recording/RecordingInfo.h"

namespace zelkit {

/// Reads the first form: size, path, kind, lowest address, symbols (address, size, name), and further fields
/// that depend on the kind. Damaged entries are skipped and added to `damage`.
std::vector<RecordedFile> readAndroidFiles(std::string_view section, std::vector<std::string>& damage);

/// Reads the second form, since 2021: size and a protocol-buffer message for each file.
std::vector<RecordedFile> readAndroidFiles2(std::string_view section, std::vector<std::string>& damage);

}  // namespace zelkit
