// A text anchored at one control point (shape type 2), in the font its data block names,
// wrapped to the area's width.
#pragma once

#include <QFont>

#include "gx/ls/LsBaseImpl.h"

namespace gx {

class LsText : public LsBaseImpl {
public:
    using LsBaseImpl::LsBaseImpl;
    void Draw(QPainter& painter) override;
    bool PtInLS(const QPoint& point) const override;

private:
    // The anchor, the text, its font and its measured rectangle; false when not shown.
    bool Layout(QPoint& anchor, QString& text, QFont& font, QRect& bounds) const;
};

}  // namespace gx
