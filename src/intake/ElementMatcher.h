#pragma once

#include <QStringView>
#include <optional>

/// Where an element stands in a text: [start, innerStart) is the opening, [innerEnd, end) the
/// closing.
struct ElementMatch {
  qsizetype start = 0;
  qsizetype innerStart = 0;
  qsizetype innerEnd = 0;
  qsizetype end = 0;
};

/// Finds, left to right and without overlap, each opening text with everything up to the nearest
/// closing text behind it: the matches of the pattern "opening.*?closing", whose dot takes line
/// breaks and whose letters are compared without case, by the full case folding of the Unicode
/// standard (section 3.13): the long s and the ligatures of s and t match too.
///
/// All matches together take time linear in the text, also where openings are never closed.
/// `opening` and `closing` are lower-case ASCII and begin with '<'; like the text they must outlive
/// the matcher.
class ElementMatcher {
 public:
  ElementMatcher(QStringView text, QStringView opening, QStringView closing)
      : text_(text), opening_(opening), closing_(closing) {}

  std::optional<ElementMatch> next();

 private:
  struct Range {
    qsizetype start;
    qsizetype end;
  };
  std::optional<Range> find(QStringView word, qsizetype from) const;

  QStringView text_;
  QStringView opening_;
  QStringView closing_;
  qsizetype position_ = 0;
};
