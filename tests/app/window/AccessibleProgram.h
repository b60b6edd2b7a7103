#pragma once

#include <QDBusConnection>
#include <QRect>
#include <QStringList>
#include <functional>
#include <optional>

/// The running Corvalis as assistive technology sees it: through the accessibility bus, and only
/// what is on the screen.
class AccessibleProgram {
 public:
  explicit AccessibleProgram(const QDBusConnection& sessionBus);
  ~AccessibleProgram();
  AccessibleProgram(const AccessibleProgram&) = delete;
  AccessibleProgram& operator=(const AccessibleProgram&) = delete;

  /// Names of all that have the role, as "list item", in reading order.
  QStringList names(const QString& role) const;
  /// The names of the queue's rows: title, address and state.
  QStringList rows() const { return names(QStringLiteral("list item")); }
  bool has(const QString& role, const QString& name) const;

  /// Does what a click on it would; false when there is no such thing.
  bool press(const QString& role, const QString& name) const;
  /// Its place on the screen, in pixels; empty when there is no such thing.
  QRect place(const QString& role, const QString& name) const;

 private:
  /// An object of the program.
  struct Node {
    QString service;
    QString path;
  };
  struct Facts {
    QString role;
    QString name;
  };
  /// Ends the walk with true.
  using Visit = std::function<bool(const Node& node, const Facts& facts)>;

  QVariant call(const Node& node, const QString& interface, const QString& method,
                const QVariantList& arguments = {}) const;
  QList<Node> children(const Node& node) const;
  QString name(const Node& node) const;
  bool isShown(const Node& node) const;
  bool walk(const Node& node, const Visit& visit) const;
  std::optional<Node> application() const;
  std::optional<Node> find(const QString& role, const QString& name) const;

  QDBusConnection bus_;
};
