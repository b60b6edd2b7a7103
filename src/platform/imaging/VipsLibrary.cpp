#include "platform/imaging/VipsLibrary.h"

#include <dlfcn.h>

#include <cstdlib>

#include "platform/imaging/ImagingError.h"

namespace imaging {

using namespace Qt::StringLiterals;

namespace {

/// The number stands for the interface that the headers at hand describe.
constexpr char libraryName[] = "libvips.so.42";

void ignoreWarning(const char*, GLogLevelFlags, const char*, gpointer) {}

Result<VipsLibrary> load() {
  const auto missing = [](const char* reason) {
    return tl::unexpected(imagingError(
        ImagingError::CannotEncode, u"Pictures other than PNG need the library libvips: %1."_s.arg(
                                        QString::fromLocal8Bit(reason))));
  };
  // Never closed: it has threads and exit handlers of its own.
  void* handle = ::dlopen(libraryName, RTLD_NOW | RTLD_LOCAL);
  if (!handle) return missing(::dlerror());
  VipsLibrary vips;
#define CORVALIS_VIPS_RESOLVE(name)                                          \
  vips.name = reinterpret_cast<decltype(vips.name)>(::dlsym(handle, #name)); \
  if (!vips.name) return missing(::dlerror());
  CORVALIS_VIPS_FUNCTIONS(CORVALIS_VIPS_RESOLVE)
#undef CORVALIS_VIPS_RESOLVE
  if (vips.vips_init("corvalis") != 0) return missing(vips.takeError().toLocal8Bit().constData());
  // Whatever goes wrong comes back as an error; standard error is for the program's own words.
  vips.g_log_set_handler("VIPS", G_LOG_LEVEL_WARNING, ignoreWarning, nullptr);
  // Each file is made once: a cache of operations would only hold memory.
  vips.vips_cache_set_max(0);
  vips.vips_concurrency_set(2);
  // Readers that are not hardened against hostile files stay shut, but for the one that reads what
  // this program writes.
  vips.vips_block_untrusted_set(TRUE);
  vips.vips_operation_block_set("VipsForeignLoadJp2k", FALSE);
  // Ends the library's threads, which would otherwise run on while the process is taken down.
  std::atexit([] { (*VipsLibrary::shared())->vips_shutdown(); });
  return vips;
}

}  // namespace

Result<const VipsLibrary*> VipsLibrary::shared() {
  static const Result<VipsLibrary> library = load();
  if (!library) return tl::unexpected(library.error());
  return &*library;
}

QString VipsLibrary::takeError() const {
  char* text = vips_error_buffer_copy();
  const QString error = QString::fromUtf8(text).simplified();
  g_free(text);
  return error;
}

}  // namespace imaging
