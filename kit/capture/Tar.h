#pragma once

#include <string>

namespace zelkit {

/// Returns whether the file starts like a tar, or like a compressed file that may contain one (gzip, zstd,
/// xz).
bool isTar(const std::string& path);

/// Unpacks a tar into a folder that is empty. Files and folders only; their names must lead into the folder.
///
/// Throws std::runtime_error with "PATH: reason" for a tar with anything else in it, two entries of one name,
/// or a file that cannot be written; the caller must remove what was unpacked before. Of a truncated or
/// damaged tar the entries before the damage are unpacked. Returns one line about where it breaks off, or an
/// empty text for an intact tar.
std::string unpackTar(const std::string& path, const std::string& folder);

}  // namespace zelkit
