#pragma once

#include <QTransform>
#include <string>

#include "platform/pdf/internal/merge/SourceFile.h"
#include "platform/pdf/internal/merge/ValueText.h"

namespace pdf {

/// Spells the objects of a document whose pages' content is moved and scaled, with what they say of
/// places on a page moved along: annotations, destinations, boxes of structure elements.
class PlacedText : public ValueText {
 public:
  /// `place` leads from the old user space to the new; it does not turn.
  PlacedText(const SourceFile& source, const QTransform& place) : source_(source), place_(place) {}

  /// Whether anything was moved so far.
  bool hasMoved() const { return hasMoved_; }

  void appendEntries(std::string& text, const Value& dictionary,
                     std::initializer_list<std::string_view> except) override;

  /// A destination of the form that names a place (ISO 32000-1, table 151, XYZ); others stay.
  void appendDestination(std::string& text, const Value& destination);

 private:
  void appendPoints(std::string& text, const Value& points);

  const SourceFile& source_;
  const QTransform place_;
  bool hasMoved_ = false;
};

}  // namespace pdf
