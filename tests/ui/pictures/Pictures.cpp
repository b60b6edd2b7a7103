// Takes a picture of every state of the windows: corvalis_ui_pictures <folder>. The density is that
// of QT_SCALE_FACTOR. With "large-text" as a second argument, those states that large text strains.
// Windows are composed onto one ground, so that a popover is seen with its window.

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QScrollBar>
#include <QTemporaryDir>
#include <cstdio>

#include "Program.h"
#include "platform/dispatch/Dispatch.h"
#include "settings/CVDefaultPreferences.h"
#include "settings/CVError.h"
#include "support/Wait.h"
#include "ui/controls/CVDragView.h"
#include "ui/popovers/Popover.h"
#include "ui/preferences/CVPreferencesWindowController.h"
#include "ui/preferences/CVSaveSheet.h"
#include "ui/queue/EntryRowView.h"

using namespace Qt::StringLiterals;
using test::Program;

namespace {

QString folder;
QString theme;
QString prefix;

/// Lets animations end: the longest is the window's height.
void rest() {
  QElapsedTimer timer;
  timer.start();
  support::waitFor([&timer] { return timer.elapsed() > 450; });
}

/// A page of blocks: something like a headline, a picture and text.
std::shared_ptr<const imaging::Image> thumbnail(int number) {
  QImage page(256, 184, QImage::Format_RGB32);
  page.fill(QColor(0xFB, 0xFB, 0xFD));
  QPainter painter(&page);
  painter.setPen(Qt::NoPen);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor tones[] = {0x4C86E8, 0x3E9C5A, 0xD9803A, 0x8A63D2, 0xC4476B};
  painter.setBrush(tones[number % 5]);
  painter.drawRect(0, 0, 256, 34);
  painter.drawRoundedRect(16, 50, 96, 72, 6, 6);
  painter.setBrush(QColor(0xC9, 0xCD, 0xD6));
  for (int line = 0; line < 5; ++line) {
    painter.drawRoundedRect(126, 52 + line * 15, line == 4 ? 70 : 112, 8, 4, 4);
  }
  for (int line = 0; line < 3; ++line)
    painter.drawRoundedRect(16, 136 + line * 15, 222, 8, 4, 4);
  return std::make_shared<imaging::Image>(page, QSizeF(128, 92));
}

std::shared_ptr<test::Entry> add(Program& program, CVEntryState state, const QString& title,
                                 const QString& address, bool failed = false) {
  static int number = 0;
  auto entry = std::make_shared<test::Entry>(address);
  program.table->addEntry(entry);
  Program::settle();
  if (state == CVEntryStateWaiting) return entry;
  entry->setState(CVEntryStateDownloading);
  if (state == CVEntryStateDownloading) return entry;
  entry->setTitle(title);
  entry->setRepresentativeImage(thumbnail(number++));
  if (failed) entry->fail(state == CVEntryStateDone ? CVEntryStateDownloaded : state);
  if (!failed) entry->setState(CVEntryStateDownloaded);
  Program::settle();
  if (state != CVEntryStateDownloaded) entry->setError(nullptr);
  failed ? entry->fail(state) : entry->setState(state);
  Program::settle();
  return entry;
}

void take(const QString& name) {
  rest();
  QRect bounds;
  QList<QWidget*> windows;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible()) continue;
    bounds |= window->geometry();
    // Popovers and sheets lie above the window that they belong to.
    window->parentWidget() ? windows.append(window) : windows.prepend(window);
  }
  bounds.adjust(-16, -16, 16, 16);
  const double ratio = qApp->devicePixelRatio();
  QImage picture(bounds.size() * ratio, QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(theme == u"dark"_s ? QColor(0x0E, 0x10, 0x13) : QColor(0xC8, 0xCE, 0xD8));
  QPainter painter(&picture);
  for (QWidget* window : windows) {
    painter.drawPixmap(window->pos() - bounds.topLeft(), window->grab());
  }
  painter.end();
  const QString density = ratio > 1 ? u"@2x"_s : QString();
  picture.save(folder + u"/%1%2-%3%4.png"_s.arg(prefix, name, theme, density));
}

void takeEmpty() {
  Program program;
  program.preferences().setTheme(theme);
  take(u"empty"_s);
  Q_EMIT test::child<CVDragView>(*program.window, "dragView").dragHoverChanged(true);
  take(u"dragging"_s);
}

void takeStates() {
  Program program;
  program.preferences().setTheme(theme);
  program.preferences().setQueueSize(4);
  add(program, CVEntryStateWaiting, {}, u"http://127.0.0.1/waiting"_s);
  add(program, CVEntryStateDownloading, {}, u"http://127.0.0.1/loading"_s);
  add(program, CVEntryStateDownloaded, u"The quiet harbour: a guide to small towns by the sea"_s,
      u"http://127.0.0.1/travel/guides/2026/the-quiet-harbour-a-guide-to-small-towns?page=3"_s);
  add(program, CVEntryStateProcessing, u"Processing a long read"_s,
      u"http://127.0.0.1/magazine/long-read"_s);
  take(u"states"_s);
}

void takeOutcomes() {
  Program program;
  program.preferences().setTheme(theme);
  program.preferences().setQueueSize(3);
  add(program, CVEntryStateDone, u"Weather for the week"_s, u"http://127.0.0.1/weather"_s);
  add(program, CVEntryStateDone, u"A page that could not be converted"_s,
      u"http://127.0.0.1/huge"_s, true);
  add(program, CVEntryStateDownloaded, u"No such page"_s, u"http://127.0.0.1/gone"_s, true);
  take(u"outcomes"_s);
  auto* row = program.table->tableViewViewForRow(0);
  program.window->activateWindow();
  row->setFocus(Qt::TabFocusReason);
  take(u"focus"_s);
}

