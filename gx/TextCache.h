// Label texts laid out once and kept between paints.
//
// A scale draws the same few dozen labels on every repaint; laying a text out (shaping,
// measuring) costs more than drawing it. The cache keeps each text's layout for one font
// and is emptied when the font changes or it grows past a bound.
#pragma once

#include <QFont>
#include <QHash>
#include <QStaticText>
#include <QString>

class QPainter;

namespace gx {

class TextCache {
public:
    static constexpr int kMaxEntries = 1024;

    // The layout of `text` in `font`.
    const QStaticText& Get(const QString& text, const QFont& font);
    // Draws `text` in the painter's font with its top-left corner at `topLeft`.
    void Draw(QPainter& painter, const QPoint& topLeft, const QString& text);

private:
    QHash<QString, QStaticText> texts_;
    QFont font_;
};

}  // namespace gx
