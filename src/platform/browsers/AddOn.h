#pragma once

#include <QString>

/// What our browser add-on is known by.
namespace browsers {

/// The name of its native-messaging host.
inline constexpr char16_t hostName[] = u"com.maplebrook.corvalis";

/// The identifier that follows from the "key" in browser-addon/manifest.json: the first 32 digits
/// of the key's SHA-256, with a for 0 to p for 15.
inline constexpr char16_t chromiumAddOn[] = u"pngikhbjjhbepnkbnafjpoiokbnjgoip";

/// "browser_specific_settings" in the same file.
inline constexpr char16_t firefoxAddOn[] = u"corvalis@maplebrook.com";

}  // namespace browsers
