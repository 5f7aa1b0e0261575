/// The feature sections of Android's recorder that hold files with their symbols.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recording/RecordingInfo.h"

namespace zelkit {

/// Reads the first form: size, path, kind, lowest address, symbols (address, size, name), and what the kind
/// has besides. An entry that is damaged is told and passed over.
std::vector<RecordedFile> readAndroidFiles(std::string_view section, std::vector<std::string>& damage);

/// Reads the second form, of the year 2021 and later: size and a protocol-buffer message for each file.
std::vector<RecordedFile> readAndroidFiles2(std::string_view section, std::vector<std::string>& damage);

}  // namespace zelkit
