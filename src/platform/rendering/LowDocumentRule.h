#pragma once

namespace rendering {

/// The height that a very low document is pictured and printed at: a document below `below` becomes
/// `height` high. CSS pixels.
struct LowDocumentRule {
  double below = 0;
  double height = 0;

  double heightFor(double document) const { return document < below ? height : document; }
};

}  // namespace rendering
