#pragma once

#include <QStringList>
#include <QWidget>

/// The collected warnings, one row of 60 points each. No row can be selected.
class CVWarningPopoverController : public QWidget {
  Q_OBJECT

 public:
  explicit CVWarningPopoverController(QStringList warnings, QWidget* parent = nullptr);

  const QStringList& warnings() const { return warnings_; }
  int numberOfRows() const { return int(warnings_.size()); }

 private:
  const QStringList warnings_;
};
