// The caption strip at the top of an area: the names of what the area shows, in the colour
// of its last drawn line, a "non-trading time" mark when the instrument is in a day off, and
// the area's close button.
#pragma once

#include <QFont>
#include <QString>
#include <boost/scoped_ptr.hpp>

#include "gx/Object.h"
#include "gx/TextCache.h"

class QMouseEvent;
class PFChartWidget;

namespace gx {

class Button;

class Caption : public Object {
public:
    static constexpr int defaultHeight = 16;
    static constexpr int buttonCloseSize = 10;

    Caption(const QRect& rect, PFChartWidget* widget);
    ~Caption() override;

    void Draw(QPainter& painter) const override;
    void Resize(const QSize& size) override;
    void Select(bool selected) override;
    void SetRect(const QRect& rect) override;

    // True for a left-button event inside the close button.
    bool CheckClose(const QMouseEvent& event) const;
    // Passes the press to the close button; returns whether it was hit.
    bool mousePressEvent(const QMouseEvent& event);
    // Replaces the text colour only when `color` differs from it.
    void SetCaptionColor(const QColor& color);
    void UpdateButtonColor();

    void SetText(const QString& text) { text_ = text; }
    const QString& GetText() const { return text_; }
    void SetDayOff(bool dayOff) { dayOff_ = dayOff; }
    bool IsDayOff() const { return dayOff_; }
    Button* GetButton() const { return button_.get(); }
    const QFont& GetFont() const { return font_; }

private:
    boost::scoped_ptr<Button> button_;
    QString text_;
    QFont font_;
    bool dayOff_ = false;
    PFChartWidget* widget_;
    // The caption and the day-off mark laid out once.
    mutable TextCache texts_;
};

}  // namespace gx
