#pragma once

#include <QWidget>
#include <functional>

namespace ui {

/// The strip of quick actions in the main window, which stands in for a touch bar. Hidden until it
/// has items.
class QuickActions : public QWidget {
  Q_OBJECT

 public:
  explicit QuickActions(QWidget* parent = nullptr);

  /// One button for each identifier that there is an item for; others get none.
  void makeItems(const QStringList& identifiers,
                 std::function<void(const QString& identifier)> action);
  bool hasItems() const;
};

}  // namespace ui
