#include <QString>

#include "app/IntegrateCommand.h"
#include "app/NativeHostCommand.h"

/// The two commands as the program runs them.
int main(int argc, char** argv) {
  QStringList arguments;
  for (int index = 1; index < argc; ++index)
    arguments.append(QString::fromLocal8Bit(argv[index]));
  if (arguments.isEmpty()) return 2;
  const QString command = arguments.takeFirst();
  if (command == u"native-host") return runNativeHostCommand(arguments);
  if (command == u"integrate") return runIntegrateCommand(arguments);
  return 2;
}
