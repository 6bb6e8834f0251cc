#pragma once

#include <QString>

namespace workbench {

/// Where an unattended run tells how it goes. Lines go to the standard output as they come.
/// Progress is one line that is drawn over, and left out when the output is not a terminal.
class RunOutput
{
public:
    RunOutput();
    ~RunOutput();

    void line(const QString &text);
    void progress(const QString &text);

private:
    void clearProgress();

    bool isTerminal;
    bool hasProgress = false;
};

} // namespace workbench
