#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/pdf/internal/merge/ObjectCopier.h"

namespace pdf {

/// Optional content (ISO 32000-1, 8.11): the groups, and the lists of the default configuration by
/// their keys. Texts for the joined document.
struct Layers {
  std::vector<std::string> groups;
  std::map<std::string, std::vector<std::string>> lists;
};

void copyLayers(const SourceFile& source, ObjectCopier& copier, Layers& joined);

/// The value of the catalog's /OCProperties; empty when there are no layers.
std::string layerProperties(const Layers& layers);

}  // namespace pdf
