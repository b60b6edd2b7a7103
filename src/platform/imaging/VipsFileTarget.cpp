#include "platform/imaging/VipsFileTarget.h"

#include <unistd.h>

namespace imaging {

VipsFileTarget::VipsFileTarget(const VipsLibrary& vips, PartFile& file, VipsImage* picture)
    : vips_(vips), file_(file), picture_(picture), target_(vips.vips_target_custom_new()) {
  connect("write", &VipsFileTarget::onWrite);
  connect("read", &VipsFileTarget::onRead);
  connect("seek", &VipsFileTarget::onSeek);
}

template <class Handler>
void VipsFileTarget::connect(const char* signal, Handler* handler) {
  vips_.g_signal_connect_data(target_.get(), signal, reinterpret_cast<GCallback>(handler), this,
                              nullptr, GConnectFlags(0));
}

gint64 VipsFileTarget::onWrite(VipsTargetCustom*, const void* bytes, gint64 length,
                               VipsFileTarget* self) {
  if (self->failure_) return length;
  self->failure_ = self->file_.write({static_cast<const char*>(bytes), qsizetype(length)});
  if (self->failure_) self->vips_.vips_image_set_kill(self->picture_, TRUE);
  return length;
}

gint64 VipsFileTarget::onRead(VipsTargetCustom*, void* bytes, gint64 length, VipsFileTarget* self) {
  return ::read(self->file_.descriptor(), bytes, size_t(length));
}

gint64 VipsFileTarget::onSeek(VipsTargetCustom*, gint64 offset, int whence, VipsFileTarget* self) {
  return ::lseek(self->file_.descriptor(), offset, whence);
}

}  // namespace imaging
