// The base of every node of a chart's object tree: chart, area, layer, indicator, line,
// caption, button and line study.
//
// An object has a rectangle in widget coordinates, a selected flag, a frame flag and four
// colours. The colours start as black, white, black and a light warm grey; the first is the
// frame pen and the subclasses use the others as their fill, text and background colours.
#pragma once

#include <QColor>
#include <QRect>

class QPainter;

namespace gx {

class Object {
public:
    enum ColorIndex { FrameColor = 0, FillColor = 1, TextColor = 2, BackColor = 3 };

    Object();
    explicit Object(const QRect& rect);
    virtual ~Object();

    virtual void Draw(QPainter& painter) const = 0;
    // Moves the rectangle's top-left corner.
    virtual void Move(const QPoint& to);
    // Sets the rectangle's size.
    virtual void Resize(const QSize& size);
    virtual void Select(bool selected);
    virtual void SetRect(const QRect& rect);

    bool IsSelected() const { return selected_; }
    // Writes the selected flag without the class's Select (the Selector visitor does this).
    void SetSelectedFlag(bool selected) { selected_ = selected; }
    bool HasFrame() const { return frame_; }
    void SetFrame(bool frame) { frame_ = frame; }
    const QRect& Rect() const { return rect_; }
    const QColor& GetColor(ColorIndex i) const { return colors_[i]; }
    void SetColor(ColorIndex i, const QColor& c) { colors_[i] = c; }

protected:
    // The one-pixel frame in the first colour, when the frame flag is set.
    void DrawFrame(QPainter& painter) const;

    bool frame_ = false;
    bool selected_ = false;
    QColor colors_[4];
    QRect rect_;
};

}  // namespace gx
