#include "json/JSONData.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <ostream>
#include <utility>

#include "base/Memory.h"
#include "base/TargetNumbers.h"
#include "json/JSONParser.h"
#include "json/JsonText.h"

namespace loomstat {

namespace {

/// Where nodes and what they point at lie. Never destroyed, as static objects may hold nodes.
template <typename Type>
SlotPool& slots() {
  static auto& pool = *new SlotPool(sizeof(Type));
  return pool;
}

template <typename Type>
void make(Type*& object) {
  object = ::new (slots<Type>().take()) Type;
}

template <typename Type>
void destroyContent(Type* object) {
  std::destroy_at(object);
  slots<Type>().giveBack(object);
}

}  // namespace

template <typename Member>
Member* MemberAllocator<Member>::allocate(std::size_t count) {
  if (count == 1) return static_cast<Member*>(slots<void*>().take());
  return std::allocator<Member>().allocate(count);
}

template <typename Member>
void MemberAllocator<Member>::deallocate(Member* members, std::size_t count) noexcept {
  if (count == 1) {
    slots<void*>().giveBack(members);
  } else {
    std::allocator<Member>().deallocate(members, count);
  }
}

template struct MemberAllocator<JSONData*>;
template struct MemberAllocator<JSONData::entry*>;

void* JSONData::operator new(std::size_t) {
  return slots<JSONData>().take();
}

void JSONData::operator delete(void* node) noexcept {
  slots<JSONData>().giveBack(node);
}

void JSONData::release(JSONData* node) {
  if (--node->_refCount == 0) destroy({node});
}

/// Destroys nodes without references, and the nodes that only they refer to. Not recursive, as a tree may be
/// too deep for that.
void JSONData::destroy(std::vector<JSONData*> nodes) {
  while (!nodes.empty()) {
    JSONData* node = nodes.back();
    nodes.pop_back();
    node->giveUpMembers(nodes);
    delete node;
  }
}

/// Empties a container and adds its members without other references to `unheld`.
void JSONData::giveUpMembers(std::vector<JSONData*>& unheld) {
  const auto giveUp = [&](JSONData* member) {
    if (--member->_refCount == 0) unheld.push_back(member);
  };
  if (_type == kArray) {
    for (JSONData* element : *_value.elements) giveUp(element);
    _value.elements->clear();
  } else if (_type == kObject) {
    for (entry* member : *_value.entries) {
      giveUp(member->value);
      delete member;
    }
    _value.entries->clear();
  }
}

int JSONData::length() const {
  if (_type == kArray) return static_cast<int>(_value.elements->size());
  if (_type == kObject) return static_cast<int>(_value.entries->size());
  return 0;
}

JSONData* JSONData::getByIndex(int index) const {
  if (index < 0 || index >= length()) return nullptr;
  const auto position = static_cast<std::size_t>(index);
  return _type == kArray ? (*_value.elements)[position] : (*_value.entries)[position]->value;
}

/// Returns the index of the last entry of that key, or -1.
int JSONData::findKey(const std::string& key) const {
  if (_type != kObject) return -1;
  int index = length() - 1;
  while (index >= 0 && (*_value.entries)[static_cast<std::size_t>(index)]->key != key) --index;
  return index;
}

JSONData* JSONData::getByKey(const std::string& key) const {
  return getByIndex(findKey(key));
}

JSONData* JSONData::getByKey(const char* key) const {
  return getByKey(std::string(key));
}

const std::string* JSONData::getKeyAtIndex(int index) const {
  if (_type != kObject || index < 0 || index >= length()) return nullptr;
  return &(*_value.entries)[static_cast<std::size_t>(index)]->key;
}

bool JSONData::booleanValue() const {
  unsigned char first = 0;
  std::memcpy(&first, &_value, 1);
  return first != 0;
}

long long JSONData::longValue() const {
  if (_type == kLong) return _value.integer;
  if (_type == kDouble) return truncateToSigned64(_value.real);
  return _type == kBoolean && booleanValue() ? 1 : 0;
}

double JSONData::doubleValue() const {
  return _type == kDouble ? _value.real : static_cast<double>(longValue());
}

const std::string* JSONData::stringValue() const {
  return _type == kString ? _value.string : nullptr;
}

void JSONData::setType(int type) {
  if (type == _type) return;
  reset();
  _type = static_cast<unsigned short>(type);
  if (type == kArray) make(_value.elements);
  if (type == kObject) make(_value.entries);
  if (type == kString) make(_value.string);
}

void JSONData::setBoolean(bool value) {
  setType(kBoolean);
  _value.boolean = value;
}

void JSONData::setLong(long long value) {
  setType(kLong);
  _value.integer = value;
}

void JSONData::setDouble(double value) {
  setType(kDouble);
  _value.real = value;
}

void JSONData::setString(const std::string& value) {
  setType(kString);
  *_value.string = value;
}

void JSONData::setString(const char* value) {
  setType(kString);
  if (value != nullptr) *_value.string = value;
}

void JSONData::reset() {
  clear();
  if (_type == kArray) destroyContent(_value.elements);
  if (_type == kObject) destroyContent(_value.entries);
  if (_type == kString) destroyContent(_value.string);
  _value.integer = 0;
  _type = kUnset;
}

void JSONData::clear() {
  std::vector<JSONData*> unheld;
  giveUpMembers(unheld);
  destroy(std::move(unheld));
}

void JSONData::eraseAt(std::size_t index) {
  const auto offset = static_cast<std::ptrdiff_t>(index);
  if (_type == kArray) {
    JSONData* element = (*_value.elements)[index];
    _value.elements->erase(_value.elements->begin() + offset);
    release(element);
  } else {
    entry* member = (*_value.entries)[index];
    _value.entries->erase(_value.entries->begin() + offset);
    release(member->value);
    delete member;
  }
}

void JSONData::erase(int index) {
  const int count = length();
  if (index == -1) index = count - 1;
  if (index >= 0 && index < count) eraseAt(static_cast<std::size_t>(index));
}

void JSONData::erase(const char* key) {
  if (key != nullptr) erase(std::string(key));
}

void JSONData::erase(const std::string& key) {
  if (const int index = findKey(key); index >= 0) eraseAt(static_cast<std::size_t>(index));
}

void JSONData::setByKey(const std::string& key, JSONData* value) {
  setType(kObject);
  const int index = findKey(key);
  if (value == nullptr) {
    erase(key);
    return;
  }
  value->addReference();
  if (index < 0) {
    _value.entries->push_back(new entry{key, value});
  } else {
    release(std::exchange((*_value.entries)[static_cast<std::size_t>(index)]->value, value));
  }
}

void JSONData::setByKey(const char* key, JSONData* value) {
  setByKey(std::string(key), value);
}

void JSONData::setByIndex(int index, JSONData* value) {
  if (value == nullptr) {
    if (_type == kArray && index >= 0) erase(index);
    return;
  }
  setType(kArray);
  value->addReference();
  const int count = length();
  if (index == count) {
    _value.elements->push_back(value);
  } else if (index < 0 || index > count) {
    std::fprintf(stderr, "JSONData::%s: %s\n", "setByIndex()", "index out of range");
    release(value);
  } else {
    const auto position = static_cast<std::size_t>(index);
    JSONData* replaced = (*_value.elements)[position];
    _value.elements->assign(position, value);
    release(replaced);
  }
}

JSONData* JSONData::clone() const {
  auto* node = new JSONData;
  node->copy(*this);
  return node;
}

void JSONData::copy(const JSONData& source) {
  setType(source._type);
  if (_type == kString) {
    *_value.string = *source._value.string;
  } else if (_type == kArray || _type == kObject) {
    // All members are copied before the first release: a node may be copied onto itself.
    const int oldLength = length();
    const int newLength = source.length();
    for (int i = 0; i < newLength; ++i) {
      JSONData* member = source.getByIndex(i)->clone();
      member->addReference();
      if (_type == kArray) {
        _value.elements->push_back(member);
      } else {
        _value.entries->push_back(new entry{*source.getKeyAtIndex(i), member});
      }
    }
    for (int i = 0; i < oldLength; ++i) erase(0);
  } else {
    _value = source._value;
  }
}

bool JSONData::setFromJsonString(const char*& cursor) {
  if (cursor == nullptr) return false;
  TextCursor text(cursor);
  return JSONParser<TextCursor>(text).parse(*this);
}

bool JSONData::setFromStream(std::istream& stream) {
  StreamCursor cursor(stream);
  return JSONParser<StreamCursor>(cursor).parse(*this);
}

bool JSONData::setFromJsonStlString(const std::string& text) {
  const char* cursor = text.c_str();
  return setFromJsonString(cursor);
}

bool JSONData::fetchNextType(const char*& cursor, unsigned short& type, bool& comma, bool& colon, bool& end) {
  TextCursor text(cursor);
  return JSONParser<TextCursor>(text).fetchNextType(type, comma, colon, end);
}

bool JSONData::fetchNextType(std::istream& stream, unsigned short& type, bool& comma, bool& colon,
                             bool& end) {
  StreamCursor cursor(stream);
  return JSONParser<StreamCursor>(cursor).fetchNextType(type, comma, colon, end);
}

bool JSONData::parseJsonString(const char*& cursor, std::string& out) {
  TextCursor text(cursor);
  return JSONParser<TextCursor>(text).parseJsonString(out);
}

bool JSONData::parseJsonString(std::istream& stream, std::string& out) {
  StreamCursor cursor(stream);
  return JSONParser<StreamCursor>(cursor).parseJsonString(out);
}

bool JSONData::parseJsonNumberIntoSelf(const char*& cursor) {
  TextCursor text(cursor);
  return JSONParser<TextCursor>(text).parseJsonNumberIntoSelf(*this);
}

bool JSONData::parseJsonNumberIntoSelf(std::istream& stream) {
  StreamCursor cursor(stream);
  return JSONParser<StreamCursor>(cursor).parseJsonNumberIntoSelf(*this);
}

}  // namespace loomstat
