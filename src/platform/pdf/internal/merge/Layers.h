#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/pdf/internal/merge/ObjectCopier.h"

namespace pdf {

/// Optional content (ISO 32000-1, 8.11): the groups, and the lists of the default configuration by
/// their keys.
struct Layers {
  std::vector<QPDFObjectHandle> groups;
  std::map<std::string, std::vector<QPDFObjectHandle>> lists;
};

Layers copyLayers(QPDF& source, ObjectCopier& copier);
void append(Layers& joined, const Layers& more);
void writeLayers(QPDF& document, const Layers& layers);

}  // namespace pdf
