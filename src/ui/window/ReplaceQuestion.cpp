#include "ui/window/ReplaceQuestion.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace ui {
namespace {

QMessageBox* makeQuestion(QWidget* window, const QString& text, const QString& explanation) {
  auto* question = new QMessageBox(window);
  question->setObjectName(u"replaceQuestion"_s);
  question->setAttribute(Qt::WA_DeleteOnClose);
  question->setWindowModality(Qt::WindowModal);
  question->setWindowTitle(QMessageBox::tr("Save"));
  question->setIcon(QMessageBox::Warning);
  question->setTextFormat(Qt::PlainText);
  question->setText(text);
  question->setInformativeText(explanation);
  return question;
}

}  // namespace

void whenMayBeWritten(QWidget* window, const QUrl& file, std::function<void()> goOn,
                      std::function<void()> keepAsking) {
  const QFileInfo info(file.toLocalFile());
  if (!info.exists() && !info.isSymLink()) return goOn();
  const QString folder = info.dir().dirName();
  const QString name = info.fileName();
  if (info.isDir()) {
    auto* note = makeQuestion(window, QMessageBox::tr("“%1” is a folder.").arg(name),
                              QMessageBox::tr("Choose another name for the file."));
    note->addButton(QMessageBox::Ok);
    QObject::connect(note, &QMessageBox::finished, window, keepAsking);
    return note->open();
  }
  auto* question = makeQuestion(
      window, QMessageBox::tr("“%1” already exists. Do you want to replace it?").arg(name),
      QMessageBox::tr("A file of that name is in the folder “%1”. Replacing it deletes what it "
                      "holds now.")
          .arg(folder));
  auto* replace = question->addButton(QMessageBox::tr("Replace"), QMessageBox::DestructiveRole);
  question->setDefaultButton(question->addButton(QMessageBox::Cancel));
  QObject::connect(question, &QMessageBox::finished, window,
                   [=] { question->clickedButton() == replace ? goOn() : keepAsking(); });
  question->open();
}

}  // namespace ui
