#include "platform/browsers/MessageFrame.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/browsers/BrowserError.h"
#include "platform/browsers/ChunkedText.h"

using namespace Qt::StringLiterals;
using namespace browsers;

namespace {

QByteArray header(quint32 length) {
  QByteArray bytes(4, '\0');
  std::memcpy(bytes.data(), &length, 4);
  return bytes;
}

QJsonObject chunk(int identifier, int sequence, int total, const QJsonValue& text) {
  return {{u"id"_s, identifier}, {u"seq"_s, sequence}, {u"total"_s, total}, {u"text"_s, text}};
}

TEST(MessageReader, MessagesComeOutWholeHoweverTheStreamIsCut) {
  const QJsonObject first{{u"text"_s, u"Grüße \U0001F600"_s}};
  const QByteArray stream = framed(first) + framed({});
  for (qsizetype cut = 0; cut <= stream.size(); ++cut) {
    MessageReader reader;
    QList<QJsonObject> messages;
    for (const QByteArray& part : {stream.first(cut), stream.sliced(cut)}) {
      reader.append(part);
      for (auto next = reader.next(); next && *next; next = reader.next())
        messages << **next;
    }
    ASSERT_EQ(messages, (QList<QJsonObject>{first, {}})) << cut;
    EXPECT_TRUE(reader.isAtBoundary());
  }
}

TEST(MessageReader, RefusesWhatIsNoMessage) {
  struct Case {
    const char* name;
    QByteArray stream;
    int code;
  };
  const Case cases[] = {
      {"nothing in it", header(0), BadMessage},
      {"no JSON", header(3) + "{a}", BadMessage},
      {"no object", header(2) + "[]", BadMessage},
      {"no UTF-8", header(7) + "{\"\xff\":1}", BadMessage},
      {"one byte above the limit, announced only", header(longestMessageIn + 1), TooLarge},
      {"as long as can be said", header(0xffffffffU), TooLarge},
  };
  for (const Case& item : cases) {
    MessageReader reader;
    reader.append(item.stream);
    const auto message = reader.next();
    ASSERT_FALSE(message) << item.name;
    EXPECT_EQ(message.error().code, item.code) << item.name;
  }
}

TEST(MessageReader, TakesAMessageOfExactlyTheLimit) {
  const QByteArray start = "{\"text\":\"", end = "\"}";
  const auto filling = static_cast<qsizetype>(longestMessageIn) - start.size() - end.size();
  MessageReader reader;
  reader.append(header(longestMessageIn) + start + QByteArray(filling, 'x'));
  ASSERT_TRUE(reader.next());
  reader.append(end);
  const auto message = reader.next();
  ASSERT_TRUE(message && *message);
  EXPECT_EQ((*message)->value(u"text"_s).toString().size(), filling);
}

TEST(ChunkedText, PutsPiecesTogetherAndBeginsAnew) {
  ChunkedText text;
  for (int round = 1; round <= 2; ++round) {
    EXPECT_EQ(*text.add(chunk(round, 0, 3, u"a"_s)), std::nullopt);
    EXPECT_EQ(*text.add(chunk(round, 1, 3, u"b"_s)), std::nullopt);
    EXPECT_EQ(*text.add(chunk(round, 2, 3, u"c"_s)), u"abc"_s);
  }
}

TEST(ChunkedText, RefusesPiecesThatDoNotFit) {
  const QJsonObject wrong[] = {
      chunk(1, 2, 3, u"skipped"_s),     chunk(1, 0, 3, u"repeated"_s),
      chunk(2, 1, 3, u"another"_s),     chunk(1, 1, 4, u"more of them"_s),
      chunk(1, 1, 3, QJsonValue(7)),    chunk(1, 1, 3, QJsonValue()),
      {{u"kind"_s, u"nothing else"_s}},
  };
  for (const QJsonObject& piece : wrong) {
    ChunkedText text;
    ASSERT_TRUE(text.add(chunk(1, 0, 3, u"a"_s)));
    EXPECT_FALSE(text.add(piece));
    EXPECT_EQ(*text.add(chunk(5, 0, 1, u"anew"_s)), u"anew"_s);
  }
  EXPECT_FALSE(ChunkedText().add(chunk(1, 0, 0, u""_s)));
  EXPECT_FALSE(ChunkedText().add(chunk(1, 0, ChunkedText::mostChunks + 1, u""_s)));
}

}  // namespace
