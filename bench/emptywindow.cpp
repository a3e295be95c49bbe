// The least program that shows something with Qt Widgets: an empty black window with the overlay's
// flags where the left capsule stands on the 14-inch machine. It reads and sends nothing.
//   bench-empty-window

#include <QApplication>
#include <QWidget>

int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    QWidget window(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint |
                                Qt::NoDropShadowWindowHint);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.setWindowTitle(QStringLiteral("Brimlet"));
    window.setPalette(QPalette(Qt::black));
    window.setGeometry(542 + 8, 1, 108, 24);
    window.show();
    return QCoreApplication::exec();
}
