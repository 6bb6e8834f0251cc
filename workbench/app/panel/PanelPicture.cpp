#include "PanelPicture.h"

#include "OutputFile.h"

#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QWidget>

namespace workbench {

namespace {

constexpr int pictureScale = 2;

} // namespace

QString savePicture(QWidget *panel, const QString &fileName)
{
    QImage image(panel->size() * pictureScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(pictureScale);
    image.fill(panel->palette().color(QPalette::Window));
    panel->render(&image);

    QSaveFile file;
    const QString problem = openOutput(file, fileName);
    if (!problem.isEmpty())
        return problem;
    QImageWriter writer(&file, QFileInfo(fileName).suffix().toLatin1());
    if (!writer.write(image))
        return QStringLiteral("%1: %2").arg(fileName, writer.errorString());
    return commitOutput(file);
}

} // namespace workbench
