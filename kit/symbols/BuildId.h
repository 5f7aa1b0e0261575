/// Build-ids as text: lower-case hexadecimal digits, two for each byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zelkit {

/// Returns the text of a build-id's bytes.
std::string buildIdText(const void* bytes, std::size_t size);

/// Returns whether a recorded build-id is that of a file: recordings pad short ones with zeros.
bool sameBuildId(std::string_view recorded, std::string_view own);

/// Returns the build-id in ELF notes in this machine's byte order, such as those of /sys/kernel/notes; "" if
/// there is none.
std::string buildIdInNotes(std::string_view notes);

}  // namespace zelkit
