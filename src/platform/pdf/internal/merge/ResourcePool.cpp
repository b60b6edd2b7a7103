#include "platform/pdf/internal/merge/ResourcePool.h"

#include <QCryptographicHash>
#include <array>
#include <memory>
#include <qpdf/Buffer.hh>
#include <string_view>

namespace pdf {
namespace {

constexpr int deepest = 24;

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> names) {
  for (const std::string_view candidate : names) {
    if (name == candidate) return true;
  }
  return false;
}

/// Collects what an object is made of.
class Hash {
 public:
  void add(std::string_view text) {
    // The length keeps neighbours apart.
    const auto length = static_cast<quint64>(text.size());
    hash_.addData(QByteArrayView(reinterpret_cast<const char*>(&length), sizeof length));
    hash_.addData(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
  }
  void add(const QByteArray& bytes) {
    add(std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
  }
  QByteArray result() const { return hash_.result(); }

 private:
  QCryptographicHash hash_{QCryptographicHash::Blake2b_256};
};

void addStreamData(Hash& hash, QPDFObjectHandle stream) {
  const std::shared_ptr<Buffer> data = stream.getRawStreamData();
  hash.add(std::string_view(reinterpret_cast<const char*>(data->getBuffer()), data->getSize()));
}

}  // namespace

std::optional<QPDFObjectHandle> ResourcePool::find(const QByteArray& digest) const {
  const auto found = resources_.find(digest);
  return found == resources_.end() ? std::nullopt : std::optional(found->second);
}

bool ContentDigest::isResource(QPDFObjectHandle object) {
  if (object.isStream()) return true;
  if (!object.isDictionary()) return false;
  QPDFObjectHandle type = object.getKey("/Type");
  return type.isName() &&
         isOneOf(type.getName(), {"/Font", "/FontDescriptor", "/ExtGState", "/Pattern"});
}

std::optional<QByteArray> ContentDigest::ofObject(QPDFObjectHandle object, int depth) {
  if (!object.isIndirect()) return ofValue(object, depth);
  const auto [place, isNew] = known_.try_emplace(object.getObjGen(), std::nullopt);
  if (!isNew) return place->second;
  const std::optional<QByteArray> digest = ofValue(object, depth);
  return known_[object.getObjGen()] = digest;
}

std::optional<QByteArray> ContentDigest::ofValue(QPDFObjectHandle object, int depth) {
  if (depth > deepest) return std::nullopt;
  Hash hash;
  hash.add(std::string_view(object.getTypeName()));
  if (object.isArray()) {
    for (QPDFObjectHandle& item : object.getArrayAsVector()) {
      const auto digest = ofObject(item, depth + 1);
      if (!digest) return std::nullopt;
      hash.add(*digest);
    }
  } else if (object.isDictionary() || object.isStream()) {
    QPDFObjectHandle dictionary = object.isStream() ? object.getDict() : object;
    for (auto& [key, value] : dictionary.getDictAsMap()) {
      if (isOneOf(key, {"/StructParent", "/StructParents", "/Parent", "/OC"})) return std::nullopt;
      if (key == "/Length" && object.isStream()) continue;
      if (key == "/Type" && value.isName() &&
          isOneOf(value.getName(), {"/Page", "/Pages", "/Catalog", "/Annot", "/OCG"})) {
        return std::nullopt;
      }
      const auto digest = ofObject(value, depth + 1);
      if (!digest) return std::nullopt;
      hash.add(key);
      hash.add(*digest);
    }
    if (object.isStream()) addStreamData(hash, object);
  } else {
    hash.add(object.unparseResolved());
  }
  return hash.result();
}

}  // namespace pdf
