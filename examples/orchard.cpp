// The executable of the example recording. Only its symbols matter; it is never run.

extern "C" {
int pick_apple(int tree) {
  return tree * 3 + 1;
}
int pick_pear(int tree) {
  return tree * 5 + 2;
}
int walk_rows(int trees) {
  int fruits = 0;
  for (int tree = 0; tree < trees; ++tree) fruits += tree % 2 == 0 ? pick_apple(tree) : pick_pear(tree);
  return fruits;
}
}

int main() {
  return walk_rows(8) == 0 ? 1 : 0;
}
