/// The only reader of the documents that zelconv writes.
#pragma once

#include <string>

#include "document/ByteSource.h"
#include "document/DocumentVisitor.h"

namespace zelkit {

enum class DocumentKind { kNone, kProfile, kTimechart };

struct ReadOutcome {
  DocumentKind kind = DocumentKind::kNone;
  /// Empty if the document was read to its end; else where it broke and why: "NAME: byte N: reason". What
  /// came before the break has been handed to the visitor.
  std::string damage;
};

/// Reads a document of either kind in one pass and constant memory. It is JSON with a comma before the
/// closing bracket of an array; bytes of names may be anything. Throws std::runtime_error with "NAME: reason"
/// if the input cannot be read, or if it is no document at all.
ReadOutcome readDocument(ByteSource& source, DocumentVisitor& visitor);

}  // namespace zelkit
