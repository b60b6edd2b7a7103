#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include "ProgramRecorder.h"
#include "platform/desktop/NoteImporter.h"
#include "platform/desktop/internal/EnexFile.h"
#include "support/Wait.h"

using namespace Qt::StringLiterals;

namespace {

class RecordedFileManager : public desktop::FileManager {
 public:
  void reveal(const QString& path, Completion completion) override {
    shown << path;
    if (completion) completion(std::nullopt);
  }
  QStringList shown;
};

QString write(const QString& path, const QByteArray& contents) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
  file.write(contents);
  return path;
}

/// Whether the document has the structure that the rules in our fixtures allow.
void expectValid(const QString& path, const QString& rules) {
  QProcess lint;
  lint.start(
      QStringLiteral(XMLLINT_PROGRAM),
      {u"--noout"_s, u"--nonet"_s, u"--huge"_s, u"--dtdvalid"_s,
       QStringLiteral(CORVALIS_SOURCE_DIR) + u"/tests/platform/desktop/fixtures/"_s + rules, path});
  ASSERT_TRUE(lint.waitForFinished());
  EXPECT_EQ(lint.exitCode(), 0) << lint.readAllStandardError().constData();
}

/// The texts of the elements, by name.
QHash<QString, QString> textsOf(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  QXmlStreamReader xml(&file);
  QHash<QString, QString> texts;
  QString element;
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isStartElement()) element = xml.name().toString();
    if (xml.isCharacters()) texts[element] += xml.text().toString();
    if (xml.isEndElement()) element.clear();
  }
  EXPECT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
  return texts;
}

class Notes : public ::testing::Test {
 protected:
  QHash<QString, QString> written(const QString& title, const QString& attachment) {
    const QString path = folder_.filePath(u"note.enex"_s);
    const QDateTime created(QDate(2026, 11, 2), QTime(3, 4, 5), Qt::UTC);
    EXPECT_EQ(desktop::writeEnexFile({title, attachment, created}, path), std::nullopt);
    expectValid(path, u"enex.dtd"_s);
    auto texts = textsOf(path);
    expectValid(write(folder_.filePath(u"content.xml"_s), texts[u"content"_s].toUtf8()),
                u"enml.dtd"_s);
    return texts;
  }

  QTemporaryDir folder_;
};

}  // namespace

TEST_F(Notes, HoldTheFileItsHashAndTypeInAValidDocument) {
  // Longer than a piece of the streamed Base64 text and no multiple of three.
  QByteArray bytes = "%PDF-1.7\n";
  for (int i = 0; i < 500'000; ++i)
    bytes += static_cast<char>(i * 31 + i / 256);
  const QString file = write(folder_.filePath(u"a & <b> \"ü\".pdf"_s), bytes);
  const auto texts = written(u"Tom & <Jerry> ]]> \"x\""_s, file);
  EXPECT_EQ(
      QByteArray::fromBase64(texts[u"data"_s].toLatin1(), QByteArray::AbortOnBase64DecodingErrors),
      bytes);
  EXPECT_EQ(texts[u"mime"_s], u"application/pdf"_s);
  EXPECT_EQ(texts[u"file-name"_s], u"a & <b> \"ü\".pdf"_s);
  EXPECT_EQ(texts[u"created"_s], u"20261102T030405Z"_s);
  EXPECT_EQ(texts[u"title"_s], u"Tom & <Jerry> ]]> \"x\""_s);
  const QString hash =
      QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
  EXPECT_TRUE(texts[u"content"_s].contains(u"type=\"application/pdf\" hash=\"%1\""_s.arg(hash)));
  EXPECT_TRUE(texts[u"content"_s].contains(u"Tom &amp; &lt;Jerry&gt;"_s));
}

TEST_F(Notes, TitlesAreWhatANoteMayHave) {
  const QString file = write(folder_.filePath(u"a.png"_s), "\x89PNG\r\n\x1a\n");
  const QString pair = QString::fromUcs4(U"\U0001F600");
  const std::pair<QString, QString> cases[] = {
      {u"  two\nlines\x01\t end "_s, u"two lines end"_s},
      {u" \n\x07"_s, u"Untitled"_s},
      {QString(QChar(0xD800)) + u"a\uFFFEb"_s, u"\uFFFDa b"_s},
      {QString(254, u'x') + pair, QString(254, u'x')},
      {QString(253, u'x') + pair, QString(253, u'x') + pair},
  };
  for (const auto& [title, expected] : cases)
    EXPECT_EQ(written(title, file)[u"title"_s], expected);
}

TEST_F(Notes, WhatCannotBeWrittenLeavesNoFile) {
  const QString note = folder_.filePath(u"note.enex"_s);
  QFile large(folder_.filePath(u"large.png"_s));
  ASSERT_TRUE(large.open(QIODevice::WriteOnly));
  ASSERT_TRUE(large.resize(desktop::longestAttachment + 1));
  EXPECT_TRUE(desktop::writeEnexFile({u"t"_s, large.fileName(), {}}, note).has_value());
  EXPECT_TRUE(desktop::writeEnexFile({u"t"_s, folder_.filePath(u"gone"_s), {}}, note).has_value());
  EXPECT_FALSE(QFile::exists(note));
  const QString file = write(folder_.filePath(u"a.png"_s), "x");
  EXPECT_TRUE(desktop::writeEnexFile({u"t"_s, file, {}}, u"/dev/null/n.enex"_s).has_value());
}

TEST_F(Notes, GoToTheRegisteredProgramElseToTheFileManager) {
  ProgramRecorder programs;
  programs.add(u"notes"_s);
  const auto files = std::make_shared<RecordedFileManager>();
  const auto importer = desktop::NoteImporter::create(files);
  const QString file = write(folder_.filePath(u"a.png"_s), "x");
  int ended = 0;
  const auto import = [&] {
    importer->importFile(file, u"a/b \"c\""_s, folder_.path(), [&](const MaybeError& error) {
      EXPECT_EQ(error, std::nullopt);
      ++ended;
    });
    const int before = ended;
    ASSERT_TRUE(support::waitFor([&] { return ended > before; }));
  };
  import();
  ASSERT_EQ(files->shown.size(), 1) << "nothing is registered for notes";
  EXPECT_TRUE(QFile::exists(files->shown[0]));
  EXPECT_TRUE(programs.runs(u"notes"_s).isEmpty());

  const QString data = QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation);
  QDir().mkpath(data);
  write(data + u"/notes.desktop"_s, "[Desktop Entry]\nExec=\"notes\" --import %i %f 100%%\n");
  write(data + u"/mimeinfo.cache"_s, "[MIME Cache]\napplication/enex+xml=notes.desktop;\n");
  import();
  EXPECT_EQ(files->shown.size(), 1);
  const auto runs = programs.runs(u"notes"_s);
  ASSERT_EQ(runs.size(), 1);
  ASSERT_EQ(runs[0].size(), 3);
  EXPECT_EQ(runs[0][0], u"--import"_s);
  EXPECT_EQ(runs[0][2], u"100%"_s);
  EXPECT_EQ(textsOf(runs[0][1])[u"title"_s], u"a/b \"c\""_s);

  programs.add(u"notes"_s, "exit 4");
  import();
  EXPECT_EQ(files->shown.size(), 2) << "a program that fails";
  QFile::remove(data + u"/mimeinfo.cache"_s);
}
