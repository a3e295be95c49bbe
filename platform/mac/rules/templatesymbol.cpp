#include "platform/mac/rules/templatesymbol.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace brimlet {

QIcon templateSymbol() {
    QSvgRenderer laptop(QStringLiteral(":/brimlet/app.brimlet.host-symbolic.svg"));
    QIcon icon;
    for (const int side : {16, 18, 32, 36}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        laptop.render(&painter);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), Qt::black);
        painter.end();
        icon.addPixmap(pixmap);
    }
    icon.setIsMask(true);
    return icon;
}

} // namespace brimlet
