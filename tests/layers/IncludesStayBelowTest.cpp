#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

/// From the bottom up. CVUtils is a layer of its own: its declaration and sources stand in the
/// folders of their subjects, but it is below the capture of pages.
const QStringList layers{u"platform"_s, u"settings"_s, u"queue"_s, u"utils"_s, u"capture"_s,
                         u"delivery"_s, u"intake"_s,   u"ui"_s,    u"app"_s};

QString sourceRoot() {
  return QStringLiteral(CORVALIS_SOURCE_DIR "/src/");
}

qsizetype layerOf(const QString& path) {
  const QString name = path.section(u'/', -1);
  if (name.startsWith("CVUtils"_L1)) return layers.indexOf(u"utils"_s);
  return layers.indexOf(path.section(u'/', 0, 0));
}

/// A folder's "internal" belongs to it.
QString folderOf(const QString& path) {
  return path.section(u'/', 0, -2).section(u"/internal"_s, 0, 0);
}

struct Include {
  QString from;
  QString to;
};

std::vector<Include> allIncludes() {
  static const QRegularExpression pattern(u"^#include \"([^\"]+)\""_s,
                                          QRegularExpression::MultilineOption);
  std::vector<Include> includes;
  QDirIterator files(sourceRoot(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files,
                     QDirIterator::Subdirectories);
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
    // Generated headers (ui_*.h) have no layer; the sources of CVUtils use their subject's folder.
    if (to < 0 || folderOf(include.from) == folderOf(include.to)) continue;
    EXPECT_GE(layerOf(include.from), to)
        << qPrintable(include.from) << " includes " << qPrintable(include.to);
  }
}

bool showsForeignTypes(const QString& header) {
  static const QRegularExpression foreign(
      u"#include <(vips|qpdf|cups|simdjson|QDBus|libpsl|qt6keychain)"_s);
  QFile file(sourceRoot() + header);
  return file.open(QIODevice::ReadOnly) && QString::fromUtf8(file.readAll()).contains(foreign);
}

TEST(Layers, HeadersWithForeignTypesAreIncludedInTheirOwnFolderOnly) {
  int crossings = 0;
  for (const Include& include : allIncludes()) {
    const bool crosses = folderOf(include.from) != folderOf(include.to);
    if (!crosses || !include.to.startsWith("platform/"_L1)) continue;
    ++crossings;
    EXPECT_FALSE(showsForeignTypes(include.to))
        << qPrintable(include.from) << " includes " << qPrintable(include.to);
  }
  EXPECT_GT(crossings, 50);
}

TEST(Layers, OnlyWindowsUseWidgets) {
  static const QRegularExpression widgets(
      u"#include <(QWidget|QApplication|QDialog|QMessageBox|QFileDialog|QMainWindow|QLabel)>"_s);
  QDirIterator files(sourceRoot(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files,
                     QDirIterator::Subdirectories);
  while (files.hasNext()) {
    QFile file(files.next());
    const qsizetype layer = layerOf(file.fileName().sliced(sourceRoot().size()));
    if (layer >= layers.indexOf(u"ui"_s)) continue;
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(QString::fromUtf8(file.readAll()).contains(widgets))
        << qPrintable(file.fileName());
  }
}

}  // namespace
