#pragma once

#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>

/// A CUPS scheduler with its own socket and folders, and queues that print nothing and so keep
/// their jobs: "office" (the default one), "attic", and "broken", which takes no jobs. Ends with
/// the object.
class Scheduler {
 public:
  /// Larger documents are refused in the middle of their way.
  static constexpr int kMostBytes = 1'000'000;

  /// Empty where CUPS is not installed.
  static std::unique_ptr<Scheduler> start();
  ~Scheduler();

  QString socket() const { return folder_.filePath(QStringLiteral("socket")); }
  /// The contents of a job's document.
  QByteArray document(int job) const;
  /// A job's attributes in their text form, by name.
  QMap<QString, QString> attributes(int job) const;
  /// The jobs that wait in the queues.
  QList<int> jobs() const;

 private:
  Scheduler() = default;
  void writeConfiguration() const;
  void write(const QString& name, const QString& text) const;
  bool isAnswering() const;
  bool addQueue(const QString& name, const QString& description) const;
  bool run(const QString& program, const QStringList& arguments) const;

  QTemporaryDir folder_;
  QProcess process_;
};
