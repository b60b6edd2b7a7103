#pragma once

#include "platform/rendering/LowDocumentRule.h"

/// A document whose boxes report almost no height still gets a usable canvas. Points.
inline constexpr rendering::LowDocumentRule lowDocument{100, 1000};
