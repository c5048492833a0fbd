#include "gx/ls/LineStudy.h"

#include "data/ScaleEngine.h"
#include "gx/Line.h"

namespace gx {

LineStudy::LineStudy(Line* line, void* hostHandle, const boost::shared_ptr<pf::ScaleEngine>& engine,
                     const QRect& rect)
    : Object(rect), line_(line), hostHandle_(hostHandle), engine_(engine) {}

LineStudy::~LineStudy() { ReleaseTempDraw(); }

void LineStudy::Draw(QPainter&) const {
    // Nothing to draw until the host has given the study its shapes.
}

void LineStudy::Select(bool selected) { Object::Select(selected); }

void LineStudy::SetRect(const QRect& rect) { Object::SetRect(rect); }

void LineStudy::Resize(const QSize& size) { Object::Resize(size); }

bool LineStudy::PtInLS(const QPoint&) const { return false; }

void LineStudy::SetTempDraw(QPicture* picture) {
    if (picture == tempDraw_) return;
    ReleaseTempDraw();
    tempDraw_ = picture;
}

void LineStudy::ReleaseTempDraw() {
    delete tempDraw_;
    tempDraw_ = nullptr;
}

}  // namespace gx
