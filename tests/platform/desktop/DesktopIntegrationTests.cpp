#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>

#include "ProgramRecorder.h"
#include "platform/desktop/DesktopIntegration.h"
#include "platform/desktop/internal/MimeApplications.h"

using namespace Qt::StringLiterals;

namespace {

const QString entry = u"com.maplebrook.corvalis.desktop"_s;

class Integration : public ::testing::Test {
 protected:
  ~Integration() override {
    QFile::remove(list_);
    QDir(data_).removeRecursively();
    QDir().mkpath(data_);
  }

  static QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
  }

  void writeList(const QByteArray& contents) {
    QFile file(list_);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
  }

  QString handler(const QString& scheme) {
    return desktop::defaultApplication(u"x-scheme-handler/"_s + scheme).identifier;
  }

  MaybeError integrate(const QString& program = u"/usr/bin/corvalis"_s) {
    return desktop::integrateWithDesktop({program, "<svg/>", {{48, "picture"}}});
  }

  QString data_ = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  QString list_ =
      QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/mimeapps.list"_s;
};

}  // namespace

TEST_F(Integration, MakesTheProgramTheDefaultAndTakesItBackExactly) {
  const QByteArray lists[] = {
      "(none)",
      "",
      "# mine\n[Added Associations]\nx-scheme-handler/corvxurl=other.desktop\n",
      "[Default Applications]",
      "\n[Default Applications]\r\ntext/html=a.desktop\n x-scheme-handler/corvxurl = b.desktop\n\n"
      "[Removed Associations]\nx-scheme-handler/corvxurls=com.maplebrook.corvalis.desktop;\n",
      "[Default Applications]\nx-scheme-handler/corvxurl=com.maplebrook.corvalis.desktop\n",
  };
  for (const QByteArray& original : lists) {
    SCOPED_TRACE(original.constData());
    QFile::remove(list_);
    if (original != "(none)") writeList(original);
    ASSERT_EQ(integrate(), std::nullopt);
    for (const auto& scheme : {u"corvxurl"_s, u"corvxurls"_s, u"db-k3r8tq0vz5mha2x"_s})
      EXPECT_EQ(handler(scheme), entry);
    ASSERT_EQ(integrate(), std::nullopt) << "again";
    ASSERT_EQ(desktop::removeDesktopIntegration(), std::nullopt);
    EXPECT_FALSE(QFile::exists(data_ + u"/applications/"_s + entry));
    EXPECT_EQ(read(list_), original);
  }
}

TEST_F(Integration, KeepsWhatTheUserHasChangedSince) {
  writeList("[Default Applications]\nx-scheme-handler/corvxurl=b.desktop;\n");
  ASSERT_EQ(integrate(), std::nullopt);
  writeList(read(list_) + "text/html=new.desktop;\n\n[Added Associations]\ntext/css=c.desktop;\n");
  ASSERT_EQ(desktop::removeDesktopIntegration(), std::nullopt);
  EXPECT_EQ(read(list_),
            "[Default Applications]\nx-scheme-handler/corvxurl=b.desktop;\n"
            "text/html=new.desktop;\n\n[Added Associations]\ntext/css=c.desktop;\n");
}

TEST_F(Integration, WritesWhatTheDesktopAndTheBusUnderstand) {
  const QString folder = data_ + u"/a \"b\" $c `d` \\e 'f' 100%"_s;
  const QString program = folder + u"/corvalis"_s;
  ASSERT_EQ(integrate(program), std::nullopt);
  EXPECT_EQ(read(data_ + u"/icons/hicolor/scalable/apps/com.maplebrook.corvalis.svg"_s), "<svg/>");
  const QString picture = data_ + u"/icons/hicolor/48x48/apps/com.maplebrook.corvalis.png"_s;
  EXPECT_EQ(read(picture), "picture");
  const QByteArray text = read(data_ + u"/applications/"_s + entry);
  EXPECT_FALSE(text.contains("@PROGRAM@"));
  EXPECT_TRUE(
      text.contains("/a \\\\\"b\\\\\" \\\\$c \\\\`d\\\\` \\\\\\\\e 'f' 100%%/corvalis\" %U\n"))
      << text.constData();
  const QByteArray service = read(data_ + u"/dbus-1/services/com.maplebrook.corvalis.service"_s);
  EXPECT_TRUE(service.contains("/a \"b\" $c `d` \\e '\\''f'\\'' 100%/corvalis'\n"))
      << service.constData();
  ASSERT_EQ(integrate(), std::nullopt);
  EXPECT_TRUE(read(data_ + u"/applications/"_s + entry).contains("\nExec=/usr/bin/corvalis %U\n"))
      << "xdg-open takes quotes for a part of the path";
  EXPECT_TRUE(integrate(u"corvalis"_s).has_value()) << "a relative path";

  ASSERT_EQ(desktop::removeDesktopIntegration(), std::nullopt);
  EXPECT_EQ(read(picture), "(none)");
  ASSERT_EQ(integrate(program), std::nullopt);

  const QString validator = QStandardPaths::findExecutable(u"desktop-file-validate"_s);
  if (validator.isEmpty()) GTEST_SKIP() << "desktop-file-validate is not installed";
  QProcess validation;
  validation.start(validator, {data_ + u"/applications/"_s + entry});
  ASSERT_TRUE(validation.waitForFinished());
  EXPECT_EQ(validation.exitCode(), 0) << validation.readAllStandardOutput().constData();
}

TEST_F(Integration, UpdatesTheDatabasesThatAreThere) {
  ProgramRecorder programs;
  programs.add(u"update-desktop-database"_s);
  programs.add(u"update-mime-database"_s, "exit 1");
  EXPECT_EQ(integrate(), std::nullopt);
  EXPECT_EQ(programs.runs(u"update-desktop-database"_s),
            QList<QStringList>{{data_ + u"/applications"_s}});
  EXPECT_EQ(programs.runs(u"update-mime-database"_s), QList<QStringList>{{data_ + u"/mime"_s}});
}

TEST_F(Integration, ListThatCannotBeWrittenIsAnErrorAndStaysWhole) {
  QDir().mkpath(list_);  // a folder in its place
  EXPECT_TRUE(integrate().has_value());
  QDir().rmdir(list_);
}
