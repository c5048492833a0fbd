#include "gx/ls/LineStudy.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <algorithm>
#include <cfloat>
#include <cstring>
#include <set>
#include <stdexcept>

#include "abi/messages.h"
#include "data/ScaleEngine.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gx/Chart.h"
#include "gx/Line.h"
#include "gx/PictureCache.h"
#include "gx/TimeScale.h"
#include "gx/ls/LsFactory.h"
#include "gx/ls/LsUtil.h"
#include "module/PFChartModule.h"

namespace gx {

namespace {

std::set<void*>& Providers() {
    static std::set<void*> providers;
    return providers;
}

std::intptr_t Param(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

}  // namespace

bool LineStudy::IsKnownProvider(void* provider) { return provider && Providers().count(provider) != 0; }

// ---- construction ----

void LineStudy::Init(Line* line, const boost::shared_ptr<pf::ScaleEngine>& engine) {
    line_ = line;
    engine_ = engine;
    std::memset(&cps_, 0, sizeof cps_);
    lineDataId_ = line && line->GetArray() ? static_cast<void*>(line->GetArray()) : nullptr;
}

LineStudy::LineStudy(Line* line, void* provider, const QString& name, const boost::shared_ptr<pf::ScaleEngine>& engine,
                     const QRect& rect, std::uint32_t color)
    : Object(rect) {
    Init(line, engine);
    const int shapes = Create(provider, name, color);
    // Points are placed by the user, one press at a time.
    for (lsPointShape& p : in_) {
        std::memset(&p, 0, sizeof p);
        p.m_typePoint = LS_POINT_PLACED;
    }
    Attach();
    UpdateShapeCount(shapes);
}

LineStudy::LineStudy(Line* line, void* provider, const QString& name, const QPoint& at,
                     const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect, std::uint32_t color)
    : Object(rect) {
    Init(line, engine);
    const int shapes = Create(provider, name, color);
    // Every point at the dropped column: its time from the time scale, which ends at the
    // last candle; its position may lie beyond it.
    Chart* chart = GetChart();
    const TimeScale* scale = chart ? chart->GetTimeScale() : nullptr;
    int position = scale ? scale->GetPointPos(at) : MouseColumn(at);
    if (position == -1) position = 0;
    const long time = scale ? scale->GetPointTime(at) : (line_ ? line_->GetIndexVirtualTime(position) : 0);
    for (std::size_t i = 0; i < in_.size(); ++i) {
        lsPointShape& p = in_[i];
        std::memset(&p, 0, sizeof p);
        p.m_xTime = static_cast<std::int32_t>(time);
        p.value = static_cast<float>(MousePrice(at));
        RecomputePositionByIndex(p, position);
        p.m_typePoint = i == 0 ? LS_POINT_PLACED : LS_POINT_NOT_PLACED;
    }
    Attach();
    UpdateShapeCount(shapes);
    if (!in_.empty()) ++placed_;
    if (placed_ >= cps_.inCount) {
        FinishCreating(false);
        SetFocus();
        state_ = StateCreated;
    } else {
        state_ |= StateNewPoint;
    }
}

LineStudy::LineStudy(Line* line, void* provider, void* hostId, const boost::shared_ptr<pf::ScaleEngine>& engine,
                     const QRect& rect)
    : Object(rect) {
    Init(line, engine);
    provider_ = provider;
    id_ = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(hostId));
    state_ = StateCreated;
    finished_ = true;
}

LineStudy::LineStudy(LineStudy* other) : Object(other ? other->rect_ : QRect()) {
    if (!other) {
        std::memset(&cps_, 0, sizeof cps_);
        return;
    }
    Init(other->line_, other->engine_);
    id_ = other->id_;
    provider_ = other->provider_;
    lineDataId_ = other->lineDataId_;
    name_ = other->name_;
    title_ = other->title_;
    color_ = other->color_;
    finished_ = other->finished_;
    hostDeleted_ = other->hostDeleted_;
    detached_ = other->detached_;
    placed_ = other->placed_;
    cps_.finished = other->cps_.finished;
    in_ = other->in_;
    out_ = other->out_;
    shapes_ = other->shapes_;
    sizes_ = other->sizes_;
    blocks_ = other->blocks_;
    SyncRecord();  // the copied shapes point at this study's blocks
    cps_.outCount = other->cps_.outCount;  // and it shows what the host returned
    cps_.shapeCount = other->cps_.shapeCount;
    state_ = StateCreated;
    Object::Select(true);
    SetFocus();
}

int LineStudy::Create(void* provider, const QString& name, std::uint32_t color) {
    provider_ = provider;
    name_ = name;
    color_ = color & 0xFFFFFFu;
    lsCreateObject create;
    std::memset(&create, 0, sizeof create);
    const QByteArray local = name.toLocal8Bit().left(LS_NAME_BYTES - 1);
    std::memcpy(create.name, local.constData(), std::size_t(local.size()));
    create.dataArray = line_ ? line_->GetArray() : nullptr;
    create.color = color_;
    Send(provider_, MSG_LS_CREATE_OBJECT, Param(&create), 0);
    id_ = create.id;
    if (id_ == 0) throw std::runtime_error("Could not create LS object. LS_CREATE_OBJECT message returned error");
    Providers().insert(provider_);
    coreWChar title[LS_TITLE_CHARS];
    std::memset(title, 0, sizeof title);
    Send(provider_, MSG_LS_TITLE, id_, Param(title));
    int n = 0;
    while (n < LS_TITLE_CHARS - 1 && title[n]) ++n;
    title_ = QString::fromUtf16(reinterpret_cast<const char16_t*>(title), n);
    const std::int32_t points = create.cpCount;
    const std::int32_t shapes = create.shapeCount;
    // The host would fill arrays of its own counts: a study with counts out of range is
    // given back to the host rather than sized wrongly.
    if (points < 0 || points > kMaxPoints || shapes < 0 || shapes > kMaxShapes) {
        Send(provider_, MSG_LS_DELETE, id_, 0);
        throw std::runtime_error("Line study counts out of range");
    }
    UpdateCPCount(points);
    return shapes;
}

void LineStudy::Attach() {
    lsAttachRecord attach;
    attach.dataArray = line_ ? line_->GetArray() : nullptr;
    attach.provider = provider_;
    attach.id = id_;
    Send(Module() ? Module()->hostHandle : nullptr, MSG_LS_ATTACH, Param(lineDataId_), Param(&attach));
    Object::Select(true);
    SetFocus();
}

// A study leaves the host only through Delete (a deletion by hand, a cancel): a window that
// closes keeps its studies in the host, and its tree may be half gone by now.
LineStudy::~LineStudy() { ReleaseTempDraw(); }

// ---- host exchange ----

const CModule* LineStudy::Module() const {
    PFChartWidget* widget = GetWidget();
    if (widget && widget->GetModule()) return widget->GetModule();
    return CModule::Current();
}

Chart* LineStudy::GetChart() const { return line_ ? line_->GetChart() : nullptr; }

PFChartWidget* LineStudy::GetWidget() const {
    Chart* chart = GetChart();
    return chart ? chart->GetWidget() : nullptr;
}

int LineStudy::Send(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) const {
    ++exchanges_;
    const CModule* module = Module();
    if (!module || !module->sendToHost) return -1;
    return module->sendToHost(target, message, p1, p2);
}

void* LineStudy::GetHandle() const { return reinterpret_cast<void*>(static_cast<std::intptr_t>(id_)); }

void LineStudy::SyncRecord() {
    ++exchanges_;
    cps_.inCount = static_cast<std::int32_t>(in_.size());
    cps_.in = in_.empty() ? nullptr : in_.data();
    cps_.outCount = static_cast<std::int32_t>(out_.size());
    cps_.out = out_.empty() ? nullptr : out_.data();
    cps_.shapeCount = static_cast<std::int32_t>(shapes_.size());
    cps_.shapes = shapes_.empty() ? nullptr : shapes_.data();
    for (std::size_t i = 0; i < shapes_.size(); ++i) {
        void* data = i < blocks_.size() && !blocks_[i].empty() ? blocks_[i].data() : nullptr;
        std::memcpy(reinterpret_cast<char*>(&shapes_[i]) + offsetof(lsShape, data), &data, sizeof data);
    }
}

long long LineStudy::GetShapeDataSize(int i) const {
    if (i < 0 || i >= static_cast<int>(blocks_.size())) return 0;
    return static_cast<long long>(blocks_[std::size_t(i)].size());
}

void LineStudy::UpdateCPCount(int count) {
    count = std::max(0, std::min(count, kMaxPoints));
    const int previous = static_cast<int>(in_.size());
    in_.resize(std::size_t(count));
    for (int i = previous; i < count; ++i) std::memset(&in_[std::size_t(i)], 0, sizeof(lsPointShape));
    // The pitchfork's last handle is computed by the host.
    if (name_ == QLatin1String("Andrews Pitchfork") && count != previous && count >= 1)
        in_[std::size_t(count - 1)].index = -1;
    out_.assign(std::size_t(count), lsPointShape());
    for (lsPointShape& p : out_) std::memset(&p, 0, sizeof p);
    placed_ = std::min(placed_, count);
    SyncRecord();
}

void LineStudy::FreeMem() {
    ++exchanges_;
    shapes_.clear();
    blocks_.clear();
    sizes_.clear();
    SyncRecord();
}

void LineStudy::UpdateShapeCount(int count) {
    FreeMem();
    count = std::max(0, std::min(count, kMaxShapes));
    sizes_.assign(std::size_t(count), 0);
    // Asked even for no shapes: the host learns that the study's shape list is empty.
    Send(provider_, MSG_LS_SHAPE_SIZES, id_, Param(sizes_.data()));
    shapes_.resize(std::size_t(count));
    blocks_.resize(std::size_t(count));
    long long budget = kMaxStudyBytes - static_cast<long long>(count) * static_cast<long long>(sizeof(lsShape));
    for (int i = 0; i < count; ++i) {
        std::memset(&shapes_[std::size_t(i)], 0, sizeof(lsShape));
        const std::int32_t size = sizes_[std::size_t(i)];
        // A negative or huge size, or one past the study's budget, gives the shape no block:
        // it draws nothing.
        if (size > 0 && size <= kMaxShapeBytes && size <= budget) {
            blocks_[std::size_t(i)].assign(std::size_t(size), 0);
            budget -= size;
        }
    }
    SyncRecord();
    GetListControlPointer();
    if (cps_.error == 1) {
        Delete();
        throw std::runtime_error("Error on LS_GET_LIST_CONTROLPOINTER message");
    }
}

int LineStudy::GetListControlPointer(void* provider, void* id, lsControlPointsShapes* record) {
    const CModule* module = Module();
    if (!module || !module->sendToHost) return -1;
    if (record && record != &cps_)
        return module->sendToHost(provider ? provider : provider_, MSG_LS_GET_LIST_CONTROLPOINTER,
                                  id ? Param(id) : id_, Param(record));
    SyncRecord();
    cps_.error = 0;
    const int result = module->sendToHost(provider ? provider : provider_, MSG_LS_GET_LIST_CONTROLPOINTER,
                                          id ? Param(id) : id_, Param(&cps_));
    // The host fills the arrays in place; the pointers stay the study's. It may return fewer
    // output points or shapes than there is room for: only those are drawn and hit-tested.
    // A count below 0 or beyond the room is not believed, and the whole room is used.
    const std::int32_t error = cps_.error;
    const std::int32_t finished = cps_.finished;
    const std::int32_t outCount = cps_.outCount;
    const std::int32_t shapeCount = cps_.shapeCount;
    SyncRecord();
    cps_.error = error == 1 ? 1 : 0;
    cps_.finished = finished;
    if (outCount >= 0 && outCount <= cps_.outCount) cps_.outCount = outCount;
    if (shapeCount >= 0 && shapeCount <= cps_.shapeCount) cps_.shapeCount = shapeCount;
    return result;
}

void LineStudy::Refresh(bool shapesChanged) {
    if (shapesChanged) UpdateShapeCount(static_cast<int>(shapes_.size()));
    else GetListControlPointer();
}

// ---- index handling ----

int LineStudy::GetLastCandleIndex() const { return line_ ? line_->Size() - 1 : -1; }

int LineStudy::GetLastScreenCandleIndex() const {
    if (!engine_) return -1;
    return engine_->GetFirstColumn() + engine_->GetColumnCount() - 1;
}

int LineStudy::CorrectCPIndex(int index) const {
    const int last = GetLastCandleIndex();
    return index > last ? index - last : index;
}

int LineStudy::GetNormalizeIndex(const lsPointShape& point) const {
    const std::int32_t type = point.indexType;
    const std::int32_t index = point.index;
    return type == 1 ? GetLastCandleIndex() + index : index;
}

int LineStudy::GetNormalizeIndex(const lsShapeVLine& line) const {
    const std::int32_t type = line.indexType;
    const std::int32_t index = line.index;
    return type == 1 ? GetLastCandleIndex() + index : index;
}

void LineStudy::RecomputePositionByIndex(lsPointShape& point, int index) const {
    point.index = index;
    point.indexType = GetCPIndexType(index);
    point.index = CorrectCPIndex(index);
}

int LineStudy::VirtualTimePosition(long time) const {
    if (!line_) return 0;
    // The time scale's search for the line's interval: intraday charts take the first
    // position at or after the time, daily and longer ones the candle at or before it.
    // Past the last time it steps on with the line's time step.
    const Chart* chart = GetChart();
    const TimeScale* scale = chart ? chart->GetTimeScale() : nullptr;
    if (!scale || scale->Count() == 0) return line_->GetTimeVirtualIndex(time);
    int count = 0;
    const int interval = line_->GetTimeInterval(count);
    const TimeScale::eDateType type = static_cast<TimeScale::eDateType>(std::min<int>(interval, TimeScale::DateYear));
    const std::int64_t step = std::min<std::int64_t>(line_->GetTimeStep(), 0x7FFFFFFF);
    return scale->GetVirtualTimePos(time, type, static_cast<int>(step));
}

void LineStudy::RecomputePositionByTime(lsPointShape& point, long time) const {
    RecomputePositionByIndex(point, VirtualTimePosition(time));
}

bool LineStudy::IsInFreeSpaceByTime(long time) const {
    if (!line_ || !line_->GetArray()) return true;
    const int position = VirtualTimePosition(time);
    return position < 0 || position + 1 >= line_->Size();
}

int LineStudy::PointX(const lsPointShape& point) const { return util::LsBase::CalcX(this, engine_, point); }

int LineStudy::PointY(const lsPointShape& point) const { return engine_ ? engine_->TranslateY(point.value) : 0; }

// ---- drawing and hit tests ----

int LineStudy::OutPointsUsed() const {
    // The packed record's count is copied first: std::min takes its operands by reference.
    const int written = cps_.outCount;
    const int returned = std::max(0, std::min(written, static_cast<int>(out_.size())));
    int n = 0;
    while (n < returned) {
        if (out_[std::size_t(n++)].m_typePoint == LS_POINT_LAST) break;
    }
    return n;
}

int LineStudy::ShapesUsed() const {
    const int written = cps_.shapeCount;
    return std::max(0, std::min(written, static_cast<int>(shapes_.size())));
}

int LineStudy::InPointsUsed() const {
    int n = 0;
    for (const lsPointShape& p : in_) {
        ++n;
        if (p.m_typePoint == LS_POINT_LAST) break;
    }
    return n;
}

QPoint LineStudy::MarkerPos(int i) const {
    const lsPointShape& p = out_[std::size_t(i)];
    // A channel's points 1 and 3 sit midway between its lines.
    if (name_ == QLatin1String("Chanel") && placed_ >= 2 && out_.size() >= 3 && (i == 1 || i == 3) &&
        !(state_ & StateCreating)) {
        const int shape = i == 1 ? 0 : 2;
        const int x = (PointX(out_[0]) + PointX(out_[2])) / 2;
        if (shape < ShapesUsed() && GetShapeDataSize(shape) >= 9 * 4 && engine_) {
            float first = 0, second = 0;
            std::memcpy(&first, blocks_[std::size_t(shape)].data() + 3 * 4, sizeof first);
            std::memcpy(&second, blocks_[std::size_t(shape)].data() + 8 * 4, sizeof second);
            return QPoint(x, (engine_->TranslateY(first) + engine_->TranslateY(second)) / 2);
        }
        return QPoint(x, PointY(p));
    }
    return QPoint(PointX(p), PointY(p));
}

void LineStudy::Draw(QPainter& painter) const {
    Chart* chart = GetChart();
    if (!chart || !chart->GetTimeScale() || !engine_) return;
    const int outUsed = OutPointsUsed();
    const int shapes = ShapesUsed();
    // One save for all shapes: each shape sets its own clip inside a save of its own. Shapes
    // of one study mostly share their pen; it is set again only when it changes.
    painter.save();
    std::uint32_t penRgb = 0;
    std::int32_t penStyle = -1, penWidth = -1;
    for (int i = 0; i < shapes; ++i) {
        if (IsPolyLine() && i >= outUsed - 1 && i > 0) break;
        const lsShape& shape = shapes_[std::size_t(i)];
        const std::uint32_t rgb = shape.color;
        const std::int32_t style = shape.penStyle;
        const std::int32_t width = shape.penWidth;
        if (rgb != penRgb || style != penStyle || width != penWidth) {
            QPen pen(QColor(static_cast<QRgb>(rgb | 0xFF000000u)));
            pen.setWidth(std::max(0, std::min<std::int32_t>(width, 64)));
            pen.setStyle(style >= Qt::NoPen && style <= Qt::DashDotDotLine ? Qt::PenStyle(style) : Qt::SolidLine);
            pen.setCapStyle(Qt::SquareCap);
            pen.setJoinStyle(Qt::BevelJoin);
            painter.setPen(pen);
            penRgb = rgb;
            penStyle = style;
            penWidth = width;
        }
        try {
            LsFactory::Instance().Create(shape.type, engine_, rect_, cps_, i, this)->Draw(painter);
        } catch (const std::exception&) {
            // A shape of a type outside the table is left out.
        }
    }
    painter.restore();
    if (selected_) {
        QColor color(0, 0, 0, 255);
        const bool open = IsPolyLine() && ((state_ & StateCreating) || placed_ < outUsed);
        if (!open) {
            // The colour of the first shape; a study without shapes shows its own colour.
            const std::uint32_t rgb = shapes == 0 ? color_ : std::uint32_t(shapes_[0].color);
            color = QColor(static_cast<QRgb>(rgb | 0xFF000000u));
        }
        painter.save();
        for (int i = 0; i < outUsed; ++i) {
            const QPoint at = MarkerPos(i);
            const QRect box(at.x() - 2, at.y() - 2, 5, 5);
            if (!rect_.contains(box.topLeft())) continue;
            painter.setClipRect(box);
            painter.fillRect(box, color);
        }
        painter.restore();
    }
    if ((state_ & StateMoving) && tempDraw_) painter.drawPicture(0, 0, *tempDraw_);
}

std::uint64_t LineStudy::NextSerial() {
    static std::uint64_t serial = 0;
    return ++serial;
}

bool LineStudy::AppendDrawKey(QByteArray& key) const {
    if ((state_ & (StateCreating | StateMoving | StateNewPoint)) || tempDraw_) return false;
    PictureCache::Append(key, serial_);
    PictureCache::Append(key, exchanges_);
    PictureCache::Append(key, engine_.get());
    PictureCache::Append(key, rect_);
    PictureCache::Append(key, state_);
    PictureCache::Append(key, selected_);
    PictureCache::Append(key, placed_);
    PictureCache::Append(key, color_);
    PictureCache::Append(key, cps_.shapeCount);
    PictureCache::Append(key, cps_.outCount);
    PictureCache::Append(key, in_.size());
    PictureCache::Append(key, out_.size());
    // The points are the study's own and may be changed in place between exchanges.
    if (!in_.empty()) key.append(reinterpret_cast<const char*>(in_.data()), int(in_.size() * sizeof(lsPointShape)));
    if (!out_.empty()) key.append(reinterpret_cast<const char*>(out_.data()), int(out_.size() * sizeof(lsPointShape)));
    return true;
}

bool LineStudy::PtInLS(const QPoint& point) const {
    const int shapes = ShapesUsed();
    if (shapes == 0 || OutPointsUsed() == 0 || out_[0].m_typePoint == LS_POINT_LAST) return false;
    for (int i = 0; i < shapes; ++i) {
        // Every study's shapes end at its terminating point.
        if (i < static_cast<int>(out_.size()) && out_[std::size_t(i)].m_typePoint == LS_POINT_LAST) break;
        try {
            if (LsFactory::Instance().Create(shapes_[std::size_t(i)].type, engine_, rect_, cps_, i, this)->PtInLS(point))
                return true;
        } catch (const std::exception&) {
        }
    }
    return false;
}

bool LineStudy::PtInCP(const QPoint& point, int& index) const {
    const int outUsed = OutPointsUsed();
    for (int i = 0; i < outUsed; ++i) {
        const QPoint at = MarkerPos(i);
        if (std::abs(point.x() - at.x()) <= 2 && std::abs(point.y() - at.y()) <= 2) {
            index = i;
            return true;
        }
    }
    return false;
}

void LineStudy::GetCriticalPoints(CRITICAL_POINT* points) const {
    if (!points) return;
    points->minX = 3.4028235e38f;
    points->minIndex = 2147483647;
    points->minY = 3.4028235e38f;
    points->maxValue = 0.0f;
    const int outUsed = OutPointsUsed();
    for (int i = 0; i < outUsed; ++i) {
        const lsPointShape& p = out_[std::size_t(i)];
        points->minX = std::min(points->minX, float(PointX(p)));
        points->minIndex = std::min<std::int32_t>(points->minIndex, p.index);
        points->minY = std::min(points->minY, float(PointY(p)));
        points->maxValue = std::max(points->maxValue, float(p.value));
    }
}

// ---- selection, lifecycle ----

void LineStudy::Select(bool selected) {
    const bool changed = selected != selected_;
    Object::Select(selected);
    if (changed) SetFocus();
}

void LineStudy::SetRect(const QRect& rect) { Object::SetRect(rect); }

void LineStudy::Resize(const QSize& size) { Object::Resize(size); }

void LineStudy::SetFocus() {
    if (!id_) return;
    lsFocusRecord focus;
    focus.id = id_;
    focus.selected = selected_ ? 1 : 0;
    std::uint32_t rgb = color_;
    if (!shapes_.empty()) rgb = shapes_[0].color;
    focus.color = rgb & 0xFFFFFFu;
    Send(provider_, MSG_LS_FOCUS, Param(&focus), 0);
}

void LineStudy::FinishCreating(bool exchange) {
    if (Chart* chart = GetChart()) chart->ResetCursor();
    finished_ = true;
    cps_.finished = 1;
    if (exchange) GetListControlPointer();
    Chart* chart = GetChart();
    Send(chart ? chart->GetMainGUIInterface() : nullptr, MSG_LS_END_DRAWING, 0, 0);
    lsAttachRecord attach;
    attach.dataArray = line_ ? line_->GetArray() : nullptr;
    attach.provider = provider_;
    attach.id = id_;
    Send(Module() ? Module()->hostHandle : nullptr, MSG_LS_ATTACH, Param(lineDataId_), Param(&attach));
}

void LineStudy::CancelCreatingLS(bool update) {
    // Only the drawing mode ends (3501): the host keeps its study object, which it drops
    // with the mode; the chart forgets it.
    Chart* chart = GetChart();
    Send(chart ? chart->GetMainGUIInterface() : nullptr, MSG_LS_END_DRAWING, 0, 0);
    Line* line = line_;
    PFChartWidget* widget = GetWidget();
    if (line) line->DeleteLineStudy(this);  // may destroy this study
    if (widget) widget->ResetCursor();
    if (update && chart) chart->RepaintScreen();
}

void LineStudy::Delete() {
    if ((id_ || provider_) && !detached_) {
        detached_ = true;
        if (!hostDeleted_) Send(provider_, MSG_LS_DELETE, id_, 0);
        hostDeleted_ = true;
        Send(Module() ? Module()->hostHandle : nullptr, MSG_LS_DETACH, Param(lineDataId_), id_);
        if (ownsMemory_) FreeMem();
        in_.clear();
        out_.clear();
        SyncRecord();
        Chart* chart = GetChart();
        Send(chart ? chart->GetMainGUIInterface() : nullptr, MSG_LS_END_DRAWING, 0, 0);
        if (chart) chart->ResetCursor();
    }
}

void LineStudy::SetTempDraw(QPicture* picture) {
    if (picture == tempDraw_) return;
    ReleaseTempDraw();
    tempDraw_ = picture;
}

void LineStudy::ReleaseTempDraw() {
    delete tempDraw_;
    tempDraw_ = nullptr;
}

// ---- context menu ----

void LineStudy::FillContextMenu() {
    Chart* chart = GetChart();
    if (!chart) return;
    // A study's three entries go to the properties menu. The first is the study's title and
    // selects it (showing its properties, as the second does); the other two say what they
    // do, in the terminal's language, so that the one that deletes never looks like one that
    // shows.
    const boost::shared_ptr<QMenu> menu = chart->GetPropMenu();
    const QString title = title_.isEmpty() ? name_ : title_;
    const CModule* module = Module();
    auto text = [module](const char* key) { return module ? module->tr(key) : QString::fromLatin1(key); };
    AddToMenu(menu, title, &LineStudy::OnSelectedLS);
    AddToMenu(menu, QStringLiteral("%1: %2").arg(text("C0030Propes"), title), &LineStudy::OnShowPropLS);
    AddToMenu(menu, QStringLiteral("%1: %2").arg(text("C0015Delete"), title), &LineStudy::OnDeleteLS);
}

void LineStudy::AddToMenu(const boost::shared_ptr<QMenu>& menu, const QString& text, void (LineStudy::*slot)()) {
    if (!menu) return;
    QAction* action = menu->addAction(text);
    pf::gui::ConnectGuarded(action, &QAction::triggered, this, slot);
}

void LineStudy::ShowProperties() const {
    Chart* chart = GetChart();
    Send(chart ? chart->GetMainGUIInterface() : nullptr, MSG_LS_BEFORE_PROPERTIES, 0, 0);
    Send(provider_, MSG_LS_PROPERTIES, id_, 0);
}

void LineStudy::OnSelectedLS() { OnShowPropLS(); }

void LineStudy::OnShowPropLS() {
    Select(true);
    SetFocus();
    ShowProperties();
    if (Chart* chart = GetChart()) chart->UpdateScreen();
}

void LineStudy::OnDeleteLS() {
    PFChartWidget* widget = GetWidget();
    if (!widget) return;
    Object::Select(true);
    widget->DeleteLineStudy(this);
}

}  // namespace gx
