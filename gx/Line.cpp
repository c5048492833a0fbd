#include "gx/Line.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include "data/KVPFLine.h"
#include "data/PointData.h"
#include "data/PointDataFactory.h"
#include "data/ScaleEngine.h"
#include "gx/Area.h"
#include "gx/Caption.h"
#include "gx/Chart.h"
#include "gx/FigurePicture.h"
#include "gx/IndexRule.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/ls/LineStudy.h"

namespace gx {

Line::Line(Indicator* indicator, fxDataPointArray* array, const boost::shared_ptr<pf::ScaleEngine>& engine,
           const QRect& rect)
    : Object(rect), array_(array), picture_(new FigurePicture), engine_(engine), indicator_(indicator) {
    if (array_) renderer_ = pf::PointDataFactory::Instance().Create(array_->name.name, engine_, this);
}

Line::Line(Indicator* indicator, const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect)
    : Object(rect), picture_(new FigurePicture), engine_(engine), indicator_(indicator) {}

Line::~Line() = default;

void Line::SetArray(fxDataPointArray* array) {
    array_ = array;
    ++generation_;
    if (array_ && !renderer_) renderer_ = pf::PointDataFactory::Instance().Create(array_->name.name, engine_, this);
}

int Line::Size() const {
    if (!array_ || array_->pointCount < 0) return 0;
    return pf::PointData::RecordCount(array_);
}

std::int32_t Line::GetTime(int index) const {
    if (index < 0 || index >= Size()) return 0;
    return pf::PointData::Record(array_, index).time;
}

char Line::GetPeriodType() const { return array_ ? array_->name.period.type : 'I'; }

int Line::GetPeriodLength() const {
    if (!array_) return 0;
    std::int32_t length = 0;
    std::memcpy(&length, reinterpret_cast<const char*>(&array_->name.period) + 1, sizeof length);
    return length;
}

Chart* Line::GetChart() const { return indicator_ ? indicator_->GetChart() : nullptr; }

int Line::GetIndex() const { return indicator_ ? IndexOf(indicator_->GetLines(), this) : -1; }

void Line::Draw(QPainter& painter) const {
    if (Size() < 1 || !renderer_) return;
    // The studies go into the line's picture with its figures while none of them is being
    // placed or moved; one that is follows the mouse and is drawn afresh each time.
    QByteArray studiesKey;
    const bool keepStudies = !studies_.empty() && KeepsStudies(&studiesKey);
    const auto drawStudies = [this](QPainter& p) {
        for (const boost::shared_ptr<LineStudy>& study : studies_) study->Draw(p);
    };
    if (keepStudies)
        picture_->Draw(painter, rect_, *renderer_, array_, IsSelected(), generation_, studiesKey, drawStudies);
    else
        picture_->Draw(painter, rect_, *renderer_, array_, IsSelected(), generation_);
    // The caption shows the colour of the last line drawn in the area.
    Layer* layer = indicator_ ? indicator_->GetLayer() : nullptr;
    Area* area = layer ? layer->GetArea() : nullptr;
    if (area) {
        area->GetCaption()->SetCaptionColor(QColor(static_cast<QRgb>(array_->typeShow.color0)));
        area->GetCaption()->UpdateButtonColor();
    }
    // Clipped as in the picture, so that a study looks the same either way.
    if (!keepStudies && !studies_.empty()) FigurePicture::DrawOverlay(painter, rect_, drawStudies);
}

bool Line::KeepsStudies(QByteArray* key) const {
    QByteArray own;
    for (const boost::shared_ptr<LineStudy>& study : studies_)
        if (!study->AppendDrawKey(key ? *key : own)) return false;
    return true;
}

void Line::Resize(const QSize& size) {
    Object::Resize(size);
    for (const boost::shared_ptr<LineStudy>& study : studies_) study->Resize(size);
}

void Line::Select(bool selected) { selected_ = selected; }

void Line::SetRect(const QRect& rect) {
    Object::SetRect(rect);
    for (const boost::shared_ptr<LineStudy>& study : studies_) study->SetRect(rect);
}

QString Line::ToolTipAt(const QPoint& point) const {
    QString text;
    if (Size() < 1 || !renderer_) return text;
    const QString caption = indicator_ ? indicator_->MakeCaptionIndicator() : name_;
    renderer_->IsUnderMouse(point, array_, caption, text);
    return text;
}

bool Line::IsOnDataClicked(const QPoint& point) const {
    if (Size() < 1 || !renderer_) return false;
    QString text;
    const QString caption = indicator_ ? indicator_->MakeCaptionIndicator() : name_;
    return renderer_->IsUnderMouse(point, array_, caption, text);
}

void Line::AddLineStudy(const boost::shared_ptr<LineStudy>& study) {
    if (study) studies_.push_back(study);
}

void Line::DeleteLineStudy(LineStudy* study) {
    studies_.erase(std::remove_if(studies_.begin(), studies_.end(),
                                  [study](const boost::shared_ptr<LineStudy>& s) { return s.get() == study; }),
                   studies_.end());
}

std::vector<boost::shared_ptr<LineStudy> > Line::FindLS(int stateMask) const {
    std::vector<boost::shared_ptr<LineStudy> > out;
    for (const boost::shared_ptr<LineStudy>& s : studies_)
        if (s->GetState() & stateMask) out.push_back(s);
    return out;
}

std::vector<boost::shared_ptr<LineStudy> > Line::FindLSSelected() const {
    std::vector<boost::shared_ptr<LineStudy> > out;
    for (const boost::shared_ptr<LineStudy>& s : studies_)
        if (s->IsSelected()) out.push_back(s);
    return out;
}

bool Line::IsGroupSelectLS(const QMouseEvent& event, const std::vector<boost::shared_ptr<LineStudy> >& studies) const {
    for (const boost::shared_ptr<LineStudy>& s : studies)
        if (!s->PtInLS(event.pos())) return false;
    return true;
}

void Line::SelectingLS(const QMouseEvent& event, int& hits, int& candidates) const {
    hits = 0;
    candidates = 0;
    for (const boost::shared_ptr<LineStudy>& s : studies_) {
        if (!s->IsSelected()) continue;
        ++candidates;
        if (s->PtInLS(event.pos())) ++hits;
    }
}

void Line::FillContextMenu() {
    // The line itself is listed by its indicator; its studies add their own entries.
    for (const boost::shared_ptr<LineStudy>& study : studies_) study->FillContextMenu();
}

void Line::mousePressEvent(const QMouseEvent& event) {
    if (!FindLS(LineStudy::StateMoving).empty()) return;
    if (studies_.empty() && !selected_) {
        if (Chart* chart = GetChart()) chart->StartSelectedPF(event);
    }
    int hits = 0;
    int candidates = 0;
    SelectingLS(event, hits, candidates);
    groupSelect_ = (hits <= 0 || hits >= candidates) ? 1 : 0;
    for (const boost::shared_ptr<LineStudy>& study : std::vector<boost::shared_ptr<LineStudy> >(studies_))
        study->mousePressEvent(event);
}

// The studies may leave the line while they handle an event (a cancelled or failed study),
// so each handler walks a copy of the list.
void Line::mouseReleaseEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<LineStudy>& study : std::vector<boost::shared_ptr<LineStudy> >(studies_))
        study->mouseReleaseEvent(event);
}

void Line::mouseDoubleClickEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<LineStudy>& study : std::vector<boost::shared_ptr<LineStudy> >(studies_))
        study->mouseDoubleClickEvent(event);
}

void Line::keyPressEvent(const QKeyEvent&) {}

void Line::mouseMoveEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<LineStudy>& study : std::vector<boost::shared_ptr<LineStudy> >(studies_))
        study->mouseMoveEvent(event);
}

}  // namespace gx
