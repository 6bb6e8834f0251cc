#include "PluginBench.h"

#include "HeadlessPlatform.h"

#include <QAbstractEventDispatcher>
#include <QLabel>
#include <QPluginLoader>
#include <QTest>

void PluginBench::initTestCase()
{
    silenceHeadlessPlatform();
    QVERIFY(loadPrototype());
}

ToolsInterface *PluginBench::loadPrototype(const QString &file)
{
    QPluginLoader loader(file);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    auto *const prototype = qobject_cast<ToolsInterface *>(loader.instance());
    if (!prototype)
        qCritical("%s", qPrintable(loader.errorString()));
    return prototype;
}

int PluginBench::timerInterval(QObject *object)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(object);
    return timers.isEmpty() ? -1 : timers.first().interval;
}

void PluginBench::show() const
{
    tool->show();
    QVERIFY(QTest::qWaitForWindowExposed(tool));
    tool->showPlugin();
}

QString PluginBench::status() const
{
    return tool->findChild<QLabel *>(QStringLiteral("lbStatus"))->text();
}
