#include "PluginRig.h"

#include "HeadlessPlatform.h"

#include <QAbstractEventDispatcher>
#include <QLabel>
#include <QPluginLoader>
#include <QTest>

void PluginRig::initTestCase()
{
    silenceHeadlessPlatform();
    QVERIFY(loadPrototype());
}

ToolsInterface *PluginRig::loadPrototype(const QString &file)
{
    QPluginLoader loader(file);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    if (!prototype)
        qCritical("%s", qPrintable(loader.errorString()));
    return prototype;
}

int PluginRig::timerInterval(QObject *object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(object);
    return timers.isEmpty() ? -1 : timers.first().interval;
}

void PluginRig::show() const
{
    tool->show();
    QVERIFY(QTest::qWaitForWindowExposed(tool));
    tool->showPlugin();
}

QString PluginRig::status() const
{
    return tool->findChild<QLabel *>(QStringLiteral("lbStatus"))->text();
}
