#pragma once

#include "platform/mac/rules/macpanel.h"

#include <QPointF>
#include <QWidget>

#include <memory>
#include <vector>

namespace brimlet {

/// Panels that only remember what they were told. They stay here after their owner is gone.
class FakePanels final : public MacPanels {
public:
    struct Panel final {
        Rect frame;
        bool isShown = false;
        bool isClickPanel = false;
        CapsuleMouse* mouse = nullptr; ///< Of a panel that exists and takes the mouse.
        int requests = 0;              ///< Of placing, showing and hiding.
    };

    [[nodiscard]] std::unique_ptr<MacPanel> paintingPanel(QWidget& /*content*/) const override {
        return add(Panel());
    }
    [[nodiscard]] std::unique_ptr<MacPanel> clickPanel(CapsuleMouse& mouse) const override {
        return add({.frame = {}, .isClickPanel = true, .mouse = &mouse});
    }
    [[nodiscard]] QPointF pointerPosition() const override { return pointer; }
    void showHand(bool isHand) const override { hands.push_back(isHand); }

    QPointF pointer{-1, -1};
    bool isCovered = false; ///< Whether another window lies over all panels.
    mutable std::vector<bool> hands;
    mutable std::vector<std::shared_ptr<Panel>> all;

private:
    class Fake final : public MacPanel {
    public:
        Fake(const FakePanels& all, std::shared_ptr<Panel> panel)
            : m_all(all)
            , m_panel(std::move(panel)) {}
        ~Fake() override {
            m_panel->isShown = false;
            m_panel->mouse = nullptr;
        }
        Fake(const Fake&) = delete;
        Fake& operator=(const Fake&) = delete;

        void setFrame(const Rect& frame) override {
            m_panel->frame = frame;
            ++m_panel->requests;
        }
        void orderFrontRegardless() override { show(true); }
        void orderOut() override { show(false); }
        [[nodiscard]] PanelFacts facts() const override {
            return m_panel->isClickPanel ? kClickPanelFacts : PanelFacts{};
        }
        [[nodiscard]] bool takesClickAt(QPointF where) const override {
            const Rect& frame = m_panel->frame;
            return !m_all.isCovered && m_panel->isClickPanel && m_panel->isShown &&
                   where.x() >= frame.minX() && where.x() < frame.maxX() &&
                   where.y() >= frame.minY() && where.y() < frame.maxY();
        }

    private:
        void show(bool isShown) {
            m_panel->isShown = isShown;
            ++m_panel->requests;
        }

        const FakePanels& m_all;
        std::shared_ptr<Panel> m_panel;
    };

    [[nodiscard]] std::unique_ptr<MacPanel> add(const Panel& panel) const {
        all.push_back(std::make_shared<Panel>(panel));
        return std::make_unique<Fake>(*this, all.back());
    }
};

} // namespace brimlet
