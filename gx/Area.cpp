#include "gx/Area.h"

#include <QDateTime>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gx/AreaPicture.h"
#include "gx/Button.h"
#include "gx/Caption.h"
#include "gx/Chart.h"
#include "gx/LRScale.h"
#include "gx/IndexRule.h"
#include "gx/Layer.h"
#include "gx/TextStatusBar.h"
#include "gx/TimeScale.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "util/QtCompat.h"

namespace gx {

Area::Area(Chart* chart, const QRect& rect)
    : Object(rect),
      chart_(chart),
      caption_(new Caption(QRect(QPoint(rect.left(), rect.top()), QPoint(rect.right(), rect.top() - 1)),
                           chart ? chart->GetWidget() : nullptr)),
      engine_(new pf::ScaleEngine),
      pane_(rect),
      picture_(new AreaPicture) {}

Area::~Area() = default;

boost::shared_ptr<Layer> Area::AddLayer() {
    boost::shared_ptr<Layer> layer(new Layer(this, rect_, engine_));
    layers_.push_back(layer);
    return layer;
}

boost::shared_ptr<Layer> Area::InsertLayer(int position) {
    position = std::max(0, std::min(position, GetLayerCount()));
    boost::shared_ptr<Layer> layer(new Layer(this, rect_, engine_));
    layers_.insert(layers_.begin() + position, layer);
    return layer;
}

int Area::GetIndex() const { return chart_ ? IndexOf(chart_->GetAreas(), this) : -1; }

boost::shared_ptr<Layer> Area::GetSelLayer() const {
    for (const boost::shared_ptr<Layer>& layer : layers_)
        if (layer->IsSelected()) return layer;
    return boost::shared_ptr<Layer>();
}

void Area::SetRect(const QRect& r) {
    pane_ = r;
    const int l = chart_ ? chart_->GetLScaleWidth() : 0;
    const int v = chart_ ? chart_->GetVScaleWidth() : 0;
    Object::SetRect(QRect(r.left() + l, r.top(), r.width() - v, r.height()));
    caption_->SetRect(QRect(QPoint(r.left(), r.top()), QPoint(r.right(), r.top() + Caption::defaultHeight - 1)));
    for (const boost::shared_ptr<Layer>& layer : layers_) layer->SetRect(rect_);
    engine_->Update(rect_, engine_->GetX0(), engine_->GetX1(), engine_->GetMinPrice(), engine_->GetMaxPrice());
}

void Area::Resize(const QSize& size) {
    Object::Resize(size);
    caption_->Resize(QSize(size.width(), Caption::defaultHeight));
    for (const boost::shared_ptr<Layer>& layer : layers_) layer->Resize(size);
}

void Area::Select(bool selected) { Object::Select(selected); }

void Area::ComposeNextPaint(const Grid::Rows& grid, const QRect& data, int bodyTop) const {
    nextGrid_ = grid;
    nextData_ = data;
    nextBodyTop_ = bodyTop;
}

int Area::BodyTop(const QRect& data) const {
    return std::max(data.top(), std::min(caption_->Rect().bottom() + 1, data.bottom() + 1));
}

void Area::Draw(QPainter& painter) const {
    caption_->Draw(painter);
    const bool compose = nextGrid_.version != 0;
    if (compose) picture_->Begin(nextGrid_, nextData_, nextBodyTop_);
    nextGrid_ = Grid::Rows();
    for (const boost::shared_ptr<Layer>& layer : layers_) layer->Draw(painter);
    if (compose) picture_->End(painter);
    DrawZoomSelect(painter);
    DrawCrossCursor(painter);
    if (frame_) {
        painter.save();
        painter.setClipRect(rect_);
        DrawFrame(painter);
        painter.restore();
    }
    if (selected_ && chart_ && !rect_.contains(chart_->MousePos())) {
        if (TextStatusBar* bar = chart_->GetWidget() ? chart_->GetWidget()->GetStatusBar() : nullptr)
            bar->ClearTextStatusBar(layers_.empty() ? nullptr : layers_.front().get());
    }
}

void Area::DrawZoomSelect(QPainter& painter) const {
    // One marker at the start and one at the end position; while the selection is being
    // dragged the end is the mouse's position.
    const pf::ScaleEngine& e = *engine_;
    if (!e.GetFlag()) return;
    const int start = e.GetZoomStartPos();
    const int end = e.GetZoomEndPos();
    if (start == end) return;
    const int positions = e.GetColumnCount();
    if (positions <= 0) return;
    const int columnWidth = static_cast<int>(e.GetWidth()) / positions;
    painter.save();
    painter.setPen(QPen(Qt::black));
    for (int position : {start, end}) {
        const int x = static_cast<int>(e.TranslateX(position) + e.GetLeft() + columnWidth * 0.5);
        painter.setClipRect(QRect(x - 1, rect_.top(), 3, rect_.height()));
        painter.drawLine(x, rect_.top(), x, rect_.bottom());
    }
    painter.restore();
}

void Area::DrawCrossCursor(QPainter& painter) const {
    if (!chart_ || chart_->GetCrossCursorState() != 1) return;
    const QPoint mouse = chart_->MousePos();
    if (!rect_.contains(mouse)) return;
    PFChartWidget* widget = chart_->GetWidget();
    FindMinMax range = WidgetWalker<FindMinMax>(chart_, FindMinMax(this)).Walk();
    painter.save();
    painter.setClipRect(pane_);
    painter.setPen(Qt::black);
    painter.drawLine(rect_.left(), mouse.y(), rect_.right(), mouse.y());
    painter.drawLine(mouse.x(), rect_.top(), mouse.x(), rect_.bottom());
    const QFontMetrics metrics(painter.font());
    const int textHeight = pf::FontHeight(metrics);
    const QColor fill = chart_->GetAreasColor();

    // The price under the mouse, in the right scale column (the left one when the right
    // scale is hidden).
    const QString price =
        LRScale::FormatPrice(engine_->UnTranslateY(mouse.y()), LRScale::PriceDecimals(range.precision));
    const LRScale* right = widget ? widget->GetRightScale() : nullptr;
    const bool useRight = right && right->IsVisible();
    const int scaleLeft = useRight ? rect_.right() + 1 : pane_.left();
    const int scaleWidth = std::max(metrics.horizontalAdvance(price) + 6, LRScale::nWidth);
    QRect box(scaleLeft, mouse.y() - textHeight / 2 - 1, scaleWidth, textHeight + 2);
    painter.fillRect(box, fill);
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    painter.drawText(box, Qt::AlignCenter, price);

    // The time of the position under the mouse, at the bottom.
    const TimeScale* scale = chart_->GetTimeScale();
    const int column = e_unTranslate(mouse.x());
    const int position = engine_->GetFirstColumn() + column;
    if (scale && position >= 0 && position < scale->Count()) {
        const QString time = QDateTime::fromSecsSinceEpoch(scale->GetPosTime(position), Qt::UTC)
                                 .toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"));
        const int w = metrics.horizontalAdvance(time) + 8;
        QRect tbox(mouse.x() - w / 2, rect_.bottom() - textHeight - 2, w, textHeight + 2);
        painter.fillRect(tbox, fill);
        painter.drawRect(tbox.adjusted(0, 0, -1, -1));
        painter.drawText(tbox, Qt::AlignCenter, time);
    }
    painter.restore();
}

int Area::e_unTranslate(int x) const { return engine_->UnTranslateX(x - engine_->GetLeft()) - 1; }

bool Area::CheckClose(const QMouseEvent& event) { return caption_->CheckClose(event); }

void Area::ResetCaption() {
    MakeCaption visitor(this);
    for (const boost::shared_ptr<Layer>& layer : layers_)
        for (const boost::shared_ptr<Indicator>& indicator : layer->GetIndicators()) visitor.Visit(indicator);
    caption_->SetText(visitor.caption);
    bool dayOff = false;
    if (chart_ && chart_->GetWidget()) dayOff = chart_->GetWidget()->IsAreaDayOff(this);
    SetCaptionDayOff(dayOff);
}

void Area::SetCaptionDayOff(bool dayOff) { caption_->SetDayOff(dayOff); }

void Area::FillContextMenu() {
    for (const boost::shared_ptr<Layer>& layer : layers_) layer->FillContextMenu();
}

bool Area::mousePressEvent(const QMouseEvent& event) {
    if (event.button() != Qt::RightButton) selected_ = rect_.contains(event.pos());
    for (const boost::shared_ptr<Layer>& layer : std::vector<boost::shared_ptr<Layer> >(layers_))
        layer->mousePressEvent(event);
    return caption_->mousePressEvent(event);
}

void Area::mouseReleaseEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Layer>& layer : std::vector<boost::shared_ptr<Layer> >(layers_))
        layer->mouseReleaseEvent(event);
    caption_->GetButton()->Select(false);
    ReleaseTempLS release;
    for (const boost::shared_ptr<Layer>& layer : layers_)
        for (const boost::shared_ptr<Indicator>& indicator : layer->GetIndicators())
            for (const boost::shared_ptr<Line>& line : indicator->GetLines()) release.Visit(line);
}

