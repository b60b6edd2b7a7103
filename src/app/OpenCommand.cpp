#include "app/OpenCommand.h"

#include <QFile>
#include <cstdio>

#include "app/ActivationToken.h"
#include "intake/RequestInput.h"
#include "platform/desktop/ApplicationService.h"

using namespace Qt::StringLiterals;

namespace OpenCommand {

QString help() {
  return u"Usage: corvalis open ADDRESS...\n\n"
         "Hands web addresses and capture requests to the window, which opens when there is none.\n"
         "\"-\" reads one capture request from standard input, of up to 256 MB.\n"_s;
}

Result<QStringList> readRequests(const QStringList& arguments) {
  QStringList requests;
  for (const QString& argument : arguments) {
    if (argument != u"-"_s) {
      requests.append(argument);
      continue;
    }
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
      return failure(u"input"_s, 1, u"Standard input cannot be read."_s);
    }
    const auto request = RequestInput::readRequestText(input);
    if (!request) return tl::unexpected(request.error());
    requests.append(*request);
  }
  return requests;
}

Result<bool> handOver(const QStringList& requests) {
  const auto outcome =
      desktop::handOver(requests, ActivationToken::ofThisStart(), desktop::OnDemand::Start);
  if (!outcome) return tl::unexpected(outcome.error());
  return *outcome == desktop::HandOver::HandedOver;
}

}  // namespace OpenCommand
