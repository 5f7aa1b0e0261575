// The shared library of the example recording. Only its symbols matter; it is never called.

namespace meadow {

int count_bees(int flowers) {
  return flowers * 7 + 3;
}

int mow(int width, int height) {
  int steps = 0;
  for (int row = 0; row < height; ++row) steps += count_bees(width + row);
  return steps;
}

double measure_shade(double height) {
  return height * 0.75 + 1.0;
}

// Not sampled: the last symbol of a file has no size in the document, so its samples count for the library.
int close_gate(int gate) {
  return gate + 1;
}

}  // namespace meadow
