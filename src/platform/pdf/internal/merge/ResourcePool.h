#pragma once

#include <QByteArray>
#include <map>
#include <optional>
#include <qpdf/QPDFObjectHandle.hh>
#include <unordered_map>

namespace pdf {

/// Fonts, pictures and other page resources of the target document, found again by their contents.
class ResourcePool {
 public:
  std::optional<QPDFObjectHandle> find(const QByteArray& digest) const;
  void add(const QByteArray& digest, QPDFObjectHandle resource) {
    resources_.insert_or_assign(digest, resource);
  }

 private:
  std::map<QByteArray, QPDFObjectHandle> resources_;
};

/// Names objects of one document by everything that can be reached from them.
class ContentDigest {
 public:
  /// Whether objects like this one are worth looking up: streams, and what fonts and graphics
  /// states are made of.
  static bool isResource(QPDFObjectHandle object);

  /// Equal for equal contents in any document. Nothing for an object that has a place of its own in
  /// its document (it refers to pages, tags, or itself).
  std::optional<QByteArray> of(QPDFObjectHandle object) { return ofObject(object, 0); }

 private:
  std::optional<QByteArray> ofObject(QPDFObjectHandle object, int depth);
  std::optional<QByteArray> ofValue(QPDFObjectHandle object, int depth);

  /// Of the document's indirect objects; while an object is being read it has none, so a ring has
  /// none.
  std::map<QPDFObjGen, std::optional<QByteArray>> known_;
};

}  // namespace pdf
