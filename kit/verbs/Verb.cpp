#include "verbs/Verb.h"

#include <algorithm>

namespace zelkit {

namespace {

std::vector<Verb*>& registered() {
  static std::vector<Verb*> verbs;
  return verbs;
}

}  // namespace

Verb::Verb(const char* name, const char* description) : _name(name), _description(description) {
  registered().push_back(this);
}

std::vector<Verb*> Verb::all() {
  std::vector<Verb*> verbs = registered();
  std::sort(verbs.begin(), verbs.end(),
            [](const Verb* left, const Verb* right) { return left->name() < right->name(); });
  return verbs;
}

}  // namespace zelkit
