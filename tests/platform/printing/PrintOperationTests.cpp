#include <QDir>

#include "PrintingTest.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/printing/PrintOperation.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;
using printing::PrintInfo;
using printing::PrintOperation;
using printing::PrintOutcome;
using printing::PrintPanel;

namespace {

/// Writes a document and remembers for which paper.
class View : public printing::PrintableView {
 public:
  QRectF frame() const override { return {0, 0, 800, 3000}; }
  bool isFlipped() const override { return true; }
  void printTo(const PrintInfo& info, const QString& path,
               std::function<void(MaybeError)> completion) override {
    paper = info.paperSize();
    writtenTo = path;
    QFile file(path);
    if (!error && (!file.open(QIODevice::WriteOnly) || file.write(document) < 0))
      error = Error{u"test"_s, 1, file.errorString()};
    dispatch::mainAsync([completion, error = error] { completion(error); });
  }

  QByteArray document;
  MaybeError error;
  QSizeF paper;
  QString writtenTo;
};

/// A user who has made up their mind.
class Panel : public PrintPanel {
 public:
  /// Cancels.
  Panel() = default;
  explicit Panel(const Answer& answer) : answer_(answer) {}
  void show(const PrintInfo&, std::function<void(std::optional<Answer>)> completion) override {
    completion(answer_);
  }

 private:
  std::optional<Answer> answer_;
};

class PrintOperationTest : public PrintingTest {
 protected:
  void SetUp() override {
    PrintingTest::SetUp();
    view->document = pdf(5000);
    saving.setJobDisposition(printing::JobDisposition::Save);
    saving.setJobSavingURL(QUrl::fromLocalFile(savedPath()));
    if (scheduler) before = scheduler->jobs();
  }
  void TearDown() override { PrintPanel::setShared({}); }

  QString savedPath() const { return folder.filePath(u"saved.pdf"_s); }

  /// The number of the job that came about, 0 for none.
  int newJob() const {
    for (const int job : scheduler->jobs())
      if (!before.contains(job)) return job;
    return 0;
  }

  enum class Ask { User, Nobody };
  Result<PrintOutcome> run(const PrintInfo& info, Ask ask) {
    const auto operation = PrintOperation::printOperationWithView(view, info);
    operation->setShowsPrintPanel(ask == Ask::User);
    operation->setPrintService(service);
    operation->setJobTitle(u"A page"_s);
    std::optional<Result<PrintOutcome>> result;
    operation->runOperation([&result](const auto& outcome) { result = outcome; });
    EXPECT_FALSE(result) << "the outcome came before the call returned";
    EXPECT_TRUE(support::waitFor([&result] { return result.has_value(); }));
    return result.value_or(failure(u"test"_s, 0, u"no end"_s));
  }

  std::shared_ptr<View> view = std::make_shared<View>();
  PrintInfo saving{PrintInfo::sharedPrintInfo()};
  QList<int> before;
};

TEST_F(PrintOperationTest, ASavedJobWritesItsFileAndAsksNobody) {
  PrintPanel::setShared(std::make_shared<Panel>());
  EXPECT_EQ(run(saving, Ask::Nobody), PrintOutcome::Finished);
  EXPECT_EQ(contents(savedPath()), view->document);
  EXPECT_EQ(newJob(), 0);
}

TEST_F(PrintOperationTest, TheChosenPrinterGetsTheDocumentLaidOutForTheChosenPaper) {
  PrintInfo chosen{QVariantMap()};
  chosen.setPaperSize({420, 595});
  PrintPanel::setShared(
      std::make_shared<Panel>(PrintPanel::Answer{{.queue = u"attic"_s, .copies = 2}, chosen}));
  EXPECT_EQ(run(saving, Ask::User), PrintOutcome::Finished);
  EXPECT_EQ(view->paper, QSizeF(420, 595));
  EXPECT_EQ(contents(savedPath()), view->document) << "the saved file is wanted as well";
  const int job = newJob();
  EXPECT_EQ(scheduler->document(job), view->document);
  const auto attributes = scheduler->attributes(job);
  EXPECT_EQ(attributes.value(u"copies"_s), u"2"_s);
  EXPECT_EQ(attributes.value(u"job-name"_s), u"A page"_s);
  EXPECT_TRUE(attributes.value(u"job-printer-uri"_s).endsWith(u"attic"_s));
}

TEST_F(PrintOperationTest, ACancelledPanelPrintsNothing) {
  PrintPanel::setShared(std::make_shared<Panel>());
  EXPECT_EQ(run(saving, Ask::User), PrintOutcome::Cancelled);
  EXPECT_TRUE(view->writtenTo.isEmpty());
  EXPECT_EQ(newJob(), 0);
}

TEST_F(PrintOperationTest, WithNobodyToAskTheDefaultPrinterGetsTheDocument) {
  EXPECT_EQ(run(saving, Ask::User), PrintOutcome::Finished);
  EXPECT_TRUE(scheduler->attributes(newJob()).value(u"job-printer-uri"_s).endsWith(u"office"_s));
}

TEST_F(PrintOperationTest, ASpooledJobLeavesNoFileBehind) {
  EXPECT_EQ(run(PrintInfo::sharedPrintInfo(), Ask::Nobody), PrintOutcome::Finished);
  EXPECT_EQ(scheduler->document(newJob()), view->document);
  EXPECT_FALSE(QFileInfo::exists(QFileInfo(view->writtenTo).path()));
}

TEST_F(PrintOperationTest, FailuresOfTheViewThePlaceAndThePrinterReachTheCaller) {
  PrintInfo nowhere = saving;
  nowhere.setJobSavingURL({});
  EXPECT_EQ(run(nowhere, Ask::Nobody).error().code, printing::ErrorSettings);
  PrintPanel::setShared(
      std::make_shared<Panel>(PrintPanel::Answer{{.queue = u"broken"_s}, saving}));
  EXPECT_EQ(run(saving, Ask::User).error().code, printing::ErrorRejected);
  view->error = Error{u"engine"_s, 7, u"The page is gone."_s};
  EXPECT_EQ(run(saving, Ask::User).error(), *view->error);
  EXPECT_EQ(newJob(), 0);
}

}  // namespace
