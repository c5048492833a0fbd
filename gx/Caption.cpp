#include "gx/Caption.h"

#include <QFontMetrics>
#include <QStaticText>
#include <QtMath>
#include <QMouseEvent>
#include <QPainter>

#include "gui/PFChartWidget.h"
#include "gx/Button.h"
#include "module/CModule.h"

namespace gx {

namespace {

QFont CaptionFont() {
    QFont font(CModule::Current() ? CModule::Current()->getFont(font::elementCode(12)) : QString::fromLatin1("Arial"));
    font.setPointSize(7);
    return font;
}

}  // namespace

Caption::Caption(const QRect& rect, PFChartWidget* widget)
    : Object(rect),
      button_(new Button(QRect(QPoint(rect.right() - 15, rect.top() + 1), QPoint(rect.right() - 6, rect.top() + 10)))),
      font_(CaptionFont()),
      widget_(widget) {
    colors_[TextColor] = QColor(0, 0, 255);
}

Caption::~Caption() = default;

void Caption::Draw(QPainter& painter) const {
    painter.save();
    painter.setClipRect(rect_);
    painter.setFont(font_);
    painter.setPen(colors_[TextColor]);
    const int x = rect_.left() + (widget_ ? widget_->CalcLRScaleWidth() : 0) + 4;
    const int y = rect_.top() + 12;  // the baseline
    const int top = y - painter.fontMetrics().ascent();
    const QStaticText& text = texts_.Get(text_, painter.font());
    painter.drawStaticText(QPoint(x, top), text);
    if (dayOff_) {
        painter.setPen(Qt::red);
        const QString mark = CModule::Current() ? CModule::Current()->tr("PF0022") : QStringLiteral("PF0022");
        painter.drawStaticText(QPoint(x + qCeil(text.size().width()) + 11, top), texts_.Get(mark, painter.font()));
    }
    button_->Draw(painter);
    painter.restore();
    DrawFrame(painter);
}

void Caption::Resize(const QSize& size) {
    Object::Resize(size);
    button_->Resize(QSize(buttonCloseSize, buttonCloseSize));
}

void Caption::Select(bool selected) {
    Object::Select(selected);
    button_->Select(selected);
}

void Caption::SetRect(const QRect& rect) {
    Object::SetRect(rect);
    button_->SetRect(QRect(QPoint(rect.right() - 10, rect.top() + 1), QPoint(rect.right() - 1, rect.top() + 10)));
}

bool Caption::CheckClose(const QMouseEvent& event) const {
    return event.button() == Qt::LeftButton && button_->Contains(event.pos());
}

bool Caption::mousePressEvent(const QMouseEvent& event) { return button_->mousePressEvent(event); }

void Caption::SetCaptionColor(const QColor& color) {
    if (color != colors_[TextColor]) colors_[TextColor] = color;
}

void Caption::UpdateButtonColor() { button_->UpdateProperties(widget_); }

}  // namespace gx
