#include "RunOutput.h"

#include <cstdio>
#include <unistd.h>

namespace workbench {

namespace {

void print(FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

} // namespace

RunOutput::RunOutput()
    : isTerminal(isatty(STDOUT_FILENO) != 0)
{
}

RunOutput::~RunOutput()
{
    clearProgress();
}

void RunOutput::line(const QString &text)
{
    clearProgress();
    print(stdout, text + QLatin1Char('\n'));
}

void RunOutput::progress(const QString &text)
{
    if (!isTerminal)
        return;
    clearProgress();
    print(stdout, text);
    hasProgress = true;
}

void RunOutput::clearProgress()
{
    if (hasProgress)
        print(stdout, QStringLiteral("\r\033[K"));
    hasProgress = false;
}

} // namespace workbench
