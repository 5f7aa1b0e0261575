#pragma once

#include <string>

namespace zelkit {

/// Whether the file begins like a tar, or like something compressed that may hold one (gzip, zstd, xz).
bool isTar(const std::string& path);

/// Unpacks a tar into a folder that is empty. Files and folders only; their names must lead into the folder.
///
/// Throws std::runtime_error with "PATH: reason" for a tar with anything else in it, two entries of one name,
/// or a file that cannot be written; what has been unpacked by then is the caller's to remove. A tar that is
/// cut off or damaged gives what came before: the text returned then says where it broke, and is empty for a
/// whole one.
std::string unpackTar(const std::string& path, const std::string& folder);

}  // namespace zelkit
