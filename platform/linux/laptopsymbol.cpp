#include "platform/linux/laptopsymbol.h"

#include <QIconEngine>
#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>

namespace brimlet {
namespace {

/// The symbol in one colour, drawn into `box`.
QImage silhouette(QSize size, const QRectF& box, const QColor& color) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(QStringLiteral(":/brimlet/app.brimlet.host-symbolic.svg")).render(&painter, box);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

/// The name of the symbol in the icon theme; empty when it is not installed.
QString installedName() {
    const QString name = QStringLiteral("app.brimlet.host-symbolic");
    const QString file = QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name);
    return QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty() ? QString()
                                                                                       : name;
}

class LaptopSymbol final : public QIconEngine {
public:
    QString iconName() override { return installedName(); }
    QIconEngine* clone() const override { return new LaptopSymbol; }
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return {QSize(22, 22), QSize(24, 24), QSize(32, 32), QSize(44, 44), QSize(48, 48)};
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/,
               QIcon::State /*state*/) override {
        const int side = qMin(rect.width(), rect.height());
        const double edge = qMax(1.0, side / 22.0);
        const QRectF box(edge, edge, side - 2 * edge, side - 2 * edge);
        const QPointF corner(rect.x() + (rect.width() - side) / 2.0,
                             rect.y() + (rect.height() - side) / 2.0);
        const QSize size(side, side);
        const QImage shade = silhouette(size, box, QColor(0, 0, 0, 160));
        for (const QPointF step :
             {QPointF(-edge, 0), QPointF(edge, 0), QPointF(0, -edge), QPointF(0, edge)}) {
            painter->drawImage(corner + step, shade);
        }
        painter->drawImage(corner, silhouette(size, box, Qt::white));
    }
};

} // namespace

QIcon laptopSymbol() {
    return QIcon(new LaptopSymbol);
}

} // namespace brimlet
