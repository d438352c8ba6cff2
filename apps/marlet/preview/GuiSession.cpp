#include "GuiSession.h"

#include <QGuiApplication>

#include <memory>

namespace marlet::tool
{

void RequireGuiSession()
{
    if (QCoreApplication::instance())
        return;
    // Whatever display there may be, nothing is shown on it.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // What Qt has to say of the machine is nothing that a user of the tool can do anything about.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    static int argumentCount = 1;
    static char name[] = "marlet";
    static char *arguments[] = {name, nullptr};
    static const auto session = std::make_unique<QGuiApplication>(argumentCount, arguments);
}

} // namespace marlet::tool
