#include "platform/fonts/FontName.h"

#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QStringList>

namespace {

using namespace Qt::StringLiterals;

/// A family of this machine with a bold style.
QString familyWithBold() {
  for (const QString& family : QFontDatabase::families()) {
    // Where several makers have a family of one name, theirs stands in brackets behind it.
    const bool hasMaker = family.contains(u'[');
    if (!hasMaker && QFontDatabase::styles(family).contains(u"Bold"_s)) return family;
  }
  return {};
}

TEST(FontName, StylesAreKeptWithTheFamily) {
  const QString family = familyWithBold();
  ASSERT_FALSE(family.isEmpty());
  const QString bold = family + u" Bold"_s;
  EXPECT_TRUE(fonts::isKnown(family));
  EXPECT_TRUE(fonts::isKnown(bold));
  EXPECT_FALSE(fonts::isKnown(family + u" Never"_s));
  EXPECT_FALSE(fonts::isKnown(u"Bold"_s));

  const QFont font = fonts::fontNamed({bold, 12.5});
  EXPECT_EQ(font.family(), family);
  EXPECT_EQ(font.pointSizeF(), 12.5);
  EXPECT_TRUE(QFontInfo(font).bold());
  EXPECT_FALSE(QFontInfo(fonts::fontNamed({family, 12})).bold());
  EXPECT_EQ(fonts::nameOf(font), bold);
  EXPECT_EQ(fonts::nameOf(fonts::fontNamed({family, 12})), family);

  QFont byWeight(family);
  byWeight.setBold(true);
  EXPECT_EQ(fonts::nameOf(byWeight), bold);
}

TEST(FontName, TheSystemFontIsKnownByItsAlias) {
  const QString name = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
  EXPECT_TRUE(fonts::isKnown(name));
  EXPECT_EQ(fonts::fontNamed({name, 10}).family(), name);
}

}  // namespace
