#include "settings/CVOSXVersion.h"

CVOSXVersion::CVOSXVersion(const SystemVersion& version)
    : majorVersion_(version.major), minorVersion_(version.minor), patchVersion_(version.patch) {}
