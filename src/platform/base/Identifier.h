#pragma once

#include <QString>

/// A new random identifier (RFC 4122, version 4): 36 characters, upper-case digits, no braces.
QString newUniversallyUniqueIdentifier();
