#pragma once

#include "creative/creativeenvironment.h"
#include "creative/creativemark.h"
#include "host/assignment.h"

#include <QWidget>

namespace brimlet {

/// A creative's mark of 18 points on a square of 22 points; without a creative only the square, in
/// grey.
class MarkView final : public QWidget {
    Q_OBJECT

public:
    /// What `environment` refers to outlives the view.
    explicit MarkView(const CreativeEnvironment& environment);

    /// Without a creative the view forgets the picture.
    void setCreative(const std::optional<SlotCreative>& creative);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    CreativeMark m_mark;
    bool m_hasCreative = false;
};

} // namespace brimlet
