#include "gui/TimeScrollBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>

#include "data/ScaleEngine.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/FigurePicture.h"
#include "gx/PictureCache.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

// The saved zoom state is a child "Node" of object type 3 (the time scroll bar).
const char kNodeName[] = "Node";
const int kObjectType = 3;

}  // namespace

CTimeScrollBar::CTimeScrollBar(PFChartWidget* widget) : QAbstractSlider(widget), widget_(widget) {
    setOrientation(Qt::Horizontal);
    setFocusPolicy(Qt::NoFocus);
    setRange(0, 0);
    pf::gui::ConnectGuarded(this, &QAbstractSlider::valueChanged, this, &CTimeScrollBar::OnValueChanged);
}

void CTimeScrollBar::SetQuietly(int minimum, int maximum, int value) {
    quiet_ = true;
    setRange(minimum, std::max(minimum, maximum));
    setValue(value);
    quiet_ = false;
    RefreshScreenDataPoints();
}

void CTimeScrollBar::RefreshScreenDataPoints() {
    gx::Chart* chart = widget_ ? widget_->GetChart() : nullptr;
    if (chart && !chart->GetAreas().empty()) nScreenDataPoints_ = chart->GetAreas().front()->GetEngine()->GetColumnCount();
}

void CTimeScrollBar::OnValueChanged(int value) {
    if (quiet_ || !widget_ || !widget_->GetChart()) return;
    for (const boost::shared_ptr<gx::Area>& area : widget_->GetChart()->GetAreas())
        area->GetEngine()->SetFirstColumn(std::max(0, value));
    RefreshScreenDataPoints();
    widget_->UpdateTimeScale();
    widget_->update();
    if (widget_->GetModule()) widget_->GetModule()->SendMainAboutChange();
}

void CTimeScrollBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionSlider option;
    option.initFrom(this);
    option.subControls = QStyle::SC_All;
    option.orientation = orientation();
    option.minimum = minimum();
    option.maximum = maximum();
    option.sliderPosition = sliderPosition();
    option.sliderValue = value();
    option.singleStep = singleStep();
    option.pageStep = pageStep();
    // The bar repaints with every repaint of the window, mostly unchanged: what the style
    // drew is kept and blitted while the option is the same. Only a picture the style
    // covered wholly is kept, since only that one looks the same over any background.
    QByteArray key;
    using gx::PictureCache;
    PictureCache::Append(key, static_cast<const void*>(style()));
    PictureCache::Append(key, option.rect);
    PictureCache::Append(key, int(option.state));
    PictureCache::Append(key, int(option.direction));
    PictureCache::Append(key, option.palette.cacheKey());
    PictureCache::Append(key, int(option.orientation));
    for (int field : {option.minimum, option.maximum, option.sliderPosition, option.sliderValue, option.singleStep,
                      option.pageStep})
        PictureCache::Append(key, field);
    PictureCache::AppendPainter(key, painter);
    if (!gx::FigurePicture::Enabled() || !PictureCache::Usable(painter)) {
        picture_ = QImage();
        pictureKey_.clear();
        style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, this);
        return;
    }
    // A picture the style did not cover stays null under its key: drawn directly then.
    if (key != pictureKey_) {
        pictureKey_ = key;
        picture_ = QImage(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
        picture_.fill(Qt::transparent);
        PictureCache::MatchResolution(picture_, painter);
        QPainter p(&picture_);
        PictureCache::CopyState(p, painter);
        style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &p, this);
        p.end();
        if (!Opaque(picture_)) picture_ = QImage();
    }
    if (picture_.isNull())
        style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, this);
    else
        painter.drawImage(option.rect.topLeft(), picture_);
}

bool CTimeScrollBar::Opaque(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(row[x]) != 255) return false;
    }
    return true;
}

int CTimeScrollBar::ValueAt(int x) const {
    const int span = maximum() - minimum();
    if (span <= 0 || width() <= 1) return minimum();
    const long long v = minimum() + static_cast<long long>(x) * span / (width() - 1);
    return static_cast<int>(std::max<long long>(minimum(), std::min<long long>(maximum(), v)));
}

void CTimeScrollBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) setValue(ValueAt(event->pos().x()));
}

void CTimeScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) setValue(ValueAt(event->pos().x()));
}

void CTimeScrollBar::ToXml(CXMLWorkData* tree, int zoomType, const std::function<void(CXMLWorkData&)>& more) const {
    if (!tree) return;
    std::unique_ptr<CXMLWorkData> node(tree->createNode(kNodeName));
    if (!node) return;
    node->writeInteger("ObjectType", kObjectType);
    // The bar's identity: its address, of which the 32-bit host keeps the low 32 bits.
    const std::uint32_t handle = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(this));
    node->writeInteger("ObjHandle", static_cast<int>(handle));
    node->writeInteger("nScreenDataPoints", nScreenDataPoints_);
    node->writeInteger("nZoomType", zoomType);
    if (const QSlider* slider = ZoomSlider()) node->writeInteger("zoomSlider", slider->value());
    if (more) more(*node);
    node->writeParameters();
}

void CTimeScrollBar::FromXml(CXMLWorkData* node) {
    gx::Chart* chart = widget_ ? widget_->GetChart() : nullptr;
    if (!node || !chart || chart->GetAreas().empty()) return;
    node->readParameters();
    nScreenDataPoints_ = node->readInteger("nScreenDataPoints", -1);
    pf::gui::ToolBar* toolBar = widget_->GetToolBar();
    if (!toolBar) return;
    switch (node->readInteger("nZoomType", -1)) {
        case pf::gui::ToolBar::ZoomKindIn:
            // A zoom in is taken back by zooming out, and the other way round.
            toolBar->OnBnClickedZoomOut(false);
            break;
        case pf::gui::ToolBar::ZoomKindOut: toolBar->OnBnClickedZoomIn(false); break;
        case pf::gui::ToolBar::ZoomKindSlider: RestoreSlider(node->readInteger("zoomSlider", -1)); break;
        default: break;
    }
}

QSlider* CTimeScrollBar::ZoomSlider() const {
    pf::gui::ToolBar* toolBar = widget_ ? widget_->GetToolBar() : nullptr;
    return toolBar ? toolBar->GetZoomSlider() : nullptr;
}

void CTimeScrollBar::RestoreSlider(int sliderValue) {
    QSlider* slider = ZoomSlider();
    if (!slider || sliderValue == -1) return;
    setPageStep(std::max(1, nScreenDataPoints_));
    // The slider's algorithm runs once, explicitly, and without recording (a clear flag is
    // only set): it must run even when the slider already stands at the saved value, since a
    // zoom by selection changes the visible count without moving the slider.
    widget_->SetZoomRecording(false);
    {
        const QSignalBlocker block(slider);
        slider->setValue(sliderValue);
    }
    widget_->GetToolBar()->OnChangeZoom(slider->value());
    widget_->SetZoomRecording(false);
    const pf::ScaleEngine& e = *widget_->GetChart()->GetAreas().front()->GetEngine();
    const long long maximum = static_cast<long long>(pf::TruncToInt(e.GetX1())) - e.GetColumnCount() + widget_->GetFreeStep();
    SetQuietly(0, static_cast<int>(std::max<long long>(INT_MIN, std::min<long long>(INT_MAX, maximum))), e.GetFirstColumn());
}
