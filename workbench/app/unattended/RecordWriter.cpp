#include "RecordWriter.h"

#include "OutputFile.h"

namespace workbench {

namespace {

constexpr double nsPerSecond = 1e9;
constexpr int timeDecimals = 6;

} // namespace

QString RecordWriter::begin(const QString &fileName)
{
    const QString problem = openOutput(file, fileName);
    if (problem.isEmpty())
        file.write("time (s),axis 0 (units),axis 1 (units)\n");
    return problem;
}

void RecordWriter::append(const Sample &sample)
{
    if (!file.isOpen())
        return;
    if (count++ == 0)
        firstTimeNs = sample.timeNs;
    const double seconds = static_cast<double>(sample.timeNs - firstTimeNs) / nsPerSecond;
    // QByteArray formats numbers the same way in every locale.
    file.write(QByteArray::number(seconds, 'f', timeDecimals) + ',' +
               QByteArray::number(sample.position.x()) + ',' +
               QByteArray::number(sample.position.y()) + '\n');
}

QString RecordWriter::finish()
{
    return file.isOpen() ? commitOutput(file) : QString();
}

} // namespace workbench
