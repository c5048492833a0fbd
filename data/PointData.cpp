#include "data/PointData.h"

#include <QBrush>
#include <QColor>
#include <QCoreApplication>
#include <QDateTime>

#include "gx/Line.h"
#include "module/CModule.h"

namespace pf {

namespace {

// The module's translation of `key`; the module translates through its own context,
// which is this one, so without a live module the same lookup is made directly.
QString Translate(const char* key) {
    if (const CModule* module = CModule::Current()) return module->tr(key);
    return QCoreApplication::translate("CTranslatePFgraph", key);
}

// "%0.<precision>f". A precision outside 0..64 would make the format invalid or the text
// absurdly long; it is held to that range.
QString FormatPrice(float value, int precision) {
    if (precision < 0) precision = 0;
    if (precision > 64) precision = 64;
    const QByteArray format = "%0." + QByteArray::number(precision) + "f";
    return QString::asprintf(format.constData(), static_cast<double>(value));
}

}  // namespace

PointData::PointData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine)
    : line_(line), engine_(engine) {}

PointData::~PointData() = default;

int PointData::RecordCount(const fxDataPointArray* array) {
    if (!array || !array->points || array->pointSize < static_cast<int>(sizeof(fxChartTypeRecord)) ||
        array->pointCount < 0)
        return 0;
    return array->pointCount;
}

QString PointData::ToolTipText(const QString& name, const fxChartTypeRecord& record,
                               int precision) {
    const QDateTime time = QDateTime::fromSecsSinceEpoch(record.time, Qt::LocalTime);
    return name + QLatin1Char('\n') + Translate("PF0017") + QLatin1String(": ") +
           FormatPrice(record.value, precision) + QLatin1Char('\n') + Translate("PF0018") +
           QLatin1String(": ") + FormatPrice(record.end, precision) + QLatin1Char('\n') +
           time.toString(QStringLiteral("dd.MM.yyyy")) + QLatin1Char(' ') +
           time.toString(QStringLiteral("hh:mm:ss"));
}

void PointData::AdvancePenStyle() {
    // A selected line flickers between two dash patterns from one repaint to the next.
    if (line_ && line_->IsSelected())
        penStyle_ = penStyle_ == Qt::DotLine ? Qt::DashDotLine : Qt::DotLine;
    else
        penStyle_ = Qt::SolidLine;
}

bool PointData::BeginDraw(const QPainter& painter, const fxDataPointArray* array, Frame& frame) {
    if (!engine_) return false;
    stamps_.Begin(painter);
    const ScaleEngine& e = *engine_;
    const int n = e.GetColumnCount();
    frame.step = e.GetXStep(static_cast<float>(n));
    SetStepX(frame.step);
    xPos_ = static_cast<float>(e.GetLeft());
    AdvancePenStyle();

    const int first = e.GetFirstColumn();
    const int last = e.GetLastDrawable();
    const int records = RecordCount(array);
    if (n <= 0 || first > last || first < 0 || first >= records) return false;
    long long end = static_cast<long long>(first) + n;
    if (end > static_cast<long long>(last) + 1) end = static_cast<long long>(last) + 1;
    if (end > records) end = records;
    frame.first = first;
    frame.end = static_cast<int>(end);
    frame.colour0 = static_cast<QRgb>(array->typeShow.color0);
    frame.colour1 = static_cast<QRgb>(array->typeShow.color1);
    frame.precision = array->precision;
    frame.drawFrom = drawFrom_;
    frame.drawTo = drawTo_;
    return true;
}

void PointData::DrawRecords(QPainter& painter, fxDataPointArray* array, int from, int to) {
    drawFrom_ = from;
    drawTo_ = to;
    try {
        Draw(painter, array);
    } catch (...) {
        drawFrom_ = INT_MIN;
        drawTo_ = INT_MAX;
        throw;
    }
    drawFrom_ = INT_MIN;
    drawTo_ = INT_MAX;
}

int PointData::EntryState(const fxDataPointArray*, int) const { return 0; }

QPen PointData::MakePen(QRgb colour, qreal width) const {
    return QPen(QBrush(QColor(colour), Qt::SolidPattern), width,
                static_cast<Qt::PenStyle>(penStyle_), Qt::SquareCap, Qt::BevelJoin);
}

}  // namespace pf
