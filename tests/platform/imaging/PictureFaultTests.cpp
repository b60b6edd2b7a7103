#include <sys/resource.h>

#include <QDir>
#include <atomic>
#include <csignal>

#include "TestPictures.h"
#include "platform/dispatch/Dispatch.h"
#include "platform/imaging/ImagingError.h"
#include "support/Wait.h"

namespace imaging {
namespace {

using namespace Qt::StringLiterals;

class PictureFault : public PictureTest {};

/// No file may become longer: a full disk, as far as the writers can tell.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &limit_);
    rlimit lower = limit_;
    lower.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &lower);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &limit_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit limit_{};
  void (*handler_)(int) = nullptr;
};

TEST_F(PictureFault, aFullDiskEndsInAnErrorAndTheOldFileStays) {
  const QImage page = pageLike({400, 800});
  ASSERT_FALSE(writePicture(path(u"source"_s), page, BitmapFileType::PNG));
  writeBytes(path(u"p"_s), "old");
  for (const BitmapFormat& format : bitmapFormats()) {
    SCOPED_TRACE(format.name.toStdString());
    const FullDisk full(32 * 1024);
    const auto converted = convertPicture(path(u"source"_s), path(u"p"_s), format.type, 1);
    const auto written = writePicture(path(u"p"_s), page, format.type);
    ASSERT_TRUE(converted && written);
    for (const Error& error : {*converted, *written}) {
      EXPECT_EQ(error.code, int(ImagingError::CannotWrite));
      EXPECT_TRUE(error.localizedDescription.startsWith(u"The file \"p\" could not be written"_s))
          << error.localizedDescription.toStdString();
    }
  }
  EXPECT_EQ(bytesOf(path(u"p"_s)), "old");
  EXPECT_EQ(filesInFolder(), QStringList({u"p"_s, u"source"_s}));
}

TEST_F(PictureFault, aDamagedSourceEndsInAnErrorAndNoFile) {
  ASSERT_FALSE(writePicture(path(u"png"_s), pageLike({300, 400}), BitmapFileType::PNG));
  ASSERT_FALSE(writePicture(path(u"jpeg"_s), pageLike({300, 400}), BitmapFileType::JPEG));
  const QByteArray png = bytesOf(path(u"png"_s));
  QByteArray changed = png;
  changed[changed.size() / 2] = char(changed[changed.size() / 2] ^ 0x55);
  const QByteArray sources[] = {png.first(png.size() / 2),
                                png.first(40),
                                changed,
                                bytesOf(path(u"jpeg"_s)).first(20'000),
                                "<html>no picture</html>",
                                QByteArray(5'000, '\0'),
                                {}};
  for (const BitmapFormat& format : bitmapFormats()) {
    for (const QByteArray& source : sources) {
      SCOPED_TRACE((format.name + u' ' + QString::number(source.size())).toStdString());
      const auto error = convertPictureData(source, path(u"p"_s), format.type, 1);
      ASSERT_TRUE(error);
      EXPECT_EQ(error->code, int(ImagingError::CannotRead));
    }
  }
  EXPECT_TRUE(convertPicture(path(u"none"_s), path(u"p"_s), BitmapFileType::JPEG, 1));
  EXPECT_EQ(filesInFolder(), QStringList({u"jpeg"_s, u"png"_s}));
}

TEST_F(PictureFault, rowsThatAreMissingTooManyOrTooWideMakeNoFile) {
  for (const BitmapFormat& format : bitmapFormats()) {
    SCOPED_TRACE(format.name.toStdString());
    const auto writer = [&] {
      return std::move(*PictureWriter::create(path(u"p"_s), {10, 20}, format.type));
    };
    writer();
    auto missing = writer();
    EXPECT_FALSE(missing->append(pageLike({10, 19})));
    EXPECT_TRUE(missing->finish());
    auto tooMany = writer();
    EXPECT_FALSE(tooMany->append(pageLike({10, 19})));
    EXPECT_TRUE(tooMany->append(pageLike({10, 2})));
    EXPECT_TRUE(tooMany->append(pageLike({10, 1}))) << "an error stays";
    EXPECT_TRUE(tooMany->finish());
    auto tooWide = writer();
    EXPECT_TRUE(tooWide->append(pageLike({11, 20})));
    EXPECT_TRUE(tooWide->append({}));
  }
  EXPECT_EQ(filesInFolder(), QStringList());
}

TEST_F(PictureFault, aPlaceThatCannotBeWrittenIsNoticedBeforeTheWork) {
  ASSERT_TRUE(QDir().mkdir(path(u"folder"_s)));
  for (const BitmapFormat& format : bitmapFormats()) {
    for (const QString& place : {path(u"none/p"_s), path(u"folder"_s)}) {
      const auto error = writePicture(place, pageLike({10, 10}), format.type);
      ASSERT_TRUE(error);
      EXPECT_EQ(error->code, int(ImagingError::CannotWrite));
    }
    EXPECT_FALSE(PictureWriter::create(path(u"p"_s), {0, 10}, format.type));
  }
  EXPECT_EQ(filesInFolder(), QStringList());
}

TEST_F(PictureFault, conversionsOfSeveralThreadsDoNotMeet) {
  const QImage page = pageLike({200, 600});
  ASSERT_FALSE(writePicture(path(u"source"_s), page, BitmapFileType::PNG));
  std::atomic<int> right = 0;
  std::atomic<int> done = 0;
  for (int i = 0; i < 12; ++i) {
    dispatch::globalAsync(dispatch::Priority::Default, [&, i] {
      const bool damaged = i % 4 == 3;
      const QString target = path(QString::number(i));
      const QByteArray bytes = bytesOf(path(u"source"_s));
      const auto error =
          convertPictureData(damaged ? bytes.first(9'000) : bytes, target,
                             i % 2 ? BitmapFileType::TIFF : BitmapFileType::JPEG2000, 1);
      if (damaged ? error.has_value() : !error && difference(decoded(target), page).largest == 0)
        ++right;
      ++done;
    });
  }
  ASSERT_TRUE(support::waitFor([&] { return done == 12; }));
  EXPECT_EQ(right, 12);
}

}  // namespace
}  // namespace imaging
