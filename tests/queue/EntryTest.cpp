#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "queue/CVEntry.h"

using namespace Qt::StringLiterals;
using testing::_;
using testing::NiceMock;

namespace {

class Observer : public CVEntryDelegate {
 public:
  using Image = std::shared_ptr<const imaging::Image>;
  MOCK_METHOD(void, entryCurrentURLChanged, (CVEntry&, const std::optional<QUrl>&), (override));
  MOCK_METHOD(void, entryRepresentativeImageChanged, (CVEntry&, const Image&), (override));
  MOCK_METHOD(void, entryTitleChanged, (CVEntry&, const std::optional<QString>&), (override));
  MOCK_METHOD(void, entryCompletionFactorChanged, (CVEntry&, double), (override));
  MOCK_METHOD(void, entryError, (CVEntry&, const std::shared_ptr<CVError>&), (override));
  MOCK_METHOD(void, entryStateChanged, (CVEntry&, CVEntryState), (override));
};

std::shared_ptr<const imaging::Image> picture(int width, int height) {
  QImage pixels(width, height, QImage::Format_RGB32);
  pixels.fill(Qt::red);
  return std::make_shared<const imaging::Image>(pixels);
}

TEST(Entry, BeginsWaitingAndEmpty) {
  const CVEntry entry(QUrl(u"http://localhost/"_s));
  EXPECT_EQ(entry.state(), CVEntryStateWaiting);
  EXPECT_EQ(entry.completionFactor(), 0.0);
  EXPECT_FALSE(entry.error());
  EXPECT_FALSE(entry.title());
  EXPECT_FALSE(entry.currentURL());
}

TEST(Entry, TheObserverHearsStoredValuesAndRepetitions) {
  const auto observer = std::make_shared<NiceMock<Observer>>();
  CVEntry entry(QUrl(u"http://localhost/"_s));
  entry.setDelegate(observer);
  EXPECT_CALL(*observer, entryTitleChanged(_, std::optional(u"A  B said no"_s)));
  EXPECT_CALL(*observer, entryStateChanged(_, CVEntryStateDownloading)).Times(2);
  EXPECT_CALL(*observer, entryError(_, std::shared_ptr<CVError>()));
  // An observer that asks back sees the new value: it is stored before it is told.
  EXPECT_CALL(*observer, entryCompletionFactorChanged(_, 0.5)).WillOnce([](CVEntry& told, double) {
    EXPECT_EQ(told.completionFactor(), 0.5);
  });
  entry.setTitle(u"A//B \"said\" no"_s);
  entry.setState(CVEntryStateDownloading);
  entry.setState(CVEntryStateDownloading);
  entry.setError(nullptr);
  entry.setCompletionFactor(0.5);
}

TEST(Entry, AVanishedObserverIsNone) {
  auto observer = std::make_shared<NiceMock<Observer>>();
  CVEntry entry(QUrl(u"http://localhost/"_s));
  entry.setDelegate(observer);
  observer.reset();
  EXPECT_EQ(entry.delegate(), nullptr);
  entry.setTitle(std::nullopt);
  EXPECT_FALSE(entry.title());
}

TEST(Entry, ThumbnailsFitTheirBox) {
  CVEntry entry(QUrl(u"http://localhost/"_s));
  entry.setRepresentativeImage(picture(920, 2000));
  ASSERT_TRUE(entry.representativeImage());
  EXPECT_EQ(entry.representativeImage()->size(), QSizeF(128, 92));
  const QImage pixels = entry.representativeImage()->pixels();
  EXPECT_EQ(pixels.pixelColor(2, pixels.height() / 2).alpha(), 0);
  EXPECT_EQ(pixels.pixelColor(pixels.width() / 2, pixels.height() / 2), QColor(Qt::red));
  entry.setRepresentativeImage(std::make_shared<const imaging::Image>(QImage()));
  EXPECT_FALSE(entry.representativeImage());
}

}  // namespace
