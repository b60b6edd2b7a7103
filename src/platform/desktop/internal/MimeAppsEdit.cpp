#include "platform/desktop/internal/MimeAppsEdit.h"

#include <functional>

namespace desktop {
namespace {

const QByteArray defaultSection = "[Default Applications]";

QByteArray keyOf(const QByteArray& line) {
  const qsizetype equals = line.indexOf('=');
  return equals < 0 ? QByteArray() : line.left(equals).trimmed();
}

QByteArrayList programsOf(const QByteArray& line) {
  QByteArrayList programs = line.mid(line.indexOf('=') + 1).trimmed().split(';');
  programs.removeAll(QByteArray());
  return programs;
}

/// Gives every line of the section of defaults to `edit`, which returns the lines to stand there;
/// the section's own line is among them.
QByteArrayList editedDefaults(const QByteArrayList& lines,
                              const std::function<QByteArrayList(const QByteArray&)>& edit) {
  QByteArrayList edited;
  bool inDefaults = false;
  for (const QByteArray& line : lines) {
    if (line.trimmed().startsWith('[')) inDefaults = line.trimmed() == defaultSection;
    edited += inDefaults ? edit(line) : QByteArrayList{line};
  }
  return edited;
}

/// The keys of the section of defaults.
QByteArrayList defaultKeys(const QByteArrayList& lines) {
  QByteArrayList keys;
  editedDefaults(lines, [&keys](const QByteArray& line) {
    keys << keyOf(line);
    return QByteArrayList();
  });
  return keys;
}

QByteArray withSection(QByteArray list) {
  for (const QByteArray& line : list.split('\n'))
    if (line.trimmed() == defaultSection) return list;
  if (!list.isEmpty() && !list.endsWith('\n')) list += '\n';
  return list + defaultSection + '\n';
}

}  // namespace

QByteArray withDefaultProgram(const QByteArray& list, const QByteArrayList& types,
                              const QByteArray& entry) {
  const QByteArrayList lines = withSection(list).split('\n');
  const QByteArrayList keys = defaultKeys(lines);
  bool added = false;
  const auto edit = [&](const QByteArray& line) -> QByteArrayList {
    if (types.contains(keyOf(line))) {
      QByteArrayList programs = programsOf(line);
      programs.removeAll(entry);
      programs.prepend(entry);
      return {keyOf(line) + '=' + programs.join(';') + ';'};
    }
    QByteArrayList result{line};
    if (line.trimmed() != defaultSection || added) return result;
    added = true;
    for (const QByteArray& type : types)
      if (!keys.contains(type)) result << type + '=' + entry + ';';
    return result;
  };
  return editedDefaults(lines, edit).join('\n');
}

QByteArray withoutDefaultProgram(const QByteArray& list, const QByteArrayList& types,
                                 const QByteArray& entry) {
  const auto edit = [&](const QByteArray& line) -> QByteArrayList {
    QByteArrayList programs = programsOf(line);
    if (!types.contains(keyOf(line)) || programs.removeAll(entry) == 0) return {line};
    if (programs.isEmpty()) return {};
    return {keyOf(line) + '=' + programs.join(';') + ';'};
  };
  return editedDefaults(list.split('\n'), edit).join('\n');
}

}  // namespace desktop
