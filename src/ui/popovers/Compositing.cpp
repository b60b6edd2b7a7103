#include "ui/popovers/Compositing.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace ui {
namespace {

/// What the X library hands out is freed with the C library's own function.
struct Free {
  void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

bool selectionHasOwner(xcb_connection_t* connection, const char* selection) {
  const auto nameCookie =
      xcb_intern_atom(connection, 0, std::uint16_t(std::strlen(selection)), selection);
  const Owned<xcb_intern_atom_reply_t> name(xcb_intern_atom_reply(connection, nameCookie, nullptr));
  if (!name) return false;
  const auto ownerCookie = xcb_get_selection_owner(connection, name->atom);
  const Owned<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, ownerCookie, nullptr));
  return owner && owner->owner != XCB_NONE;
}

}  // namespace

bool isCompositing() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return !x11 || !x11->connection() || selectionHasOwner(x11->connection(), "_NET_WM_CM_S0");
}

}  // namespace ui
