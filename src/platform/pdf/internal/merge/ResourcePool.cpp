#include "platform/pdf/internal/merge/ResourcePool.h"

#include <algorithm>

namespace pdf {
namespace {

constexpr int deepest = 24;

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool isTied(std::string_view key, const Value& value) {
  if (isOneOf(key, {"/StructParent", "/StructParents", "/Parent", "/OC"})) return true;
  return key == "/Type" && isOneOf(value.text, {"/Page", "/Pages", "/Catalog", "/Annot", "/OCG"});
}

}  // namespace

int ResourcePool::object(const std::string& text) {
  const auto [place, isNew] = objects_.try_emplace(text, 0);
  if (isNew) place->second = target_.add(text);
  return place->second;
}

int ResourcePool::stream(const std::string& dictionary, std::string_view data, size_t hash) {
  const std::string key = dictionary + std::to_string(data.size()) + ' ' + std::to_string(hash);
  const auto known = streams_.find(key);
  if (known != streams_.end() && target_.holds(known->second.position, data))
    return known->second.number;
  const int number = target_.reserve();
  const qint64 position = target_.writeStream(number, dictionary, data);
  streams_.insert_or_assign(key, Stream{number, position});
  return number;
}

Sharing::Sharing(const SourceFile& source)
    : source_(source), states_(static_cast<size_t>(source.objectCount())) {}

bool Sharing::isResource(int object) const {
  return source_.data(object) || isOneOf(source_.object(object)["/Type"].text,
                                         {"/Font", "/FontDescriptor", "/ExtGState", "/Pattern"});
}

bool Sharing::isShared(int object) {
  const State state = states_[static_cast<size_t>(object)];
  if (state != State::Unknown) return state == State::Shared;
  return isResource(object) && canShareObject(object, 0);
}

/// While an object is being looked through it counts as tied to its document, so a ring does.
bool Sharing::canShareObject(int object, int depth) {
  const auto index = static_cast<size_t>(object);
  if (index >= states_.size()) return true;
  if (states_[index] != State::Unknown) return states_[index] == State::Shared;
  states_[index] = State::Own;
  if (!canShare(source_.object(object), depth)) return false;
  states_[index] = State::Shared;
  return true;
}

bool Sharing::canShare(const Value& value, int depth) {
  if (depth > deepest) return false;
  if (value.isReference()) return canShareObject(value.reference, depth);
  const bool isDictionary = value.isDictionary();
  for (std::uint32_t index = 0; index < value.count; ++index) {
    const Value& item = value.items()[index];
    if (isDictionary && index % 2 == 0 && isTied(item.text, value.items()[index + 1])) return false;
    if (!canShare(item, depth + 1)) return false;
  }
  return true;
}

}  // namespace pdf
