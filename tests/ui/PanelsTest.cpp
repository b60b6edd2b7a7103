#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>

#include "Program.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVDefaultPreferences.h"
#include "support/Wait.h"
#include "ui/preferences/CVSaveSheet.h"
#include "ui/window/CVOkAlert.h"
#include "ui/window/SavePanel.h"

using namespace Qt::StringLiterals;
using test::child;
using test::Program;

namespace {

class Panels : public ::testing::Test {
 protected:
  void touch(const QString& name) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  }
  /// The question about replacing that is open, if there is one.
  QMessageBox* question() {
    Program::settle();
    for (auto* box : program.window->findChildren<QMessageBox*>())
      if (box->isVisible()) return box;
    return nullptr;
  }
  void answer(const QString& label) {
    QMessageBox* box = question();
    ASSERT_TRUE(box);
    for (auto* button : box->buttons())
      if (button->text().remove(u'&') == label) return button->click();
    FAIL() << "no button " << label.toStdString();
  }

  Program program;
  QTemporaryDir folder;
};

class SaveSheet : public Panels {
 protected:
  SaveSheet() {
    record->setUsePagination(false);
    record->setFormat(u"PDF"_s);
    panel.setMainWindow(program.window.get());
    panel.beginSheet(record, u"Page"_s, QUrl::fromLocalFile(folder.path()),
                     [this](const auto& chosen) { answers.push_back(chosen); });
    sheet = program.window->findChild<QDialog*>();
  }
  void rename(const QString& name) { child<QLineEdit>(*sheet, "nameField").setText(name); }
  QString extension() { return child<QLabel>(*sheet, "extensionLabel").text(); }
  void save() { sheet->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click(); }

  std::shared_ptr<CVPreferences> record = program.preferences().copyWithZone();
  CVSaveSheet panel;
  QDialog* sheet = nullptr;
  std::vector<std::optional<QUrl>> answers;
};

}  // namespace

TEST_F(SaveSheet, showsTheExtensionThatWillBeAppended) {
  EXPECT_EQ(extension(), u".pdf"_s);
  rename(u"Page.pdf"_s);
  EXPECT_EQ(extension(), QString());
  child<QToolButton>(*sheet, "pngButton").click();
  EXPECT_EQ(extension(), u".png"_s);
  child<QToolButton>(*sheet, "jpegButton").click();
  EXPECT_EQ(extension(), u".jpg"_s);
}

TEST_F(SaveSheet, asksBeforeAFileIsReplaced) {
  touch(u"Page.pdf"_s);
  save();
  answer(u"Cancel"_s);
  EXPECT_TRUE(sheet->isVisible());
  // The file that is meant is the one with the extension of the format.
  child<QToolButton>(*sheet, "pdfButton").click();
  rename(u"Page.pdf"_s);
  save();
  answer(u"Replace"_s);
  Program::settle();
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0].value_or(QUrl()).fileName(), u"Page.pdf"_s);
}

TEST_F(SaveSheet, asksNothingWhereNothingIsReplaced) {
  touch(u"Page"_s);
  touch(u"Page.pdf"_s);
  record->setDestination(u"E-Mail"_s);
  save();
  EXPECT_FALSE(question());
  EXPECT_EQ(answers.size(), 1U);
}

TEST_F(SaveSheet, aFolderIsNeverReplaced) {
  ASSERT_TRUE(QDir(folder.path()).mkdir(u"Page.pdf"_s));
  save();
  ASSERT_TRUE(question());
  EXPECT_EQ(question()->buttons().size(), 1);
  answer(u"OK"_s);
  EXPECT_TRUE(sheet->isVisible());
  EXPECT_TRUE(answers.empty());
}

TEST_F(Panels, theSavePanelAsksAboutTheWholeNameAndComesBack) {
  touch(u"Multipage.pdf"_s);
  std::vector<std::optional<QUrl>> answers;
  ui::beginSavePanel(program.window.get(), u"Multipage"_s, u"pdf"_s,
                     QUrl::fromLocalFile(folder.path()),
                     [&answers](const auto& chosen) { answers.push_back(chosen); });
  auto* panel = program.window->findChild<QFileDialog*>();
  ASSERT_TRUE(panel);
  panel->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
  answer(u"Cancel"_s);
  Program::settle();
  EXPECT_TRUE(panel->isVisible());
  EXPECT_TRUE(answers.empty());
  panel->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
  answer(u"Replace"_s);
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0].value_or(QUrl()).fileName(), u"Multipage"_s);
}

TEST_F(Panels, anAlertReturnsWhenItWasDismissed) {
  CVOkAlert alert;
  alert.setMainWindow(program.window.get());
  QStringList order;
  // The main queue is served while the alert stands.
  dispatch::mainAsync([&] {
    order += question()->text();
    dispatch::mainAsync([&] {
      order += u"dismissed"_s;
      answer(u"Ok"_s);
    });
  });
  alert.displayOKAlertWithTitle(u"Title"_s, u"Message"_s);
  order += u"returned"_s;
  EXPECT_EQ(order, (QStringList{u"Title"_s, u"dismissed"_s, u"returned"_s}));
  EXPECT_FALSE(question());
}
