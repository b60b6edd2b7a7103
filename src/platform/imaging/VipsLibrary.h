#pragma once

#include <vips/vips.h>

#include <QString>
#include <memory>

#include "platform/base/Error.h"

namespace imaging {

/// The functions of libvips that are in use, found in the library when the first picture is
/// converted. Linking it instead would load it and its eighty dependencies at every start of the
/// program, also when no picture is made or the picture is a PNG file (20 ms of the time to the
/// first result). For this folder's sources only.
struct VipsLibrary {
  /// Loads and initialises the library once. Any thread.
  static Result<const VipsLibrary*> shared();

  /// What the library has to say about the last failure, in one line; forgets it.
  QString takeError() const;

#define CORVALIS_VIPS_FUNCTIONS(FUNCTION) \
  FUNCTION(g_object_unref)                \
  FUNCTION(vips_area_unref)               \
  FUNCTION(vips_array_double_newv)        \
  FUNCTION(vips_block_untrusted_set)      \
  FUNCTION(vips_cache_set_max)            \
  FUNCTION(vips_colourspace)              \
  FUNCTION(vips_concurrency_set)          \
  FUNCTION(vips_copy)                     \
  FUNCTION(vips_error_buffer_copy)        \
  FUNCTION(vips_flatten)                  \
  FUNCTION(vips_icc_transform)            \
  FUNCTION(vips_image_get_typeof)         \
  FUNCTION(vips_image_hasalpha)           \
  FUNCTION(vips_image_new_from_source)    \
  FUNCTION(vips_image_remove)             \
  FUNCTION(vips_image_set_blob_copy)      \
  FUNCTION(vips_image_set_string)         \
  FUNCTION(vips_image_write_to_target)    \
  FUNCTION(vips_init)                     \
  FUNCTION(vips_region_new)               \
  FUNCTION(vips_region_prepare)           \
  FUNCTION(vips_source_new_from_file)     \
  FUNCTION(vips_source_new_from_memory)   \
  FUNCTION(vips_target_custom_new)        \
  FUNCTION(vips_image_set_kill)           \
  FUNCTION(g_signal_connect_data)         \
  FUNCTION(vips_shutdown)                 \
  FUNCTION(vips_operation_block_set)      \
  FUNCTION(g_log_set_handler)             \
  FUNCTION(vips_thread_shutdown)          \
  FUNCTION(g_free)

#define CORVALIS_VIPS_MEMBER(name) decltype(&::name) name = nullptr;
  CORVALIS_VIPS_FUNCTIONS(CORVALIS_VIPS_MEMBER)
#undef CORVALIS_VIPS_MEMBER
};

/// Owns one reference to an object of the library.
struct VipsUnref {
  void operator()(void* object) const { (*VipsLibrary::shared())->g_object_unref(object); }
};
template <class Object>
using VipsOwned = std::unique_ptr<Object, VipsUnref>;

}  // namespace imaging
