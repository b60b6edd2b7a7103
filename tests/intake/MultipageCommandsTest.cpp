#include <QFile>
#include <QTemporaryDir>

#include "DelegateFixture.h"

using namespace Qt::StringLiterals;

namespace {

class MultipageCommands : public delegate_test::DelegateFixture {
 protected:
  MultipageCommands() { launch(); }

  std::shared_ptr<delegate_test::TestEntry> add(const QString& pdf, CVEntryState state) {
    const auto added = std::make_shared<delegate_test::TestEntry>(QUrl(u"http://a.example/"_s),
                                                                  std::nullopt, false, QSizeF());
    added->setState(state);
    if (!pdf.isEmpty()) added->pdf = QUrl::fromLocalFile(folder_.filePath(pdf));
    table->addEntry(added);
    return added;
  }

  QByteArray contents(const QString& name) const {
    QFile file(folder_.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
  }

  QTemporaryDir folder_;
};

TEST_F(MultipageCommands, SavesEveryEntrysPDFInOrderOverWhatIsThere) {
  const auto first = add(u"1.pdf"_s, CVEntryStateDone);
  add(u""_s, CVEntryStateDownloaded);
  add(u"2.pdf"_s, CVEntryStateWaiting);
  QFile old(folder_.filePath(u"all.pdf"_s));
  ASSERT_TRUE(old.open(QIODevice::WriteOnly));
  old.write("older and longer than the new one");
  old.close();
  window.chosen = QUrl::fromLocalFile(folder_.filePath(u"all"_s));
  delegate->saveAsMultipagePDFImage();
  settle();
  EXPECT_EQ(contents(u"all.pdf"_s), "1.pdf\n2.pdf\n");
  EXPECT_EQ(first->requestedMode, u"Image"_s);
  EXPECT_EQ(window.states, (QStringList{u"Creating Multipage PDF..."_s, u""_s}));
}

TEST_F(MultipageCommands, ACancelledPanelChangesNothing) {
  const auto only = add(u"1.pdf"_s, CVEntryStateDone);
  delegate->saveAsMultipagePDFVector();
  delegate->performPDFMergingForURLs({QUrl(u"file:///a.pdf"_s), QUrl(u"file:///b.pdf"_s)});
  settle();
  EXPECT_EQ(only->requestedMode, QString());
  EXPECT_TRUE(window.isIdle());
}

TEST_F(MultipageCommands, WaitsForAnEntryThatIsAtWork) {
  const auto working = add(u"1.pdf"_s, CVEntryStateProcessing);
  std::optional<std::optional<QUrl>> result;
  delegate->createMultipagePDFTemporaryFileWithConversionMode(
      u"Vector"_s, [&](const std::optional<QUrl>& file) {
        dispatch::mainAsync([&result, file] { result = file; });
      });
  ASSERT_TRUE(support::waitFor([&] { return window.spins; }));
  EXPECT_EQ(working->requestedMode, QString());
  working->setState(CVEntryStateDone);
  delegate->entryTableControllerStateOfEntriesChanged(*table);
  ASSERT_TRUE(support::waitFor([&] { return result.has_value(); }));
  EXPECT_TRUE(*result && QFile::exists((*result)->toLocalFile()));
}

TEST_F(MultipageCommands, AQueueThatYieldsNoPDFEndsSilently) {
  add(u""_s, CVEntryStateDownloaded);
  window.chosen = QUrl::fromLocalFile(folder_.filePath(u"all"_s));
  delegate->saveAsMultipagePDFVector();
  settle();
  EXPECT_EQ(contents(u"all.pdf"_s), "missing");
  EXPECT_TRUE(window.isIdle());
}

}  // namespace
