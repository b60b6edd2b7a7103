#include "platform/desktop/WindowTitles.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QProcess>
#include <cstdlib>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

/// A display of the test's own, which is the program's display while the object lives.
class Display {
 public:
  Display() {
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start(QStringLiteral(XVFB_PROGRAM),
                   {u"-displayfd"_s, u"1"_s, u"-nolisten"_s, u"tcp"_s});
    EXPECT_TRUE(process_.waitForReadyRead());
    qputenv("DISPLAY", ':' + process_.readAll().trimmed());
    connection_ = xcb_connect(nullptr, nullptr);
    EXPECT_EQ(xcb_connection_has_error(connection_), 0);
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  }
  ~Display() {
    xcb_disconnect(connection_);
    if (before_.isNull())
      qunsetenv("DISPLAY");
    else
      qputenv("DISPLAY", before_);
    process_.kill();
    process_.waitForFinished();
  }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  xcb_window_t addWindow(const QByteArray& title) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen_->root, 0, 0, 9, 9, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, 0, nullptr);
    set(window, "_NET_WM_NAME", "UTF8_STRING", 8, title.constData(), title.size());
    return window;
  }
  /// What a window manager tells, the window at the bottom first.
  void stack(const QList<xcb_window_t>& windows) {
    set(screen_->root, "_NET_CLIENT_LIST_STACKING", "WINDOW", 32, windows.constData(),
        windows.size());
  }

 private:
  xcb_atom_t atom(const char* name) {
    const auto cookie = xcb_intern_atom(connection_, 0, std::uint16_t(std::strlen(name)), name);
    auto* reply = xcb_intern_atom_reply(connection_, cookie, nullptr);
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
  }
  void set(xcb_window_t window, const char* name, const char* type, std::uint8_t format,
           const void* data, qsizetype count) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), format,
                        std::uint32_t(count), data);
    // The answer says that all before it has been done.
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  const QByteArray before_ = qgetenv("DISPLAY");
  QProcess process_;
  xcb_connection_t* connection_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
};

TEST(WindowTitles, ComeAsTheWindowManagerStacksTheWindows) {
  Display display;
  EXPECT_EQ(desktop::windowTitlesFromFront(), QStringList()) << "no window manager";
  const xcb_window_t bottom = display.addWindow("Café – Chromium");
  const xcb_window_t top = display.addWindow("Editor");
  display.stack({bottom, top});
  EXPECT_EQ(desktop::windowTitlesFromFront(), (QStringList{u"Editor"_s, u"Café – Chromium"_s}));
  display.stack({top, bottom + 4711, bottom});
  EXPECT_EQ(desktop::windowTitlesFromFront(),
            (QStringList{u"Café – Chromium"_s, QString(), u"Editor"_s}))
      << "a window that is gone";
}

}  // namespace
