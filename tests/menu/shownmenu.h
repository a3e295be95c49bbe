#pragma once

#include "creative/creativeimagecache.h"
#include "menu/hostmenuview.h"
#include "tests/support/hostfixture.h"
#include "tests/support/readingdecoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

namespace brimlet {

/// A menu over a store whose ports are fakes.
class ShownMenu final {
public:
    ShownMenu() {
        m_caches.folder = m_folder.filePath(QStringLiteral("caches"));
        reply(liveWeek());
    }

    HostFixture host;

    /// A reply for a live week with both slots filled.
    [[nodiscard]] static QJsonObject liveWeek() {
        return {{QStringLiteral("weekStatus"), QStringLiteral("live")},
                {QStringLiteral("estimatedCents"), 1234},
                {QStringLiteral("pendingStipendCents"), 1500},
                {QStringLiteral("liveHostCount"), 42},
                {QStringLiteral("liveDaysThisWeek"), 3},
                {QStringLiteral("liveBucketsToday"), 2},
                {QStringLiteral("liveBucketsNeeded"), 4},
                {QStringLiteral("agreed"), true},
                {QStringLiteral("fromApplications"), true},
                {QStringLiteral("creatives"),
                 QJsonArray{creative("left", "Quiet Bicycle"), creative("right", "Palindrome")}}};
    }
    [[nodiscard]] static QJsonObject creative(const char* slot, const QString& brand) {
        return {{QStringLiteral("slotId"), QString::fromLatin1(slot)},
                {QStringLiteral("brandName"), brand}};
    }
    [[nodiscard]] static QJsonObject creative(const char* slot, const char* brand) {
        return creative(slot, QString::fromUtf8(brand));
    }
    [[nodiscard]] static QJsonObject with(QJsonObject week, const char* key,
                                          const QJsonValue& value) {
        week[QString::fromLatin1(key)] = value;
        return week;
    }

    /// Sets the service's reply from now on.
    void reply(const QJsonObject& week) {
        const QByteArray body = QJsonDocument(week).toJson(QJsonDocument::Compact);
        for (const char* path :
             {"/api/display", "/api/host/heartbeat", "/api/host/me", "/api/host/agree"}) {
            host.http.answer(QString::fromLatin1(path), 200, body);
        }
    }
    /// The store, made at first use, with a token unless `hasToken` is false.
    [[nodiscard]] const std::shared_ptr<HostStore>& store() {
        if (!m_store) {
            if (hasToken) {
                host.keepToken("kept-token");
            }
            m_store = host.makeStore();
        }
        return m_store;
    }
    /// The store's assignment, to be changed directly: without a notch the store sends no requests.
    [[nodiscard]] Assignment& week() { return const_cast<Assignment&>(store()->assignment()); }
    /// Fetches the service's reply.
    void poll() { startTask(store()->refreshEstimate()); }
    /// Polls and shows the view.
    HostMenuView& show() {
        poll();
        return open();
    }
    /// Shows the view without a poll.
    HostMenuView& open() {
        view().show();
        m_window.show();
        return view();
    }
    [[nodiscard]] HostMenuView& view() {
        if (!m_view) {
            m_view = new HostMenuView(store(),
                                      CreativeEnvironment{m_images, host.clock, m_reduceMotion});
            m_view->setParent(&m_window);
        }
        return *m_view;
    }

    bool hasToken = true;

    /// A creative with this brand and no picture.
    [[nodiscard]] static SlotCreative slot(const QString& brand) {
        SlotCreative creative;
        creative.brandName = brand;
        return creative;
    }
    /// Shows the menu of a machine without a notch, with every optional part visible.
    HostMenuView& openWithEverything() {
        host.screens.set({}, {});
        Assignment& all = week();
        all.estimatedCents = 1234;
        all.pendingStipendCents = 1500;
        all.liveHostCount = 42;
        all.agreed = false;
        all.fromApplications = false;
        all.agreementText = QStringLiteral("Be kind.");
        all.left = slot(QStringLiteral("Quiet Bicycle"));
        all.right = slot(QStringLiteral("Palindrome"));
        return open();
    }

    /// The visible texts from top to bottom.
    [[nodiscard]] QStringList texts() {
        QStringList texts;
        for (const QLabel* const label : view().findChildren<QLabel*>()) {
            if (label->isVisibleTo(&view())) {
                texts << label->accessibleName();
            }
        }
        return texts;
    }
    /// The widget with this accessible name; null if there is none.
    template <typename Widget>
    [[nodiscard]] Widget* named(const QString& name) {
        for (Widget* const each : view().findChildren<Widget*>()) {
            if (each->accessibleName() == name) {
                return each;
            }
        }
        return nullptr;
    }
    /// The rectangle of a widget in the view's coordinates.
    [[nodiscard]] QRect place(const QWidget& widget) {
        return {widget.mapTo(&view(), QPoint()), widget.size()};
    }
    [[nodiscard]] QImage picture(double devicePixelRatio) {
        QImage image(view().size() * devicePixelRatio, QImage::Format_RGB32);
        image.setDevicePixelRatio(devicePixelRatio);
        image.fill(view().palette().color(QPalette::Window));
        view().render(&image, {}, {}, QWidget::DrawChildren);
        return image;
    }

private:
    QTemporaryDir m_folder;
    FakeCachesFolder m_caches;
    ReadingDecoder m_decoder;
    FakeReduceMotion m_reduceMotion;
    CreativeImageCache m_images{{host.http, m_decoder, m_caches}, 1};
    std::shared_ptr<HostStore> m_store;
    QWidget m_window;
    HostMenuView* m_view = nullptr; ///< Child of the window.
};

} // namespace brimlet