void takeQueue() {
  Program program;
  program.preferences().setTheme(theme);
  program.preferences().setQueueSize(3);
  const std::pair<QString, QString> pages[] = {
      {u"Sourdough for beginners"_s, u"http://127.0.0.1/kitchen/sourdough"_s},
      {u"Night trains of Europe, mapped"_s, u"http://127.0.0.1/travel/night-trains"_s},
      {u"How lighthouses work"_s, u"http://127.0.0.1/science/lighthouses"_s},
      {u"Repairing a bicycle wheel"_s, u"http://127.0.0.1/workshop/wheel"_s},
      {u"Minutes of the spring meeting"_s, u"http://127.0.0.1/club/minutes/spring.html"_s}};
  int number = 0;
  for (const auto& [title, address] : pages) {
    add(program, ++number % 2 ? CVEntryStateDone : CVEntryStateDownloaded, title, address);
  }
  take(u"main-window"_s);
  program.window->onAdd();
  take(u"add-popover"_s);
  program.window->closeAddPopover();
  rest();
  program.window->onBatch();
  take(u"batch-popover"_s);
  program.window->closeBatchPopover();
  rest();
  program.delegate->addWarning(
      u"For best results when capturing from Safari, please enable \"Allow Javascript from Apple "
      u"Events\" in Safari's Develop Menu."_s);
  program.delegate->addWarning(u"The settings could not be saved: the disk is full."_s);
  Program::settle();
  program.window->showWarnings();
  take(u"warnings-popover"_s);
  if (program.window->warningPopover()) program.window->warningPopover()->close();
  program.delegate->setState(u"Creating Multipage PDF..."_s);
  take(u"busy"_s);
}

void takePreferences() {
  Program program;
  auto& settings = program.preferences();
  settings.setTheme(theme);
  program.window->hide();
  program.window->onShowPreferences();
  using Pane = CVPreferencesViewController::Pane;
  take(u"preferences-general"_s);
  settings.setBatchMode(true);
  program.window->preferencesWindow()->close();
  delete program.window->preferencesWindow();
  program.window->onShowPreferences();
  take(u"preferences-batch"_s);
  auto& again = program.window->preferencesWindow()->preferencesViewController();
  settings.setUsePagination(false);
  settings.setFormat(u"PDF"_s);
  again.display(Pane::Snapshot);
  take(u"preferences-snapshot"_s);
  settings.setUsePagination(true);
  settings.setIncludeHeadersAndFooters(true);
  settings.setNotes(u"Printed for the spring meeting"_s);
  again.display(Pane::Dropbox);
  again.display(Pane::Snapshot);
  take(u"preferences-pages"_s);
  settings.setUsePagination(false);
  settings.setFormat(u"JPEG"_s);
  again.display(Pane::Dropbox);
  again.display(Pane::Snapshot);
  take(u"preferences-jpeg"_s);
  settings.setDestination(u"Printer"_s);
  again.display(Pane::Dropbox);
  take(u"preferences-dropbox"_s);
  settings.setDropboxLinkedProvider([] { return true; });
  again.display(Pane::Snapshot);
  again.display(Pane::Dropbox);
  take(u"preferences-dropbox-linked"_s);
  again.display(Pane::Snapshot);
  take(u"preferences-printer"_s);
  program.window->preferencesWindow()->close();
  CVSaveSheet sheet;
  sheet.setMainWindow(program.window.get());
  auto record = settings.copyWithZone();
  record->setUsePagination(false);
  sheet.beginSheet(record, u"Night trains of Europe, mapped"_s,
                   QUrl::fromLocalFile(u"/home/user/Desktop"_s), [](const auto&) {});
  take(u"save-sheet"_s);
  program.window->findChild<QDialog*>()->reject();
}

void takeHelp() {
  Program program;
  program.preferences().setTheme(theme);
  program.window->hide();
  program.window->onShowHelp();
  take(u"help"_s);
}

/// As with a desktop whose text is half as large again.
void takeLargeText() {
  takeEmpty();
  takeStates();
  takeOutcomes();
  takeQueue();
}

void takeRightToLeft() {
  QApplication::setLayoutDirection(Qt::RightToLeft);
  Program program;
  program.preferences().setTheme(theme);
  add(program, CVEntryStateDone, u"صفحة عن القطارات الليلية"_s, u"http://127.0.0.1/trains"_s);
  add(program, CVEntryStateDownloaded, u"مقال طويل"_s, u"http://127.0.0.1/article"_s);
  take(u"right-to-left"_s);
  QApplication::setLayoutDirection(Qt::LeftToRight);
}

void takeEverything() {
  takeEmpty();
  takeStates();
  takeOutcomes();
  takeQueue();
  takePreferences();
  takeHelp();
  takeRightToLeft();
}

}  // namespace

int main(int argc, char** argv) {
  QTemporaryDir home;
  qputenv("HOME", home.path().toLocal8Bit());
  QApplication application(argc, argv);
  const bool large = argc == 3 && qstrcmp(argv[2], "large-text") == 0;
  if ((argc != 2 && !large) || !QDir().mkpath(QString::fromLocal8Bit(argv[1]))) {
    std::fprintf(stderr, "usage: corvalis_ui_pictures <folder> [large-text]\n");
    return 2;
  }
  folder = QString::fromLocal8Bit(argv[1]);
  if (large) {
    QFont font = QApplication::font();
    font.setPixelSize(18);
    QApplication::setFont(font);
    prefix = u"large-text-"_s;
  }
  dispatch::initialize();
  for (const QString& name : {u"light"_s, u"dark"_s}) {
    theme = name;
    large ? takeLargeText() : takeEverything();
  }
  dispatch::finish();
}
