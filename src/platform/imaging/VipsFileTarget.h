#pragma once

#include "platform/base/Error.h"
#include "platform/imaging/PartFile.h"
#include "platform/imaging/VipsLibrary.h"

namespace imaging {

/// Where an encoder of libvips writes to. The encoders do not take a failed write well: the one for
/// JPEG 2000 tries for ever. So the first failure is kept, the picture is stopped, and the rest of
/// the bytes are accepted and dropped.
class VipsFileTarget {
 public:
  /// Both outlive the target.
  VipsFileTarget(const VipsLibrary& vips, PartFile& file, VipsImage* picture);
  VipsFileTarget(const VipsFileTarget&) = delete;
  VipsFileTarget& operator=(const VipsFileTarget&) = delete;

  VipsTarget* target() const { return &target_->parent_object; }
  const MaybeError& failure() const { return failure_; }

 private:
  static gint64 onWrite(VipsTargetCustom*, const void* bytes, gint64 length, VipsFileTarget* self);
  static gint64 onRead(VipsTargetCustom*, void* bytes, gint64 length, VipsFileTarget* self);
  static gint64 onSeek(VipsTargetCustom*, gint64 offset, int whence, VipsFileTarget* self);
  template <class Handler>
  void connect(const char* signal, Handler* handler);

  const VipsLibrary& vips_;
  PartFile& file_;
  VipsImage* picture_;
  VipsOwned<VipsTargetCustom> target_;
  MaybeError failure_;
};

}  // namespace imaging
