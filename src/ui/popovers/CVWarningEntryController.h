#pragma once

#include <QWidget>

/// One warning.
class CVWarningEntryController : public QWidget {
  Q_OBJECT

 public:
  explicit CVWarningEntryController(const QString& warning, QWidget* parent = nullptr);
};
