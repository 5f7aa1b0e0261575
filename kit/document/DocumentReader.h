/// The only reader of the documents that zelconv writes.
#pragma once

#include <string>

#include "document/ByteSource.h"
#include "document/DocumentVisitor.h"

namespace zelkit {

enum class DocumentKind { kNone, kProfile, kTimechart };

struct ReadOutcome {
  DocumentKind kind = DocumentKind::kNone;
  /// Empty if the document was read to its end; otherwise the place and cause of the damage: "NAME: byte N:
  /// reason". The visitor has received everything before it.
  std::string damage;
};

/// Reads a document of either kind in one pass and constant memory. The format is JSON with a comma before
/// the closing bracket of an array; names may contain any bytes. Throws std::runtime_error with "NAME:
/// reason" if the input cannot be read or is not a document.
ReadOutcome readDocument(ByteSource& source, DocumentVisitor& visitor);

}  // namespace zelkit
