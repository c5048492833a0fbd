#include "gx/Layer.h"

#include <QPainter>

#include "gx/Area.h"
#include "gx/IndexRule.h"
#include "gx/Indicator.h"

namespace gx {

namespace {
template <class T>
std::vector<boost::shared_ptr<T> > Copy(const std::vector<boost::shared_ptr<T> >& v) {
    return v;
}
}  // namespace

Layer::Layer(Area* area, const QRect& rect, const boost::shared_ptr<pf::ScaleEngine>& engine)
    : Object(rect), area_(area), engine_(engine) {}

Layer::~Layer() = default;

void Layer::Draw(QPainter& painter) const {
    for (const boost::shared_ptr<Indicator>& indicator : indicators_) indicator->Draw(painter);
    DrawFrame(painter);
}

void Layer::Resize(const QSize& size) {
    Object::Resize(size);
    for (const boost::shared_ptr<Indicator>& indicator : indicators_) indicator->Resize(size);
}

void Layer::SetRect(const QRect& rect) {
    Object::SetRect(rect);
    for (const boost::shared_ptr<Indicator>& indicator : indicators_) indicator->SetRect(rect);
}

boost::shared_ptr<Indicator> Layer::AddIndicator(const boost::shared_ptr<pf::DataSource>& source) {
    boost::shared_ptr<Indicator> indicator(new Indicator(this, source, rect_, engine_));
    indicators_.push_back(indicator);
    return indicator;
}

int Layer::GetIndex() const { return area_ ? IndexOf(area_->GetLayers(), this) : -1; }

void Layer::FillContextMenu() {
    for (const boost::shared_ptr<Indicator>& indicator : Copy(indicators_)) indicator->FillContextMenu();
}

void Layer::mousePressEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Indicator>& indicator : Copy(indicators_)) indicator->mousePressEvent(event);
}

void Layer::mouseReleaseEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Indicator>& indicator : Copy(indicators_)) indicator->mouseReleaseEvent(event);
}

void Layer::mouseDoubleClickEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Indicator>& indicator : Copy(indicators_)) indicator->mouseDoubleClickEvent(event);
}

void Layer::keyPressEvent(const QKeyEvent& event) {
    for (const boost::shared_ptr<Indicator>& indicator : Copy(indicators_)) indicator->keyPressEvent(event);
}

void Layer::mouseMoveEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Indicator>& indicator : Copy(indicators_)) indicator->mouseMoveEvent(event);
}

}  // namespace gx
