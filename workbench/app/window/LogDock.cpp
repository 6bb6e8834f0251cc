#include "LogDock.h"

#include "MessageLog.h"

#include "DebugCategories.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLoggingCategory>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace workbench {

namespace {

constexpr int maximumLines = 5000;

QString levelName(QtMsgType level)
{
    switch (level) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtInfoMsg:
        return QStringLiteral("info");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
    case QtFatalMsg:
        break;
    }
    return QStringLiteral("error");
}

QColor levelColour(QtMsgType level, const QPalette &palette)
{
    switch (level) {
    case QtDebugMsg:
        return palette.color(QPalette::Disabled, QPalette::Text);
    case QtInfoMsg:
        return palette.color(QPalette::Text);
    case QtWarningMsg:
        return QColor(176, 96, 0);
    case QtCriticalMsg:
    case QtFatalMsg:
        break;
    }
    return QColor(192, 0, 0);
}

QString line(const LogEntry &entry)
{
    constexpr int levelWidth = 8;
    const QString time = entry.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    const QString source = entry.category == QLatin1String("default")
                               ? QString()
                               : entry.category + QStringLiteral(": ");
    return time + QLatin1Char(' ') + levelName(entry.level).leftJustified(levelWidth) + source +
           entry.text;
}

} // namespace

LogDock::LogDock(const MessageLog &log, QWidget *parent)
    : QDockWidget(tr("Log"), parent)
{
    setObjectName(QStringLiteral("logDock"));
    text = new QPlainTextEdit;
    text->setObjectName(QStringLiteral("logText"));
    text->setReadOnly(true);
    text->setUndoRedoEnabled(false);
    text->setMaximumBlockCount(maximumLines);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto *const content = new QWidget;
    auto *const layout = new QVBoxLayout(content);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(text);
    layout->addWidget(makeButtons());
    setWidget(content);

    for (const LogEntry &entry : log.entries())
        show(entry);
    connect(&log, &MessageLog::added, this, &LogDock::show);
}

QWidget *LogDock::makeButtons()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    lowLevel = new QCheckBox(tr("Low-level lines of the tools"));
    lowLevel->setObjectName(QStringLiteral("lowLevelLines"));
    lowLevel->setChecked(debLowLevel().isDebugEnabled());
    connect(lowLevel, &QCheckBox::toggled, this, &LogDock::setLowLevelEnabled);
    auto *const clear = new QPushButton(tr("Clear"));
    connect(clear, &QPushButton::clicked, text, &QPlainTextEdit::clear);
    layout->addWidget(lowLevel);
    layout->addStretch();
    layout->addWidget(clear);
    return row;
}

void LogDock::show(const LogEntry &entry)
{
    QTextCharFormat format;
    format.setForeground(levelColour(entry.level, palette()));
    text->setCurrentCharFormat(format);
    text->appendPlainText(line(entry));
}

void LogDock::setLowLevelEnabled(bool enabled)
{
    QLoggingCategory::setFilterRules(
        QStringLiteral("%1.debug=%2")
            .arg(QLatin1String(debLowLevel().categoryName()),
                 enabled ? QLatin1String("true") : QLatin1String("false")));
}

} // namespace workbench
