#include "platform/pdf/PrintedPages.h"

#include <QTransform>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "platform/pdf/PDFDocument.h"
#include "platform/pdf/internal/BlankPage.h"
#include "platform/pdf/internal/IncrementalUpdate.h"
#include "platform/pdf/internal/PageGeometry.h"
#include "platform/pdf/internal/PlacedText.h"
#include "platform/pdf/internal/SequentialFile.h"

using namespace Qt::StringLiterals;

namespace pdf {
namespace {

/// A user unit needs more of them than a coordinate: it is multiplied by thousands.
constexpr int unitDecimals = 10;

std::string spelled(double value, int decimals = 4) {
  return number(value, decimals).toStdString();
}

void noteReferences(const Value& value, std::vector<bool>& noted) {
  const auto object = static_cast<size_t>(value.reference);
  if (value.isReference() && object < noted.size()) noted[object] = true;
  for (const Value& item : value.items())
    noteReferences(item, noted);
}

/// What destinations and tags lead to, by object number. The page tree does not count.
std::vector<bool> referredTo(const SourceFile& source) {
  std::vector<bool> noted(static_cast<size_t>(source.objectCount()));
  for (int object = 1; object < source.objectCount(); ++object) {
    const Value& value = source.object(object);
    if (!value["/Type"].isName("/Pages")) noteReferences(value, noted);
  }
  return noted;
}

int pagesWithContent(const SourceFile& source) {
  const std::vector<SourcePage>& pages = source.pages();
  size_t count = pages.size();
  std::vector<bool> noted;
  while (count > 1 && isBlank(source, pages[count - 1])) {
    if (noted.empty()) noted = referredTo(source);
    if (noted[static_cast<size_t>(pages[count - 1].number)]) break;
    --count;
  }
  return static_cast<int>(count);
}

class Fitting {
 public:
  Fitting(const SourceFile& source, const PageFit& fit, int pageCount)
      : source_(source),
        fit_(fit),
        pages_(source.pages().begin(), source.pages().begin() + pageCount),
        update_(source),
        printed_(pageGeometry(source, source.pages().front()).box),
        box_(QPointF(0, 0), fit.paper / fit.userUnit) {
    if (movesContent()) {
      const double below = box_.height() - fit.place.y() - fit.enlargement * printed_.height();
      place_ = QTransform(fit.enlargement, 0, 0, fit.enlargement, fit.place.x(), below);
    } else {
      // The engine rounds paper; what it prints begins at the upper edge.
      box_.moveTop(printed_.height() - box_.height());
    }
  }

  MaybeError write(const QString& path);

 private:
  bool movesContent() const { return fit_.enlargement != 1 || !fit_.place.isNull(); }
  bool keepsBox() const;
  bool leavesPagesOut() const { return pages_.size() < source_.pages().size(); }
  void writePageTree();
  void fitPages();
  void fitPage(const SourcePage& page);
  std::string resources(const SourcePage& page);
  int movedPattern(int pattern);
  std::string contents(const Value& own);
  void moveDestinations();
  void moveOthers();

