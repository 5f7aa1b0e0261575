#pragma once

/// The value of a marker for GPU work: 2 if the work ends a frame, else 1.
inline unsigned int issueValue(unsigned int endOfFrame) {
  return endOfFrame == 1 ? 2 : 1;
}
