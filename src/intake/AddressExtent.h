#pragma once

#include <QStringView>

/// Where an address that stands in a text ends.
namespace AddressExtent {

/// The end of the address that begins at `start` and goes on at least to `from`. White space,
/// quotes, angle brackets, East Asian punctuation, a closing bracket that was not opened inside,
/// the quote or emphasis mark that stands before `start`, and the next address of a list end it;
/// punctuation of the sentence is not part of it. Looks at each character once.
qsizetype endOf(QStringView text, qsizetype start, qsizetype from);

/// Whether "http://" or "https://" stands at `position`, in any case.
bool isWebSchemeAt(QStringView text, qsizetype position);

}  // namespace AddressExtent
