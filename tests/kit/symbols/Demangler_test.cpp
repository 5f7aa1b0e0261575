#include "symbols/Demangler.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zelkit {
namespace {

TEST(Demangler, DemanglesCppAndBothFormsOfRust) {
  const std::pair<const char*, const char*> cases[] = {
      {"main", "main"},
      {"_start", "_start"},
      {"_Z3foov", "foo()"},
      {"_ZN2ns1fEi.cold", "ns::f(int) [clone .cold]"},
      {"_ZNSt6vectorIiSaIiEE9push_backERKi", "std::vector<int, std::allocator<int> >::push_back(int const&)"},
      {"_ZN4core3fmt9Formatter3pad17h0123456789abcdefE", "core::fmt::Formatter::pad"},
      {"_RNvC7mycrate3foo", "mycrate::foo"},
      {"_Znot_mangled", "_Znot_mangled"},
      {"", ""},
  };
  for (const auto& [mangled, expected] : cases) EXPECT_EQ(demangled(mangled), expected);
}

TEST(Demangler, KeepsNamesThatWouldExpandTooFar) {
  // Each argument is a template of the one before it, twice: 30 of them would need gigabytes.
  std::string name = "_Z1f1aI1bIiiE";
  for (const char last : std::string("123456789ABCDEFGHIJKLMNOPQRSTU")) {
    const std::string before = std::string("S") + last + '_';
    name += "S0_I" + before + before + 'E';
  }
  name += 'E';
  EXPECT_EQ(demangled(name.c_str()), name);
  EXPECT_EQ(demangled("_Z1f1aI1bIiiES0_IS1_S1_EE"), "f(a<b<int, int>, b<b<int, int>, b<int, int> > >)");
}

}  // namespace
}  // namespace zelkit
