#include "ui/window/HelpWindow.h"

#include <QFile>
#include <QKeyEvent>
#include <QTextBrowser>
#include <QTextDocument>
#include <QVBoxLayout>

#include "ui/look/Theme.h"

using namespace Qt::StringLiterals;

/// The resources lie in a static library, where nothing else makes the linker keep them. Outside of
/// every namespace, as the macro needs it.
static void keepHelp() {
  Q_INIT_RESOURCE(help);
}

namespace {

constexpr QSize usualSize(560, 620);
/// Points around the text.
constexpr double margin = 24;

QString manual() {
  keepHelp();
  QFile file(u":/corvalis/help/help.html"_s);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

HelpWindow::HelpWindow(QWidget* mainWindow) : QWidget(mainWindow, Qt::Window) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Corvalis Help"));
  auto* text = new QTextBrowser;
  text->setObjectName(u"helpText"_s);
  text->setAccessibleName(windowTitle());
  text->setFrameShape(QFrame::NoFrame);
  text->setFont(ui::textFont(ui::TextSize::Body));
  text->document()->setDocumentMargin(margin);
  text->setHtml(manual());
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(text);
  resize(usualSize);
}

void HelpWindow::makeKeyAndOrderFront() {
  show();
  raise();
  activateWindow();
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}
