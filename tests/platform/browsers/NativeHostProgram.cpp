#include <QFile>
#include <QString>
#include <cstdio>

#include "app/IntegrateCommand.h"
#include "app/NativeHostCommand.h"

namespace {

/// Stands for the program's window: keeps what it is given on standard input.
int recordRequest() {
  QFile input, record(qEnvironmentVariable("RECORDED_REQUEST"));
  if (!input.open(stdin, QIODevice::ReadOnly) || !record.open(QIODevice::WriteOnly)) return 1;
  record.write(input.readAll() + '\n');
  return 0;
}

}  // namespace

/// The two commands as the program runs them.
int main(int argc, char** argv) {
  QStringList arguments;
  for (int index = 1; index < argc; ++index)
    arguments.append(QString::fromLocal8Bit(argv[index]));
  if (arguments.isEmpty()) return 2;
  const QString command = arguments.takeFirst();
  if (command == u"native-host") return runNativeHostCommand(arguments);
  if (command == u"integrate") return runIntegrateCommand(arguments);
  if (command == u"open" && arguments == QStringList{QStringLiteral("-")}) return recordRequest();
  return 2;
}