  const SourceFile& source_;
  const PageFit fit_;
  const std::vector<SourcePage> pages_;
  IncrementalUpdate update_;
  const QRectF printed_;
  QRectF box_;  ///< as in `PageGeometry`
  QTransform place_;
  int matrix_ = 0;
  std::map<int, int> patterns_;
};

MaybeError Fitting::write(const QString& path) {
  if (movesContent()) {
    matrix_ = update_.reserve();
    update_.writeStream(matrix_, "<<>>", matrixText(place_) + "cm\n");
    moveOthers();
  }
  if (leavesPagesOut()) writePageTree();
  if (!keepsBox() || leavesPagesOut()) fitPages();
  moveDestinations();
  if (fit_.userUnit != 1) update_.raiseVersion("1.6");
  return update_.write(path);
}

bool Fitting::keepsBox() const {
  constexpr double unseen = 1e-3;
  return !movesContent() && fit_.userUnit == 1 &&
         std::abs(box_.width() - printed_.width()) < unseen &&
         std::abs(box_.height() - printed_.height()) < unseen;
}

/// Of one level; `fitPage` hangs the pages under it.
void Fitting::writePageTree() {
  std::string text = "<<";
  ValueText().appendEntries(text, source_.rootEntry("/Pages"), {"/Kids", "/Count"});
  text += "/Count " + std::to_string(pages_.size()) + "/Kids[";
  for (const SourcePage& page : pages_)
    text += referenceText(page.number) + ' ';
  update_.writeObject(source_.root()["/Pages"].reference, text + "]>>");
}

void Fitting::fitPages() {
  for (const SourcePage& page : pages_)
    fitPage(page);
}

void Fitting::fitPage(const SourcePage& page) {
  const Value& own = source_.object(page.number);
  PlacedText spelling(source_, place_);
  std::string text = "<<";
  spelling.appendEntries(text, own,
                         {"/MediaBox", "/CropBox", "/BleedBox", "/TrimBox", "/ArtBox", "/UserUnit",
                          "/Contents", "/Resources", "/Parent"});
  const Value& parent = leavesPagesOut() ? source_.root()["/Pages"] : own["/Parent"];
  text += "/Parent " + referenceText(parent.reference);
  text += "/MediaBox[" + spelled(box_.left()) + ' ' + spelled(box_.top()) + ' ' +
          spelled(box_.right()) + ' ' + spelled(box_.bottom()) + ']';
  if (fit_.userUnit != 1) text += "/UserUnit " + spelled(fit_.userUnit, unitDecimals);
  text += "/Resources" + resources(page) + "/Contents " + contents(own["/Contents"]);
  update_.writeObject(page.number, text + ">>");
}

/// A pattern has its place on the page, not in the content that uses it (ISO 32000-1, 8.7.3.1).
std::string Fitting::resources(const SourcePage& page) {
  const Value& own = source_.resolved(source_.pageEntry(page, "/Resources"));
  const Value& patterns = source_.resolved(own["/Pattern"]);
  ValueText spelling;
  std::string text = "<<";
  if (own.isDictionary()) spelling.appendEntries(text, own, {"/Pattern"});
  if (!patterns.isDictionary()) return text + ">>";
  text += "/Pattern<<";
  for (size_t index = 0; index < patterns.count; index += 2) {
    const Value& pattern = patterns.items()[index + 1];
    text += patterns.items()[index].text;
    text += ' ';
    if (movesContent() && pattern.isReference()) {
      text += referenceText(movedPattern(pattern.reference));
    } else {
      spelling.append(text, pattern);
    }
  }
  return text + ">>>>";
}

int Fitting::movedPattern(int pattern) {
  int& moved = patterns_[pattern];
  if (moved != 0) return moved;
  moved = update_.reserve();
  const Value& own = source_.object(pattern);
  const Value& old = source_.resolved(own["/Matrix"]);
  double values[6] = {1, 0, 0, 1, 0, 0};
  for (size_t index = 0; index < 6 && old.isArray() && old.count == 6; ++index)
    values[index] = source_.resolved(old.items()[index]).number().value_or(values[index]);
  const QTransform matrix(values[0], values[1], values[2], values[3], values[4], values[5]);
  std::string text = "<<";
  ValueText().appendEntries(text, own, {"/Matrix", "/Length"});
  text += "/Matrix[" + matrixText(matrix * place_) + "]>>";
  const auto data = source_.data(pattern);
  data ? update_.writeStream(moved, text, *data) : update_.writeObject(moved, text);
  return moved;
}

std::string Fitting::contents(const Value& own) {
  ValueText spelling;
  std::string text;
  if (!movesContent()) {
    spelling.append(text, own);
    return text;
  }
  text = '[' + referenceText(matrix_) + ' ';
  const Value& array = source_.resolved(own);
  if (!array.isArray() && !array.isNull()) spelling.append(text, own);
  if (array.isArray()) {
    for (const Value& item : array.items())
      spelling.append(text, item);
  }
  return text + ']';
}

void Fitting::moveDestinations() {
  const Value& reference = source_.root()["/Dests"];
  const Value& destinations = source_.resolved(reference);
  if (!reference.isReference() || !destinations.isDictionary()) return;
  const double scale = fit_.destinationScale, height = printed_.height();
  const QTransform printedPlace(scale, 0, 0, scale, 0, height - scale * height);
  PlacedText spelling(source_, printedPlace * place_);
  std::string text = "<<";
  for (size_t index = 0; index < destinations.count; index += 2) {
    text += destinations.items()[index].text;
    text += ' ';
    spelling.appendDestination(text, destinations.items()[index + 1]);
  }
  update_.writeObject(reference.reference, text + ">>");
}

void Fitting::moveOthers() {
  for (int object = 1; object < source_.objectCount(); ++object) {
    const Value& value = source_.object(object);
    if (source_.data(object) || value["/Type"].isName("/Page")) continue;
    PlacedText spelling(source_, place_);
    std::string text;
    spelling.append(text, value);
    if (spelling.hasMoved()) update_.writeObject(object, text);
  }
}

}  // namespace

PrintedPages::PrintedPages(std::unique_ptr<SourceFile> source)
    : source_(std::move(source)), pageCount_(pagesWithContent(*source_)) {}

PrintedPages::~PrintedPages() = default;

Result<std::unique_ptr<PrintedPages>> PrintedPages::open(const QString& path) {
  auto source = openForUpdate(path);
  if (!source) return tl::unexpected(source.error());
  return std::make_unique<PrintedPages>(std::move(*source));
}

MaybeError PrintedPages::write(const PageFit& fit, const QString& path) const {
  return Fitting(*source_, fit, pageCount_).write(path);
}

}  // namespace pdf
