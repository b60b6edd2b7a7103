#include "platform/pdf/internal/merge/Destinations.h"

namespace pdf {

std::string freeName(const std::string& wish, size_t number, const NameTexts& taken,
                     const NameTree& own) {
  std::string name = wish;
  for (; taken.count(name) > 0 || own.count(name) > 0; ++number)
    name = wish + "-" + std::to_string(number);
  return name;
}

// Documents made alike take the same names, so the document's number is what sets them apart.
DocumentDestinations::DocumentDestinations(const SourceFile& source, const NameTexts& taken,
                                           size_t documentNumber) {
  const NameTree named = readNameTree(source, source.rootEntry("/Names")["/Dests"]);
  for (const auto& [name, place] : named) {
    names_[name] = freeName(name, documentNumber, taken, destinations_);
    destinations_.emplace(names_[name], place);
  }
  for (const auto& [name, place] : readDictionary(source.rootEntry("/Dests"))) {
    oldStyleNames_[name] = freeName(name, documentNumber, taken, destinations_);
    destinations_.emplace(oldStyleNames_[name], place);
  }
}

void DocumentDestinations::rename(Renaming& renaming) const {
  renaming.destinations = names_;
  renaming.oldStyleDestinations = oldStyleNames_;
}

void DocumentDestinations::copy(ObjectCopier& copier, NameTexts& joined) const {
  for (const auto& [name, place] : destinations_)
    joined.emplace(name, copier.copy(place));
}

}  // namespace pdf
