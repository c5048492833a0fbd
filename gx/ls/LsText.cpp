#include "gx/ls/LsText.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include "data/ScaleEngine.h"
#include "gx/ls/LsUtil.h"

namespace gx {

namespace {
const int kTextFlags = Qt::TextWordWrap | Qt::AlignTop | Qt::AlignLeft;
}

bool LsText::Layout(QPoint& anchor, QString& text, QFont& font, QRect& bounds) const {
    const lsShapeText* block = Block<lsShapeText>();
    if (!block || !IsVisible() || !engine_) return false;
    lsPointShape point;
    std::memcpy(&point, &block->anchor, sizeof point);
    anchor = QPoint(util::LsBase::CalcX(study_, engine_, point), engine_->TranslateY(point.value));
    // Both strings are read no further than their fields, terminated or not.
    const char* units = reinterpret_cast<const char*>(block) + offsetof(lsShapeText, text);
    int length = 0;
    coreWChar unit = 0;
    while (length < LS_TEXT_CHARS) {
        std::memcpy(&unit, units + sizeof(coreWChar) * std::size_t(length), sizeof unit);
        if (!unit) break;
        ++length;
    }
    std::vector<ushort> copy(std::size_t(length) + 1, 0);
    if (length) std::memcpy(copy.data(), units, sizeof(coreWChar) * std::size_t(length));
    text = QString::fromUtf16(reinterpret_cast<const char16_t*>(copy.data()), length);
    const std::size_t familyLength = strnlen(block->family, sizeof block->family);
    font = QFont(QString::fromLatin1(block->family, int(familyLength)));
    const std::int32_t size = block->pointSize;
    if (size > 0 && size < 1000) font.setPointSize(size);
    font.setBold(block->bold != 0);
    font.setItalic(block->italic != 0);
    font.setUnderline(block->underline != 0);
    font.setStrikeOut(block->strikeOut != 0);
    const QFontMetrics metrics(font);
    bounds = metrics.boundingRect(QRect(0, 0, std::max(1, rect_.width()), std::max(1, rect_.height())), kTextFlags, text);
    bounds.moveTopLeft(anchor);
    return true;
}

void LsText::Draw(QPainter& painter) {
    QPoint anchor;
    QString text;
    QFont font;
    QRect bounds;
    if (!Layout(anchor, text, font, bounds) || text.isEmpty()) return;
    const int height = bounds.height();
    const int left = std::max(anchor.x(), rect_.left());
    const int right = std::min(anchor.x() + bounds.width() - 1, rect_.right());
    const int bottom = std::min(anchor.y() + height + 4, rect_.bottom());
    if (right < left || bottom < anchor.y()) return;
    painter.save();
    painter.setClipRect(QRect(QPoint(left, anchor.y()), QPoint(right, bottom)));
    painter.setFont(font);
    painter.setPen(QPen(Color()));
    // One line, its baseline at the anchor's y plus the measured height.
    painter.drawText(QPoint(anchor.x(), anchor.y() + height), text);
    painter.restore();
}

bool LsText::PtInLS(const QPoint& point) const {
    QPoint anchor;
    QString text;
    QFont font;
    QRect bounds;
    if (!Layout(anchor, text, font, bounds) || text.isEmpty()) return false;
    return bounds.contains(point);
}

}  // namespace gx
