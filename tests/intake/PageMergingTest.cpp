#include "intake/PageMerging.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <random>

#include "Requests.h"
#include "delivery/CVUtils.h"
#include "intake/ElementMatcher.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVObjectRepository.h"

using namespace Qt::StringLiterals;
using requests::encoded;

namespace {

QString styled(const QString& page) {
  return PageMerging::withStyles(page, u"S"_s);
}

const QString styleElement = u"<style type=\"text/css\" media=\"screen\">S</style></head>"_s;

struct Case {
  QString page;
  QString expected;
};

TEST(PageMerging, ScriptsStylesAndBareNoscriptsGoAndStylesStandAtTheHeadsEnd) {
  const Case cases[] = {
      {u"plain text"_s, u"plain text"_s},
      {u"a<SCRIPT src=x>\nlet\u2028y\n</ScRiPt>b"_s, u"ab"_s},
      {u"<script>1</script>kept<script>2</script>"_s, u"kept"_s},
      {u"<script</script>a</script>"_s, u"a</script>"_s},
      {u"<script><script></script></script>"_s, u"</script>"_s},
      {u"<scripted>x</script>"_s, u""_s},
      {u"a<script>never closed"_s, u"a<script>never closed"_s},
      {u"</script><script>"_s, u"</script><script>"_s},
      {u"<ſcript>x</scrip\u0074>"_s, u""_s},
      {u"<\uFB06yle>x</\uFB05yle>"_s, u""_s},
      {u"<style media=all>x</style>y"_s, u"y"_s},
      {u"<noscript>x</noscript><noscript class=a>y</noscript>"_s,
       u"<noscript class=a>y</noscript>"_s},
      {u"<script><style></script></style>"_s, u"</style>"_s},
      {u"<head></head>"_s, u"<head>"_s + styleElement},
      {u"</head></head>"_s, styleElement + styleElement},
      {u"</HEAD>"_s, u"</HEAD>"_s},
      {u"</he<script></script>ad>"_s, styleElement},
  };
  for (const auto& [page, expected] : cases)
    EXPECT_EQ(styled(page), expected) << page.toStdString();
}

/// The matcher stands in for "opening.*?closing"; a real pattern engine is the judge.
TEST(ElementMatcher, FindsWhatTheLazyPatternFinds) {
  const QRegularExpression pattern(
      u"<ask.*?</ask>"_s,
      QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
  const QStringList pieces = {u"<ask"_s, u"</ask>"_s, u"<AſK"_s, u"</a\u017F\u212A>"_s,
                              u"<"_s,    u"</as"_s,   u">"_s,    u"\n"_s,
                              u"x"_s,    u"k>"_s};
  std::mt19937 random(4);
  for (int round = 0; round < 3000; ++round) {
    QString text;
    for (int count = static_cast<int>(random() % 12); count > 0; --count)
      text += pieces[static_cast<qsizetype>(random() % static_cast<unsigned>(pieces.size()))];
    ElementMatcher matcher(text, u"<ask", u"</ask>");
    auto expected = pattern.globalMatch(text);
    while (expected.hasNext()) {
      const auto match = expected.next();
      const auto found = matcher.next();
      ASSERT_TRUE(found) << text.toStdString();
      ASSERT_EQ(found->start, match.capturedStart()) << text.toStdString();
      ASSERT_EQ(found->end, match.capturedEnd()) << text.toStdString();
    }
    ASSERT_FALSE(matcher.next()) << text.toStdString();
  }
}

QString filled(const QString& document, const QString& inner) {
  return u"<iframe srcdoc=\"<!DOCTYPE html>\n"_s + document + u"\" "_s + inner + u"</iframe>"_s;
}

TEST(PageMerging, FramesArePairedWithElementsByPosition) {
  const QString one = u"iframe::"_s + encoded(u"<p class=\"a\">1 & %@</p>"_s);
  const QString two = u"iframe::"_s + encoded(u"2"_s);
  const QString bare = u"<iframe id=i></iframe>"_s;
  const QString sourced = u"<IFRAME data-src=x></IFRAME>"_s;
  const QString oneFilled = filled(u"<p class=&quot;a&quot;>1 & %@</p>"_s, u" id=i>"_s);
  const QString twoFilled = filled(u"2"_s, u" id=i>"_s);
  struct FramesCase {
    const char* name;
    QString page, frames, expected;
  };
  const FramesCase cases[] = {
      {"surplus elements stay", bare + bare, one, oneFilled + bare},
      {"surplus items are ignored", bare, one + two, oneFilled},
      {"a source uses its item up", sourced + bare, one + two, sourced + twoFilled},
      {"an unread frame stays", bare + u"-"_s + bare, u"iframe::"_s + two,
       bare + u"-"_s + twoFilled},
      {"text before the first marker is no item", bare, encoded(u"0"_s) + two, twoFilled},
      {"an item that cannot be decoded", bare, u"iframe::?"_s, filled(u"(null)"_s, u" id=i>"_s)},
      {"capitals count, but not in the attribute", u"<IFRAME SRC=x>y</IFRAME>"_s, two,
       filled(u"2"_s, u" SRC=x>y"_s)},
      {"nested frames end at the first closing tag", u"<iframe a><iframe b></iframe></iframe>"_s,
       two, filled(u"2"_s, u" a><iframe b>"_s) + u"</iframe>"_s},
      {"no frames", bare, u""_s, bare},
  };
  for (const FramesCase& frames : cases)
    EXPECT_EQ(PageMerging::withFrames(frames.page, frames.frames), frames.expected) << frames.name;
}

TEST(PageMerging, HostilePagesStayWithinTheirBounds) {
  const QString unclosed = u"<script"_s.repeated(700'000);
  EXPECT_EQ(styled(unclosed), unclosed);
  const QString unclosedFrames = u"<iframe"_s.repeated(700'000);
  EXPECT_EQ(PageMerging::withFrames(unclosedFrames, u"iframe::"_s.repeated(700'000)),
            unclosedFrames);
  const QString nested = u"<iframe>"_s.repeated(100'000) + u"</iframe>"_s.repeated(100'000);
  EXPECT_EQ(PageMerging::withFrames(nested, u"iframe::Mg=="_s).size(),
            nested.size() + filled(u"2"_s, u""_s).size() - u"<iframe</iframe>"_s.size());

  const QString heads = u"</head>"_s.repeated(100'000);
  const QString bomb = PageMerging::withStyles(heads, QString(1'000'000, u's'));
  EXPECT_LE(bomb.size(), heads.size() + PageMerging::maximumStyleCopies + 3'000'000);
  EXPECT_EQ(bomb.count(u"</head>"), 100'000);
  EXPECT_GT(bomb.count(u"<style"), 2);
}

TEST(PageMerging, AHundredThousandFramesAreFilledInOrder) {
  QString page, frames, expected;
  for (int number = 0; number < 100'000; ++number) {
    const QString text = QString::number(number);
    page += u"<iframe></iframe>"_s;
    frames += u"iframe::"_s + encoded(text);
    expected += filled(text, u">"_s);
  }
  EXPECT_EQ(PageMerging::withFrames(page, frames), expected);
}

class MergePageCode : public ::testing::Test {
 protected:
  MergePageCode() { CVObjectRepository::singleton().addObject(preferences_, u"preferences"_s); }
  ~MergePageCode() override { CVObjectRepository::singleton().addObject({}, u"preferences"_s); }

  std::shared_ptr<CVDefaultPreferences> preferences_ =
      std::make_shared<CVDefaultPreferences>(defaults::UserDefaults::inMemory());
  CVUtils utils_{{}};
  const QString page_ = u"<script></script><iframe></iframe></head>"_s;
};

TEST_F(MergePageCode, WithoutStylesThePageIsLeftAsItCame) {
  EXPECT_EQ(utils_.mergePageCode(page_, std::nullopt, u"iframe::Mg=="_s), page_);
  EXPECT_EQ(utils_.mergePageCode(std::nullopt, u"S"_s, u"iframe::Mg=="_s), std::nullopt);
}

TEST_F(MergePageCode, FramesFollowTheSetting) {
  const QString withFrames = filled(u"2"_s, u">"_s) + styleElement;
  const QString withoutFrames = u"<iframe></iframe>"_s + styleElement;
  EXPECT_EQ(utils_.mergePageCode(page_, u"S"_s, u"iframe::Mg=="_s), withFrames);
  EXPECT_EQ(utils_.mergePageCode(page_, u"S"_s), withoutFrames);
  preferences_->setEnableIFrames(false);
  EXPECT_EQ(utils_.mergePageCode(page_, u"S"_s, u"iframe::Mg=="_s), withoutFrames);
}

}  // namespace
