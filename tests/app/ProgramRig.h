#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Runs the built program from outside, in an empty folder of its own and without a screen.
class ProgramRig
{
public:
    static constexpr int runTimeoutMs = 180000;

    struct Ending
    {
        int exitCode = -1;
        QStringList output;
        QStringList complaints; ///< what the program itself says on the standard error output
    };

    static QStringList lines(const QByteArray &text)
    {
        QStringList all = QString::fromLocal8Bit(text).split(QLatin1Char('\n'));
        all.removeAll(QString());
        return all;
    }

    bool isValid() const { return folder.isValid(); }
    QString path() const { return folder.path(); }
    QString filePath(const QString &name) const { return folder.filePath(name); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }

    /// The test fails when the file cannot be written.
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    /// Another program, with its arguments, that starts the one under test; empty for none.
    QStringList starter;

    std::unique_ptr<QProcess> start(const QStringList &arguments) const
    {
        auto process = std::make_unique<QProcess>();
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process->setProcessEnvironment(environment);
        process->setWorkingDirectory(folder.path());
        const QStringList command =
            starter + QStringList{QStringLiteral(WORKBENCH_PROGRAM)} + arguments;
        process->start(command.constFirst(), command.mid(1));
        return process;
    }

    /// The test fails when the program does not end by itself.
    Ending run(const QStringList &arguments) const
    {
        const auto process = start(arguments);
        Ending ending;
        if (!process->waitForFinished(runTimeoutMs) ||
            process->exitStatus() != QProcess::NormalExit) {
            QTest::qFail("the program did not end by itself", __FILE__, __LINE__);
            return ending;
        }
        ending.exitCode = process->exitCode();
        ending.output = lines(process->readAllStandardOutput());
        ending.complaints =
            lines(process->readAllStandardError())
                .filter(QRegularExpression(QStringLiteral("^(workbench|[^ ]+\\.xml:\\d+): ")));
        return ending;
    }

private:
    QTemporaryDir folder;
};
