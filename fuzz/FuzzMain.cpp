#include "Targets.h"

#include <QTextCodec>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

// One program for each target: FUZZ_TARGET is the function of Targets.h that it runs. libFuzzer
// brings main() and calls these two by name.

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Whatever the shell is set to, so that a finding is one everywhere.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QString problem = fuzz::FUZZ_TARGET(bytes);
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "property broken: %s\n", qPrintable(problem));
        std::abort();
    }
    return 0;
}
