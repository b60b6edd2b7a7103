#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace desktop {

/// The list with the entry as the first default program of every type; all other lines stay as they
/// are, byte for byte.
QByteArray withDefaultProgram(const QByteArray& list, const QByteArrayList& types,
                              const QByteArray& entry);

/// The list without the entry among the types' default programs.
QByteArray withoutDefaultProgram(const QByteArray& list, const QByteArrayList& types,
                                 const QByteArray& entry);

}  // namespace desktop
