#include "app/brimletapp.h"

#include "platform/sharedports.h"

#include <QCoreApplication>

namespace brimlet {
namespace {

std::shared_ptr<HostStore> sharedStore(const HostPorts& host, const OverlayPorts& overlay) {
    SharedPorts<HostPorts>::set(host);
    SharedPorts<OverlayPorts>::set(overlay);
    return HostStore::shared();
}

} // namespace

BrimletApp::BrimletApp(const HostPorts& host, const OverlayPorts& overlay, const MenuPorts& menu,
                       StartReason reason)
    : m_store(sharedStore(host, overlay))
    , m_menuBarExtra(m_store, menu, reason) {
    const auto render = [] { OverlayController::shared().refresh(); };
    QObject::connect(m_store.get(), &HostStore::overlayNeedsRender, &m_appDelegate, render,
                     Qt::DirectConnection);
    host.screens.observeChanges(render);
    menu.statusItem.observeMenu([this](InstanceRequest request) { handle(request); });
}

int BrimletApp::run() {
    m_appDelegate.applicationDidFinishLaunching();
    return QCoreApplication::exec();
}

void BrimletApp::handle(InstanceRequest request) {
    switch (request) {
    case InstanceRequest::Open:
        m_menuBarExtra.open();
        break;
    case InstanceRequest::Pause:
        m_store->pause24h();
        break;
    case InstanceRequest::Quit:
        QCoreApplication::quit();
        break;
    }
}

} // namespace brimlet