void Area::mouseDoubleClickEvent(const QMouseEvent& event) {
    for (const boost::shared_ptr<Layer>& layer : std::vector<boost::shared_ptr<Layer> >(layers_))
        layer->mouseDoubleClickEvent(event);
}

void Area::mouseMoveEvent(const QMouseEvent& event) {
    selected_ = rect_.contains(event.pos());
    if (!selected_) return;
    PFChartWidget* widget = chart_ ? chart_->GetWidget() : nullptr;
    if (widget) widget->SetCursor();
    if (!chart_ || chart_->GetCrossCursorState() != 1)
        for (const boost::shared_ptr<Layer>& layer : std::vector<boost::shared_ptr<Layer> >(layers_))
            layer->mouseMoveEvent(event);
    if (chart_) chart_->UpdateScreen();
    TextStatusBar* bar = widget ? widget->GetStatusBar() : nullptr;
    if (!bar) return;
    if (!layers_.empty() && layers_.front()->GetIndicatorCount() > 0)
        bar->SetTextStatusBar(layers_.front(), event.pos());
    else
        bar->ClearTextStatusBar();
}

void Area::keyPressEvent(const QKeyEvent& event) {
    for (const boost::shared_ptr<Layer>& layer : std::vector<boost::shared_ptr<Layer> >(layers_))
        layer->keyPressEvent(event);
    if (event.key() == Qt::Key_A && (event.modifiers() & Qt::ControlModifier) && chart_) {
        WidgetWalker<SelectAreaLines>(chart_, SelectAreaLines(this)).Walk();
        WidgetWalker<SelectAreaLS>(chart_, SelectAreaLS(this)).Walk();
    }
}

}  // namespace gx
