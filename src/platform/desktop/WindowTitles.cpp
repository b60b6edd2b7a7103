#include "platform/desktop/WindowTitles.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>

using namespace Qt::StringLiterals;

namespace desktop {
namespace {

/// What the X library hands out is freed with the C library's own function.
struct Free {
  void operator()(void* reply) const { std::free(reply); }
};
struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;
using Property = std::unique_ptr<xcb_get_property_reply_t, Free>;

/// In units of four bytes; a title is shorter, and nobody has that many windows.
constexpr std::uint32_t longestProperty = 4096;

xcb_atom_t atom(xcb_connection_t* display, const char* name) {
  const auto cookie = xcb_intern_atom(display, 1, std::uint16_t(std::strlen(name)), name);
  const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
      xcb_intern_atom_reply(display, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// Empty when the window has none, or is gone.
Property property(xcb_connection_t* display, xcb_window_t window, xcb_atom_t name) {
  const auto cookie = xcb_get_property(display, 0, window, name, XCB_ATOM_ANY, 0, longestProperty);
  return Property(xcb_get_property_reply(display, cookie, nullptr));
}

template <class Item>
std::span<const Item> items(const Property& property) {
  if (!property || property->format != 8 * sizeof(Item)) return {};
  const auto size = std::size_t(xcb_get_property_value_length(property.get()));
  return {static_cast<const Item*>(xcb_get_property_value(property.get())), size / sizeof(Item)};
}

QString title(xcb_connection_t* display, xcb_window_t window, xcb_atom_t name) {
  const Property reply = property(display, window, name);
  const auto text = items<char>(reply);
  return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

}  // namespace

QStringList windowTitlesFromFront() {
  const Connection display(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(display.get()) != 0) return {};
  const xcb_atom_t stacking = atom(display.get(), "_NET_CLIENT_LIST_STACKING");
  const xcb_atom_t name = atom(display.get(), "_NET_WM_NAME");
  if (stacking == XCB_ATOM_NONE || name == XCB_ATOM_NONE) return {};
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display.get())).data->root;
  const Property windows = property(display.get(), root, stacking);
  QStringList titles;
  for (const xcb_window_t window : items<xcb_window_t>(windows))
    titles.prepend(title(display.get(), window, name));
  return titles;
}

}  // namespace desktop
