// A program whose symbols are listed. Tests rely on the names and lines of its functions.

#include <cstdio>

namespace fixture {

__attribute__((noinline)) static int hidden(int value) {  // line 7
  return value * 3;
}

struct Shape {
  int sides;
  __attribute__((noinline)) int twice(int value) const { return hidden(value) * sides; }  // line 13
};

}  // namespace fixture

extern "C" __attribute__((noinline)) int plain_name(int value) {  // line 18
  return fixture::Shape{value}.twice(2);
}

// Other names of the same function, of lower rank.
extern "C" int __plain_name_of_the_library(int) __attribute__((alias("plain_name")));
extern "C" int plain_name_that_may_be_replaced(int) __attribute__((weak, alias("plain_name")));

// A function of unknown size, mapping symbols as on ARM, and a gap without a function.
asm(R"(
  .text
  .type unsized, %function
unsized:
$a:
  nop
  nop
  .balign 64
  .type after_gap, %function
after_gap:
$d.1:
  nop
  .size after_gap, . - after_gap
  .skip 60, 0
)");

int main(int count, char**) {
  if (count > 9) std::puts("so many");
  return plain_name(count);
}
