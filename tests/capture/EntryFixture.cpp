#include "EntryFixture.h"

#include <QDir>

#include "platform/defaults/UserDefaults.h"
#include "settings/CVObjectRepository.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

using Step = void (CVURLEntry::*)(CVEntry::Completion);

MaybeError run(const std::shared_ptr<CVURLEntry>& entry, Step step) {
  struct Outcome {
    std::mutex mutex;
    bool ended = false;
    MaybeError error;
  };
  const auto outcome = std::make_shared<Outcome>();
  ((*entry).*step)([outcome](const std::shared_ptr<CVEntry>&, const MaybeError& error) {
    std::lock_guard lock(outcome->mutex);
    EXPECT_FALSE(outcome->ended) << "a completion came twice";
    outcome->ended = true;
    outcome->error = error;
  });
  const bool ended = support::waitFor(
      [&] {
        std::lock_guard lock(outcome->mutex);
        return outcome->ended;
      },
      std::chrono::seconds(60));
  EXPECT_TRUE(ended) << "the step did not end";
  std::lock_guard lock(outcome->mutex);
  return outcome->error;
}

}  // namespace

EntryFixture::EntryFixture()
    : utils(std::make_shared<CVUtils>(CVUtils::Services())),
      settings(std::make_shared<CVDefaultPreferences>(defaults::UserDefaults::inMemory())) {
  services.engine = web::Engine::shared();
  settings->setProcessAutomatically(true);
  settings->setDownloadLocation(QUrl::fromLocalFile(output.path()));
  CVObjectRepository& repository = CVObjectRepository::singleton();
  repository.addObject(utils, u"utils"_s);
  repository.addObject(settings, u"preferences"_s);
}

std::shared_ptr<CVURLEntry> EntryFixture::entryFor(const QUrl& url,
                                                   const std::optional<QString>& source,
                                                   QSizeF forcedSize) const {
  return std::make_shared<CVURLEntry>(services, url, source, false, forcedSize);
}

QUrl EntryFixture::page(const QString& markup, const QString& name) const {
  QFile file(folder.filePath(name));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(markup.toUtf8());
  return QUrl::fromLocalFile(file.fileName());
}

MaybeError EntryFixture::prepare(const std::shared_ptr<CVURLEntry>& entry) {
  return run(entry, &CVURLEntry::prepareWithCompletion);
}

MaybeError EntryFixture::process(const std::shared_ptr<CVURLEntry>& entry) {
  return run(entry, &CVURLEntry::processWithCompletion);
}

QStringList EntryFixture::results() const {
  return QDir(output.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}
