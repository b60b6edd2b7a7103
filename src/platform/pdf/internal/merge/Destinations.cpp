#include "platform/pdf/internal/merge/Destinations.h"

namespace pdf {
namespace {

/// Documents made alike take the same names, so the document's number is what sets them apart.
std::string freeName(const std::string& wish, size_t documentNumber, const NameTree& taken,
                     const NameTree& own) {
  std::string name = wish;
  for (size_t number = documentNumber; taken.count(name) > 0 || own.count(name) > 0; ++number) {
    name = wish + "-" + std::to_string(number);
  }
  return name;
}

NameTree oldStyleDestinations(QPDFObjectHandle root) {
  QPDFObjectHandle dictionary = root.getKey("/Dests");
  return dictionary.isDictionary() ? dictionary.getDictAsMap() : NameTree();
}

NameTree destinations(QPDFObjectHandle root) {
  QPDFObjectHandle names = root.getKey("/Names");
  return names.isDictionary() ? readNameTree(names.getKey("/Dests")) : NameTree();
}

}  // namespace

DocumentDestinations::DocumentDestinations(QPDF& source, const NameTree& taken,
                                           size_t documentNumber) {
  for (const auto& [name, place] : destinations(source.getRoot())) {
    names_[name] = freeName(name, documentNumber, taken, destinations_);
    destinations_.emplace(names_[name], place);
  }
  for (const auto& [name, place] : oldStyleDestinations(source.getRoot())) {
    oldStyleNames_[name] = freeName(name.substr(1), documentNumber, taken, destinations_);
    destinations_.emplace(oldStyleNames_[name], place);
  }
}

void DocumentDestinations::rename(Renaming& renaming) const {
  renaming.destinations = names_;
  renaming.oldStyleDestinations = oldStyleNames_;
}

NameTree DocumentDestinations::copy(ObjectCopier& copier) const {
  NameTree copies;
  for (const auto& [name, place] : destinations_)
    copies.emplace(name, copier.copy(place));
  return copies;
}

}  // namespace pdf
