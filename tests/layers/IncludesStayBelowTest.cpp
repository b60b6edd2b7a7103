#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// From the bottom up. CVUtils is a layer of its own: its declaration and sources stand in the folders
/// of their subjects, but it is below the capture of pages.
const QStringList layers{u"platform"_s, u"settings"_s, u"queue"_s,  u"utils"_s, u"capture"_s,
                         u"delivery"_s, u"intake"_s,   u"ui"_s,     u"app"_s};

QString sourceRoot() { return QStringLiteral(CORVALIS_SOURCE_DIR "/src/"); }

qsizetype layerOf(const QString& path) {
  const QString name = path.section(u'/', -1);
  if (name.startsWith("CVUtils"_L1)) return layers.indexOf(u"utils"_s);
  return layers.indexOf(path.section(u'/', 0, 0));
}

struct Include {
  QString from;
  QString to;
};

std::vector<Include> allIncludes() {
  static const QRegularExpression pattern(u"^#include \"([^\"]+)\""_s,
                                          QRegularExpression::MultilineOption);
  std::vector<Include> includes;
  QDirIterator files(sourceRoot(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    auto matches = pattern.globalMatch(text);
    while (matches.hasNext()) {
      includes.push_back({file.fileName().sliced(sourceRoot().size()), matches.next().captured(1)});
    }
  }
  return includes;
}

TEST(Layers, NoFileIncludesALayerAboveItsOwn) {
  const auto includes = allIncludes();
  ASSERT_GT(includes.size(), 100U);
  for (const Include& include : includes) {
    const qsizetype to = layerOf(include.to);
    if (to < 0) continue;  // generated: ui_*.h and moc files
    EXPECT_GE(layerOf(include.from), to)
        << qPrintable(include.from) << " includes " << qPrintable(include.to);
  }
}

TEST(Layers, ThirdPartyHeadersStayOutOfPublicHeaders) {
  static const QRegularExpression foreign(
      u"#include <(vips|qpdf|cups|simdjson|QDBus|libpsl|qt6keychain)"_s);
  int headers = 0;
  QDirIterator files(sourceRoot() + u"platform"_s, {u"*.h"_s}, QDir::Files,
                     QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    if (file.fileName().contains("/internal/"_L1)) continue;
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ++headers;
    EXPECT_FALSE(QString::fromUtf8(file.readAll()).contains(foreign)) << qPrintable(file.fileName());
  }
  EXPECT_GT(headers, 10);
}

TEST(Layers, OnlyWindowsUseWidgets) {
  static const QRegularExpression widgets(
      u"#include <(QWidget|QApplication|QDialog|QMessageBox|QFileDialog|QMainWindow|QLabel)>"_s);
  QDirIterator files(sourceRoot(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    const qsizetype layer = layerOf(file.fileName().sliced(sourceRoot().size()));
    if (layer >= layers.indexOf(u"ui"_s)) continue;
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(QString::fromUtf8(file.readAll()).contains(widgets)) << qPrintable(file.fileName());
  }
}

}  // namespace
