#include "platform/rendering/PrintToFile.h"

#include <QFile>
#include <QJsonObject>

#include "platform/base/Identifier.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/rendering/RenderingError.h"
#include "platform/web/Page.h"
#include "platform/web/WebError.h"

namespace rendering {
namespace {

using namespace Qt::StringLiterals;

constexpr double pointsPerInch = 72;
/// A page of a hundred thousand pixels with its tags takes the engine many seconds.
constexpr std::chrono::minutes printTimeout{5};
constexpr int bytesPerRead = 4 * 1024 * 1024;

Error notWritten(const QString& target, const QString& reason) {
  return makeError(FileNotWritten, u"\"%1\" could not be written: %2."_s.arg(target, reason));
}

QJsonObject printParameters(const PrintPaper& paper) {
  return {{"paperWidth"_L1, paper.size.width() / pointsPerInch},
          {"paperHeight"_L1, paper.size.height() / pointsPerInch},
          {"marginTop"_L1, 0},
          {"marginBottom"_L1, 0},
          {"marginLeft"_L1, 0},
          {"marginRight"_L1, 0},
          {"scale"_L1, paper.scale},
          {"printBackground"_L1, true},
          {"preferCSSPageSize"_L1, false},
          {"generateTaggedPDF"_L1, true},
          {"generateDocumentOutline"_L1, true},
          {"transferMode"_L1, u"ReturnAsStream"_s}};
}

/// One print, from the command to the counted file; kept by the callbacks of its steps.
class PrintTransfer : public std::enable_shared_from_this<PrintTransfer> {
 public:
  using Callback = std::function<void(Result<std::shared_ptr<PrintRun>>)>;

  PrintTransfer(std::shared_ptr<web::Page> page, const PrintPaper& paper, const QString& target,
                Callback callback)
      : page_(std::move(page)),
        paper_(paper),
        target_(target),
        callback_(std::move(callback)),
        run_(std::make_shared<PrintRun>(target)),
        output_(run_->path()) {}

  void start();

 private:
  void open(const Result<QJsonObject>& reply);
  void read();
  void write(const web::DataReply& reply);
  MaybeError append(const QByteArray& data);
  void end(const Result<std::shared_ptr<PrintRun>>& result);

  std::shared_ptr<web::Page> page_;
  PrintPaper paper_;
  QString target_;
  Callback callback_;
  std::shared_ptr<PrintRun> run_;
  /// Used by one worker at a time.
  QFile output_;
  QString stream_;
};

void PrintTransfer::start() {
  page_->send(
      u"Page.printToPDF"_s, printParameters(paper_),
      [self = shared_from_this()](const Result<QJsonObject>& reply) { self->open(reply); },
      printTimeout);
}

void PrintTransfer::open(const Result<QJsonObject>& reply) {
  if (!reply) {
    if (reply.error().code != web::CommandRefused) return end(tl::unexpected(reply.error()));
    const QString text = u"The page engine could not print on paper of %1 x %2 points: %3"_s;
    return end(
        tl::unexpected(makeError(NotPrintable, text.arg(paper_.size.width(), 0, 'f', 0)
                                                   .arg(paper_.size.height(), 0, 'f', 0)
                                                   .arg(reply.error().localizedDescription))));
  }
  stream_ = reply->value("stream"_L1).toString();
  if (!output_.open(QFile::WriteOnly | QFile::NewOnly)) {
    return end(tl::unexpected(notWritten(target_, output_.errorString())));
  }
  read();
}

void PrintTransfer::read() {
  page_->sendForData(u"IO.read"_s, {{"handle"_L1, stream_}, {"size"_L1, bytesPerRead}},
                     {"data", {}},
                     [self = shared_from_this()](const Result<web::DataReply>& reply) {
                       reply ? self->write(*reply) : self->end(tl::unexpected(reply.error()));
                     });
}

void PrintTransfer::write(const web::DataReply& reply) {
  const bool last = reply.rest.value("eof"_L1).toBool();
  dispatch::globalAsync(dispatch::Priority::High, [self = shared_from_this(), reply, last] {
    MaybeError error = self->append(reply.data);
    if (last && !error) error = self->run_->open();
    dispatch::mainAsync([self, error, last] {
      if (error) return self->end(tl::unexpected(*error));
      last ? self->end(self->run_) : self->read();
    });
  });
}

MaybeError PrintTransfer::append(const QByteArray& data) {
  if (output_.write(data) == data.size() && output_.flush()) return {};
  return notWritten(target_, output_.errorString());
}

void PrintTransfer::end(const Result<std::shared_ptr<PrintRun>>& result) {
  if (!stream_.isEmpty()) page_->send(u"IO.close"_s, {{"handle"_L1, stream_}});
  callback_(result);
}

}  // namespace

PrintRun::PrintRun(const QString& target)
    : target_(target), path_(u"%1.%2.part"_s.arg(target, newUniversallyUniqueIdentifier())) {}

PrintRun::~PrintRun() {
  QFile::remove(path_);
}

MaybeError PrintRun::open() {
  auto pages = pdf::PrintedPages::open(path_);
  if (!pages) return pages.error();
  pages_ = std::move(*pages);
  return {};
}

MaybeError PrintRun::moveToTarget(const pdf::PageFit& fit) const {
  return pages_->write(fit, target_);
}

void printToFile(const std::shared_ptr<web::Page>& page, const PrintPaper& paper,
                 const QString& target,
                 std::function<void(Result<std::shared_ptr<PrintRun>>)> callback) {
  std::make_shared<PrintTransfer>(page, paper, target, std::move(callback))->start();
}

}  // namespace rendering
