#include <gmock/gmock.h>

#include <QJsonArray>

#include "EngineFixture.h"
#include "platform/web/WebError.h"

using namespace Qt::StringLiterals;

namespace {

class EvaluationTest : public EngineTest {
 protected:
  void SetUp() override {
    web::PageConfiguration configuration;
    configuration.scripts = web::Scripts::Disabled;
    openPage(configuration);
    load({server.url(u"/"_s), u"<!DOCTYPE html><script>window.ran=1</script><p>Text"_s});
  }
};

TEST_F(EvaluationTest, WorksWithScriptsOff) {
  EXPECT_TRUE(evaluate(u"window.ran"_s)->isUndefined());
  EXPECT_EQ(text(u"document.body.innerText"_s).toStdString(), "Text");
  EXPECT_EQ(evaluate(u"Promise.resolve({a: [1, 'x', null]})"_s)->toObject(),
            (QJsonObject{{u"a"_s, QJsonArray{1, u"x"_s, QJsonValue::Null}}}));
}

TEST_F(EvaluationTest, ValuesThatJsonLacksAndBrokenTextCome) {
  EXPECT_TRUE(evaluate(u"0/0"_s)->isUndefined());
  EXPECT_TRUE(evaluate(u"null"_s)->isNull());
  // Half a surrogate pair, which strict readers of JSON refuse.
  EXPECT_EQ(text(u"'a\\ud83db'"_s).size(), 3);
  EXPECT_EQ(evaluate(u"'x'.repeat(3e7).length"_s)->toInt(), 30000000);
  EXPECT_EQ(text(u"'\\u00e9'.repeat(5e6)"_s).size(), 5000000);
}

TEST_F(EvaluationTest, ErrorsOfScriptsAndRefusalsNameTheirCause) {
  const auto thrown = evaluate(u"nothing.at.all"_s);
  ASSERT_FALSE(thrown);
  EXPECT_EQ(thrown.error().code, web::ScriptFailed);
  EXPECT_THAT(thrown.error().localizedDescription.toStdString(), ::testing::HasSubstr("nothing"));
  EXPECT_FALSE(evaluate(u"Promise.reject(new Error('late'))"_s));

  std::optional<Result<QJsonObject>> refused;
  page->send(u"Page.noSuchThing"_s, {},
             [&refused](Result<QJsonObject> reply) { refused = std::move(reply); });
  ASSERT_TRUE(support::waitFor([&refused] { return refused.has_value(); }));
  ASSERT_FALSE(*refused);
  EXPECT_EQ(refused->error().code, web::CommandRefused);
  EXPECT_THAT(refused->error().localizedDescription.toStdString(),
              ::testing::HasSubstr("Page.noSuchThing"));
}

TEST_F(EvaluationTest, ACommandWithoutAReplyEndsWithItsTimeOut) {
  std::optional<Result<QJsonValue>> value;
  page->evaluate(
      u"new Promise(() => {})"_s, [&value](auto result) { value = std::move(result); },
      std::chrono::milliseconds(100));
  ASSERT_TRUE(support::waitFor([&value] { return value.has_value(); }));
  ASSERT_FALSE(*value);
  EXPECT_EQ(value->error().code, web::CommandTimedOut);
  EXPECT_EQ(evaluate(u"1 + 1"_s)->toInt(), 2);
}

TEST_F(EvaluationTest, PicturesComeDecoded) {
  std::optional<Result<web::DataReply>> reply;
  page->sendForData(u"Page.captureScreenshot"_s, {{u"format"_s, u"png"_s}}, {"data", {}},
                    [&reply](Result<web::DataReply> result) { reply = std::move(result); });
  ASSERT_TRUE(support::waitFor([&reply] { return reply.has_value(); }));
  ASSERT_TRUE(*reply);
  EXPECT_TRUE((*reply)->data.startsWith("\x89PNG"));
  EXPECT_TRUE((*reply)->data.endsWith("IEND\xae\x42\x60\x82"));

  reply.reset();
  page->sendForData(u"Page.captureScreenshot"_s, {{u"format"_s, u"png"_s}}, {"nothing", {}},
                    [&reply](Result<web::DataReply> result) { reply = std::move(result); });
  ASSERT_TRUE(support::waitFor([&reply] { return reply.has_value(); }));
  ASSERT_FALSE(*reply);
  EXPECT_EQ(reply->error().code, web::DamagedReply);
}

TEST_F(EvaluationTest, ClosedPagesAnswerEveryCommand) {
  std::vector<int> codes;
  const auto record = [&codes](const Result<QJsonValue>& value) {
    codes.push_back(value.error().code);
  };
  page->evaluate(u"new Promise(() => {})"_s, record);
  page->close();
  page->evaluate(u"1"_s, record);
  EXPECT_TRUE(codes.empty());
  ASSERT_TRUE(support::waitFor([&codes] { return codes.size() == 2; }));
  EXPECT_THAT(codes, ::testing::Each(web::PageClosed));

  // Before it was ever there, and by dropping it.
  engine()->createPage()->evaluate(u"1"_s, record);
  ASSERT_TRUE(support::waitFor([&codes] { return codes.size() == 3; }));
}

}  // namespace
