#include "gx/TextCache.h"

#include <QPainter>

namespace gx {

const QStaticText& TextCache::Get(const QString& text, const QFont& font) {
    if (!(font == font_) || texts_.size() >= kMaxEntries) {
        texts_.clear();
        font_ = font;
    }
    auto it = texts_.find(text);
    if (it == texts_.end()) {
        QStaticText layout(text);
        layout.setTextFormat(Qt::PlainText);
        layout.setPerformanceHint(QStaticText::AggressiveCaching);
        layout.prepare(QTransform(), font);
        it = texts_.insert(text, layout);
    }
    return it.value();
}

void TextCache::Draw(QPainter& painter, const QPoint& topLeft, const QString& text) {
    painter.drawStaticText(topLeft, Get(text, painter.font()));
}

}  // namespace gx
