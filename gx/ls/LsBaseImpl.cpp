#include "gx/ls/LsBaseImpl.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include "gx/ls/LineStudy.h"
#include "gx/ls/LsUtil.h"
#include "module/CModule.h"

namespace gx {

namespace {

// Shapes are made for every paint and hit test: the title font is made once per family.
const QFont& TitleFont() {
    static QFont font;
    static QString family;
    static bool made = false;
    const CModule* module = CModule::Current();
    const QString wanted = module ? module->getFont(font::elementCode(12)) : QString();
    if (!made || wanted != family) {
        font = QFont();
        if (!wanted.isEmpty()) font.setFamily(wanted);
        font.setPointSize(7);
        family = wanted;
        made = true;
    }
    return font;
}

}  // namespace

LsBaseImpl::LsBaseImpl(const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect,
                       const lsControlPointsShapes& cps, int index, const LineStudy* study)
    : engine_(engine), rect_(rect), study_(study) {
    if (index < 0 || index >= cps.shapeCount || !cps.shapes) return;
    shape_ = cps.shapes + index;
    void* data = nullptr;
    std::memcpy(&data, reinterpret_cast<const char*>(shape_) + offsetof(lsShape, data), sizeof data);
    data_ = data;
    // Without a study the block is taken as large as its record (tests build shapes alone).
    dataSize_ = study ? study->GetShapeDataSize(index) : (1LL << 20);
}

QString LsBaseImpl::Title() const {
    if (!shape_) return QString();
    const char* title = shape_->title;
    const std::size_t n = strnlen(title, sizeof shape_->title);
    return QString::fromLocal8Bit(title, static_cast<int>(n));
}

bool LsBaseImpl::IsVisible() const {
    if (!shape_) return false;
    const std::int32_t visible = shape_->visible;
    return visible != 0;
}

QColor LsBaseImpl::Color() const {
    if (!shape_) return QColor(Qt::black);
    const std::uint32_t rgb = shape_->color;
    return QColor(static_cast<QRgb>(rgb | 0xFF000000u));
}

int LsBaseImpl::CalcX(int index) const { return util::LsBase::CalcX(engine_, index); }

int LsBaseImpl::CorrectCPIndex(int index, long last) const { return index > last ? int(index - last) : index; }

void LsBaseImpl::DrawTitle(QPainter& painter, int x, int y) const {
    if (!shape_ || rect_.bottom() < y) return;
    const QString text = Title();
    if (text.isEmpty()) return;
    const QFont& font = TitleFont();
    const QFontMetrics metrics(font);
    const QRect bounds = metrics.boundingRect(QRect(0, 0, 10000, 10000), Qt::AlignLeft | Qt::AlignTop, text);
    const int width = bounds.width();
    const int height = bounds.height();
    const std::int32_t alignment = shape_->titleAlignment;
    int textX;
    switch (alignment & 0x0F) {
        case 4:
        case 8: textX = x - width / 2; break;
        case 1: textX = x - width; break;
        default: textX = x + 2; break;
    }
    int baseline;
    switch (alignment & 0x70) {
        case 0x20: baseline = y + (height - 1) - 2; break;
        case 0x40: baseline = y + height / 2 - 2; break;
        default: baseline = y - 1; break;
    }
    const int cut = std::min(width, rect_.right() - textX + 1);
    if (cut <= 0) return;
    const int clipLeft = std::max(textX, rect_.left());
    painter.save();
    painter.setClipRect(QRect(QPoint(clipLeft, baseline - height), QPoint(textX + cut - 1, baseline - 1)));
    painter.setFont(font);
    painter.drawText(textX, baseline, text);
    painter.restore();
}

}  // namespace gx
