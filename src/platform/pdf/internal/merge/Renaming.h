#pragma once

#include <optional>
#include <string>
#include <unordered_map>

namespace pdf {

/// Numbers of tagged content above are taken for damage.
inline constexpr long long largestTagNumber = 1 << 30;

/// What one document's names, numbers and identifiers become in the joined document.
struct Renaming {
  using Names = std::unordered_map<std::string, std::string>;

  /// Named destinations: old-style names (without their slash) and strings. What is missing leads
  /// nowhere.
  Names oldStyleDestinations;
  Names destinations;

  /// Added to the numbers under which content is known to the tags; nothing when the tags are left
  /// out.
  std::optional<long long> tagNumberOffset;

  // Names (without their slash) of structure types and attribute classes, and element identifiers;
  // what is missing stays as it is.
  Names roles;
  Names classes;
  Names elementIdentifiers;
};

}  // namespace pdf
