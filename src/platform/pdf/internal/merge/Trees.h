#pragma once

#include <map>
#include <string>

#include "platform/pdf/internal/merge/CompactFile.h"
#include "platform/pdf/internal/merge/SourceFile.h"

namespace pdf {

using NameTree = std::map<std::string, Value>;  ///< by the names' bytes
using NumberTree = std::map<long long, Value>;

// Of the joined document, with the values' text.
using NameTexts = std::map<std::string, std::string>;
using NumberTexts = std::map<long long, std::string>;

/// The entries of a name tree or number tree (ISO 32000-1, 7.9.6 and 7.9.7). Damaged parts and
/// rings are passed over.
NameTree readNameTree(const SourceFile& source, const Value& root);
NumberTree readNumberTree(const SourceFile& source, const Value& root);

/// The entries of a dictionary by their names, without slashes.
NameTree readDictionary(const Value& dictionary);

/// Writes a tree of the entries, of few levels and with nodes of moderate size. Returns its root.
int writeNameTree(CompactFile& target, const NameTexts& entries);
int writeNumberTree(CompactFile& target, const NumberTexts& entries);

}  // namespace pdf
