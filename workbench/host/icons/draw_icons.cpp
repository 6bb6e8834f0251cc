// Draws the host's icons as PNG files into the folder given on the command line. Run by hand after
// a change to the drawings; the files are part of the source tree.

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTextStream>

#include <functional>

namespace {

constexpr int toolIconSize = 32;
// Shown at 9 by 9: edges on multiples of 4 stay sharp when scaled down.
constexpr int playerIconSize = 36;

const QColor frameColor(0x3b, 0x4a, 0x5a);
const QColor accentColor(0x1f, 0x78, 0xc8);
const QColor warmColor(0xd9, 0x6a, 0x1e);

QPen line(const QColor &color, qreal width)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void drawData(QPainter &painter)
{
    painter.setPen(line(frameColor, 2));
    painter.drawPolyline(QPolygonF({{5, 3}, {5, 27}, {29, 27}}));
    painter.setPen(line(accentColor, 3));
    painter.drawPolyline(QPolygonF({{9, 23}, {14, 14}, {19, 18}, {27, 6}}));
    painter.setPen(Qt::NoPen);
    painter.setBrush(warmColor);
    painter.drawEllipse(QPointF(27, 6), 3, 3);
}

void drawAmp(QPainter &painter)
{
    painter.setPen(line(frameColor, 2));
    painter.drawLine(2, 16, 7, 16);
    painter.drawLine(26, 16, 30, 16);
    painter.setBrush(QColor(0xe4, 0xef, 0xf9));
    painter.drawPolygon(QPolygonF({{7, 5}, {26, 16}, {7, 27}}));
    painter.setPen(line(accentColor, 2));
    QPainterPath wave(QPointF(10, 16));
    wave.cubicTo(12, 10, 13, 10, 14.5, 16);
    wave.cubicTo(16, 21, 17, 21, 19, 16);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(wave);
}

void drawCodeEditor(QPainter &painter)
{
    painter.setPen(line(frameColor, 2));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(3, 4, 26, 24), 3, 3);
    painter.drawLine(4, 10, 28, 10);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(line(accentColor, 2));
    painter.drawPolyline(QPolygonF({{11, 15}, {7, 19}, {11, 23}}));
    painter.drawPolyline(QPolygonF({{21, 15}, {25, 19}, {21, 23}}));
    painter.setPen(line(warmColor, 2));
    painter.drawLine(18, 14, 14, 24);
}

void drawRightTriangle(QPainter &painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawPolygon(QPolygonF({{4, 0}, {32, 18}, {4, 36}}));
}

void drawStopSquare(QPainter &painter)
{
    painter.fillRect(4, 4, 28, 28, Qt::black);
}

bool save(const QString &path, int size, const std::function<void(QPainter &)> &draw)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    painter.end();
    return image.save(path);
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        QTextStream(stderr) << "usage: draw_icons FOLDER\n";
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const bool isSaved =
        save(folder.filePath(QStringLiteral("data.png")), toolIconSize, drawData) &&
        save(folder.filePath(QStringLiteral("amp.png")), toolIconSize, drawAmp) &&
        save(folder.filePath(QStringLiteral("code-editor.png")), toolIconSize, drawCodeEditor) &&
        save(folder.filePath(QStringLiteral("right-black.png")), playerIconSize,
             drawRightTriangle) &&
        save(folder.filePath(QStringLiteral("stop-black.png")), playerIconSize, drawStopSquare);
    return isSaved ? 0 : 1;
}
