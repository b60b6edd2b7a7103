#include "intake/RequestInput.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QBuffer>
#include <QFile>
#include <thread>

#include "Requests.h"
#include "delivery/CVUtils.h"

using namespace Qt::StringLiterals;

namespace {

Result<QString> read(QByteArray bytes, qint64 limit = 16) {
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  return RequestInput::readRequestText(buffer, limit);
}

TEST(RequestInput, ReadsTextAndLeavesLineBreaksBehindItOut) {
  EXPECT_EQ(read("corvxurl://é\r\n").value(), u"corvxurl://é"_s);
  EXPECT_EQ(read("exactly 16 bytes").value(), u"exactly 16 bytes"_s);
}

TEST(RequestInput, RefusesWhatIsNoRequest) {
  EXPECT_EQ(read("17 bytes are more").error().code, RequestInput::TooLarge);
  EXPECT_EQ(read("\n\n").error().code, RequestInput::Empty);
  EXPECT_EQ(read("\xFF\xFE").error().code, RequestInput::NotText);
  QFile folder(u"/"_s);
  EXPECT_EQ(RequestInput::readRequestText(folder).error().code, RequestInput::Unreadable);
}

TEST(RequestInput, ReadsAPipeThatComesInPieces) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const QByteArray piece(300'000, 'x');
  std::thread writer([&] {
    for (int i = 0; i < 10; ++i)
      EXPECT_EQ(write(ends[1], piece.constData(), static_cast<size_t>(piece.size())), piece.size());
    close(ends[1]);
  });
  QFile reader;
  ASSERT_TRUE(reader.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
  const auto text = RequestInput::readRequestText(reader);
  writer.join();
  ASSERT_TRUE(text) << text.error().localizedDescription.toStdString();
  EXPECT_EQ(text->size(), 10 * piece.size());
}

TEST(RequestInput, ACapturedPageIsMergedAndNeedsAWebAddress) {
  const CVUtils utils({});
  const auto page = RequestInput::capturedPage(
      requests::fullRequest(u"corvxurls://a.example/"_s, u"<script></script>P"_s, u"S"_s, u""_s),
      utils);
  ASSERT_TRUE(page);
  EXPECT_EQ(page->url, QUrl(u"https://a.example/"_s));
  EXPECT_EQ(page->source, u"P"_s);
  EXPECT_FALSE(RequestInput::capturedPage(u"corvxurl://a.example/"_s, utils)->source);
  EXPECT_EQ(RequestInput::capturedPage(u"file:///etc/passwdcorvxdata::UA=="_s, utils).error().code,
            RequestInput::NoAddress);
}

}  // namespace
