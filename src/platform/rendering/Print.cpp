#include "platform/rendering/Print.h"

#include <QLocale>
#include <array>

#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/FlatDocument.h"
#include "platform/rendering/PageScript.h"
#include "platform/rendering/PrintPlan.h"
#include "platform/rendering/PrintToFile.h"
#include "platform/rendering/RenderingError.h"
#include "platform/rendering/SettledStyles.h"
#include "platform/web/Page.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

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
  void print(const PrintPlan& plan);
  virtual void printed(int /*pages*/) { finish(); }
  void finish();
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
  PrintPlan plan_;
  std::shared_ptr<PrintRun> run_;
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

void PrintJob::print(const PrintPlan& plan) {
  plan_ = plan;
  printToFile(document_->page(), plan.paper, path_, [self = shared_from_this()](const auto& run) {
    if (!run) return self->end(tl::unexpected(run.error()));
    self->run_ = *run;
    self->printed((*run)->pageCount());
  });
}

void PrintJob::finish() {
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this()] {
    const MaybeError error = self->run_->moveToTarget(self->plan_.fit);
    dispatch::mainAsync([self, error] {
      if (error) return self->end(tl::unexpected(*error));
      self->end(PrintedDocument{self->run_->pageCount(), self->plan_.fit.paper});
    });
  });
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
  void print() override;
  void printed(int pages) override;

 private:
  double documentHeight() const {
    return qMax(1.0, lowDocument_.heightFor(layout().document.height()));
  }
  void printHigher(double rows);

  const LowDocumentRule lowDocument_;
  size_t attempt_ = 0;
};

void TallPrint::print() {
  if (documentHeight() <= highestTallPage) return printHigher(heightCorrections.front());
  const QLocale locale(QLocale::English);
  const auto number = [&locale](double points) { return locale.toString(points, 'f', 0); };
  const QString text =
      u"A PDF page holds at most %1 points of height, and this page has %2. PDF with pagination, PNG and TIFF hold pages of that size."_s;
  end(tl::unexpected(
      makeError(TooHigh, text.arg(number(highestTallPage), number(documentHeight())))));
}

void TallPrint::printHigher(double rows) {
  PrintJob::print(planTall({layout().document.width(), documentHeight() + rows}));
}

void TallPrint::printed(int pages) {
  if (pages == 1) return finish();
  ++attempt_;
  if (attempt_ < heightCorrections.size()) return printHigher(heightCorrections[attempt_]);
  if (attempt_ == heightCorrections.size()) {
    return printHigher(layout().document.height() * (pages - 1));
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

void PaginatedPrint::print() {
  PrintJob::print(planPaginated(setup_, layout().document));
}

}  // namespace

void printTall(const std::shared_ptr<web::Page>& page, const LowDocumentRule& lowDocument,
               const QString& path, std::function<void(Result<PrintedDocument>)> callback) {
  std::make_shared<TallPrint>(lowDocument, path, std::move(callback))->start(page, FlatPages::One);
}

void printPaginated(const std::shared_ptr<web::Page>& page, const PageSetup& setup,
                    const QString& path, std::function<void(Result<PrintedDocument>)> callback) {
  if (const QSizeF room = printableSize(setup); room.width() < 1 || room.height() < 1) {
    return dispatch::mainAsync([callback = std::move(callback)] {
      callback(
          tl::unexpected(makeError(SetupImpossible, u"The margins leave no room on the paper."_s)));
    });
  }
  std::make_shared<PaginatedPrint>(setup, path, std::move(callback))->start(page, FlatPages::Many);
}

}  // namespace rendering
