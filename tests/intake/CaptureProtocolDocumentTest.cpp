#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "delivery/CVUtils.h"
#include "intake/CapturePayload.h"
#include "intake/FrameList.h"
#include "intake/PageMerging.h"

using namespace Qt::StringLiterals;

namespace {

/// The blocks of the document by the name in the comment above each: "<!-- example: name -->".
QHash<QString, QString> examples() {
  QFile file(QStringLiteral(CORVALIS_SOURCE_DIR "/docs/capture-protocol.md"));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QRegularExpression block(u"<!-- example: (\\S+) -->\\n+```\\w*\\n(.*?)\\n```"_s,
                                 QRegularExpression::DotMatchesEverythingOption);
  QHash<QString, QString> found;
  auto matches = block.globalMatch(QString::fromUtf8(file.readAll()));
  while (matches.hasNext()) {
    const auto match = matches.next();
    found.insert(match.captured(1), match.captured(2));
  }
  return found;
}

TEST(CaptureProtocolDocument, TheWorkedExampleIsTrue) {
  const auto blocks = examples();
  ASSERT_TRUE(blocks.contains(u"request"_s));
  // The document breaks the request into lines to be read.
  QString request = blocks[u"request"_s];
  request.remove(u'\n');
  const auto payload = CapturePayload::decode(request);
  ASSERT_EQ(payload.kind, CapturePayload::Kind::Page);
  EXPECT_FALSE(payload.isFromOldBookmarklet());
  ASSERT_TRUE(payload.address && payload.page && payload.styles && payload.frames);
  EXPECT_EQ(payload.address->toString(), blocks[u"address"_s]);
  EXPECT_EQ(*payload.page, blocks[u"page"_s]);
  EXPECT_EQ(*payload.styles, blocks[u"styles"_s]);
  FrameList frames(*payload.frames);
  EXPECT_EQ(FrameList::decodeItem(frames.next()), blocks[u"frame"_s]);
  const QString merged = PageMerging::withFrames(
      PageMerging::withStyles(*payload.page, *payload.styles), *payload.frames);
  EXPECT_EQ(merged, blocks[u"result"_s]);
}

}  // namespace
