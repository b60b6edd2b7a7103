#include "platform/rendering/Print.h"

#include <array>
#include <cmath>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/PageScript.h"
#include "platform/rendering/PrintToFile.h"
#include "platform/rendering/RenderingError.h"
#include "platform/rendering/SettledStyles.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

/// The engine lays out CSS pixels of 1/96 inch; ours are points.
constexpr double onePixelPerPoint = 96.0 / 72.0;
constexpr double smallestScale = 0.1;
constexpr double largestScale = 2;

/// Added to the height of one tall page, one after the other, until the document fits: print
/// metrics can make it a little higher than it is on the screen. The last resort is the paper of
/// all pages together.
constexpr std::array<double, 5> heightCorrections{0, 1, 8, 64, 512};

/// What both kinds of print share: the flat document with settled styles, printed, moved into place
/// and put back. Kept by the callbacks of its steps.
class PrintJob : public std::enable_shared_from_this<PrintJob> {
 public:
  using Callback = std::function<void(Result<PrintedDocument>)>;

  PrintJob(QString path, Callback callback)
      : path_(std::move(path)), callback_(std::move(callback)) {}
  virtual ~PrintJob() = default;

  void start(const std::shared_ptr<web::Page>& page, FlatPages pages);

 protected:
  virtual void print() = 0;
  void printOn(const PrintPaper& paper);
  virtual void printed(const PrintRun& run) { finish(run); }
  void finish(const PrintRun& run);
  void end(Result<PrintedDocument> result);
  const DocumentLayout& layout() const { return document_->layout(); }

 private:
  void settleStyles();
  void addRules();

  QString path_;
  Callback callback_;
  FlatPages pages_ = FlatPages::One;
  std::shared_ptr<FlatDocument> document_;
  std::shared_ptr<SettledStyles> styles_;
};

void PrintJob::start(const std::shared_ptr<web::Page>& page, FlatPages pages) {
  pages_ = pages;
  FlatDocument::lay(page, pages, [self = shared_from_this()](auto document) {
    if (!document) return self->callback_(tl::unexpected(document.error()));
    self->document_ = *document;
    self->settleStyles();
  });
}

void PrintJob::settleStyles() {
  const bool wider = layout().document.width() > layout().viewport.width();
  const ScreenViewport viewport{
      layout().viewport, wider ? ViewportChange::Both : ViewportChange::Height, {}};
  SettledStyles::settle(document_->page(), viewport, [self = shared_from_this()](auto styles) {
    if (!styles) return self->end(tl::unexpected(styles.error()));
    self->styles_ = *styles;
    self->addRules();
  });
}

void PrintJob::addRules() {
  const bool wider = layout().document.width() > layout().viewport.width();
  const QString mode = pages_ == FlatPages::One ? u"one"_s : u"many"_s;
  const double width = wider ? layout().viewport.width() : 0;
  callPageScript(document_->page(), u"addPrintRules"_s, {mode, width},
                 [self = shared_from_this()](const Result<QJsonValue>& done) {
                   done ? self->print() : self->end(tl::unexpected(done.error()));
                 });
}

void PrintJob::printOn(const PrintPaper& paper) {
  printToFile(document_->page(), paper, path_, [self = shared_from_this()](const auto& run) {
    run ? self->printed(*run) : self->end(tl::unexpected(run.error()));
  });
}

void PrintJob::finish(const PrintRun& run) {
  const MaybeError error = run.file->moveToTarget();
  end(error ? tl::unexpected(*error) : Result<PrintedDocument>(run.document));
}

/// Nobody has to wait while the page is put back: whoever wants it next waits for its turn.
void PrintJob::end(Result<PrintedDocument> result) {
  const auto restoreDocument = [document = document_] { document->restore([] {}); };
  styles_ ? styles_->restore(restoreDocument) : restoreDocument();
  callback_(std::move(result));
}

class TallPrint : public PrintJob {
 public:
  TallPrint(LowDocumentRule lowDocument, QString path, Callback callback)
      : PrintJob(std::move(path), std::move(callback)), lowDocument_(lowDocument) {}

 protected:
  void print() override { printHigher(heightCorrections[attempt_]); }
  void printed(const PrintRun& run) override;

 private:
  void printHigher(double rows);

  const LowDocumentRule lowDocument_;
  size_t attempt_ = 0;
};

void TallPrint::printHigher(double rows) {
  const QSizeF document = layout().document;
  const double height = qMax(1.0, lowDocument_.heightFor(document.height()));
  printOn({{document.width(), height + rows}, {}, onePixelPerPoint});
}

void TallPrint::printed(const PrintRun& run) {
  if (run.document.pages == 1) return finish(run);
  ++attempt_;
  if (attempt_ < heightCorrections.size()) return printHigher(heightCorrections[attempt_]);
  if (attempt_ == heightCorrections.size()) {
    return printHigher(layout().document.height() * (run.document.pages - 1));
  }
  end(tl::unexpected(makeError(NotOnePage, u"The page does not fit on one page of paper."_s)));
}

class PaginatedPrint : public PrintJob {
 public:
  PaginatedPrint(PageSetup setup, QString path, Callback callback)
      : PrintJob(std::move(path), std::move(callback)), setup_(setup) {}

 protected:
  void print() override;

 private:
  PageSetup setup_;
};

/// The layout is as wide as the printable width divided by the scale: the scale makes that the
/// document's.
void PaginatedPrint::print() {
  const double printable = setup_.paper.width() - setup_.margins.left() - setup_.margins.right();
  const double scale = printable * onePixelPerPoint / layout().document.width();
  printOn({setup_.paper, setup_.margins, qBound(smallestScale, scale, largestScale)});
}

bool leavesRoom(const PageSetup& setup) {
  const QSizeF room = setup.paper - QSizeF(setup.margins.left() + setup.margins.right(),
                                           setup.margins.top() + setup.margins.bottom());
  return room.width() >= 1 && room.height() >= 1;
}

}  // namespace

void printTall(const std::shared_ptr<web::Page>& page, const LowDocumentRule& lowDocument,
               const QString& path, std::function<void(Result<PrintedDocument>)> callback) {
  std::make_shared<TallPrint>(lowDocument, path, std::move(callback))->start(page, FlatPages::One);
}

void printPaginated(const std::shared_ptr<web::Page>& page, const PageSetup& setup,
                    const QString& path, std::function<void(Result<PrintedDocument>)> callback) {
  if (!leavesRoom(setup)) {
    return dispatch::mainAsync([callback = std::move(callback)] {
      callback(
          tl::unexpected(makeError(SetupImpossible, u"The margins leave no room on the paper."_s)));
    });
  }
  std::make_shared<PaginatedPrint>(setup, path, std::move(callback))->start(page, FlatPages::Many);
}

}  // namespace rendering
