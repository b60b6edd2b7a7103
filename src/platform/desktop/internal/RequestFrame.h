#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace desktop {

/// What one start of the program asks of the running instance.
struct InstanceRequest {
  enum class Kind : quint8 { Activate = 0, Open = 1, Action = 2 };

  Kind kind = Kind::Activate;
  /// The addresses, or the action's name.
  QStringList texts;
  QVariantMap platformData;
};

/// On the local socket a request is a frame: the length of its body (8 bytes, big-endian) and the
/// body.
inline constexpr int frameHeaderSize = 8;

QByteArray frame(const InstanceRequest& request);

/// The body's length from a frame's first `frameHeaderSize` bytes.
quint64 frameBodyLength(const QByteArray& header);

/// None when the body is damaged.
std::optional<InstanceRequest> requestFromBody(const QByteArray& body);

}  // namespace desktop
