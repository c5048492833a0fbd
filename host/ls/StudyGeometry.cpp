#include "host/ls/StudyGeometry.h"

#include <QDateTime>
#include <algorithm>
#include <climits>
#include <cstring>

namespace host {
namespace ls {

namespace {

const struct KindName {
    StudyKind kind;
    const char* name;
    const char* title;
} kKinds[] = {
    {StudyKind::HLine, "HLine", "Horizontal line"},
    {StudyKind::VLine, "VLine", "Vertical line"},
    {StudyKind::Line, "Line", "Trend line"},
    {StudyKind::Text, "Text", "Text"},
    {StudyKind::Arc, "Arc", "Fibonacci arcs"},
    {StudyKind::Chanel, "Chanel", "Channel"},
    {StudyKind::Pitchfork, "Andrews Pitchfork", "Andrews pitchfork"},
    {StudyKind::PolyLine, "PolyLine", "Polyline"},
};

// Qt pen styles and alignment bits, as the chart reads them from a shape.
const std::int32_t kDashLine = 2;
const std::int32_t kDotLine = 3;
const std::int32_t kAlignLeft = 0x01;
const std::int32_t kAlignTop = 0x20;
// Title positions of lsShape::titlePosition.
const std::int32_t kTitleNone = 0;
const std::int32_t kTitleRight = 1;
const std::int32_t kTitleTop = 3;

// Fibonacci ratios of the arcs, in percent.
const float kArcPercents[] = {38.2f, 50.0f, 61.8f};
const int kPolyPoints = 10;

std::int32_t clamp32(std::int64_t v) {
    return std::int32_t(std::max<std::int64_t>(INT_MIN, std::min<std::int64_t>(INT_MAX, v)));
}

void setShape(lsShape& s, int tag, std::int32_t type, const StudyParams& p, bool visible,
              std::int32_t style = 0, const QString& title = QString(), std::int32_t position = kTitleNone,
              std::int32_t alignment = 0) {
    s.hostTag = tag;
    s.type = type;
    std::memset(s.title, 0, sizeof s.title);
    const QByteArray text = title.toLocal8Bit();
    std::memcpy(s.title, text.constData(), std::min<std::size_t>(std::size_t(text.size()), sizeof s.title - 1));
    s.titlePosition = position;
    s.titleAlignment = alignment;
    s.color = p.colour & 0xFFFFFFu;
    s.penStyle = style ? style : p.penStyle;
    s.penWidth = p.penWidth;
    s.visible = visible ? 1 : 0;
}

// The data block of a shape: exactly the size 4505 reported for its type.
template <typename Block>
void writeBlock(lsShape& s, const Block& block) {
    void* data = s.data;
    if (data) std::memcpy(data, &block, sizeof block);
}

void lineShape(lsShape& s, int tag, const StudyParams& p, const lsPointShape& a, const lsPointShape& b, bool visible,
               bool extendLeft, bool extendRight, std::int32_t style = 0) {
    setShape(s, tag, LS_SHAPE_LINE, p, visible, style);
    lsShapeLine block;
    std::memset(&block, 0, sizeof block);
    block.points[0] = a;
    block.points[1] = b;
    block.extendLeft = extendLeft ? 1 : 0;
    block.extendRight = extendRight ? 1 : 0;
    writeBlock(s, block);
}

// The price at candle `n` on the line through a and b (a's price when they share a candle).
float priceOn(const SeriesView& series, const lsPointShape& a, const lsPointShape& b, std::int64_t n) {
    const std::int64_t na = series.normalIndex(a), nb = series.normalIndex(b);
    if (na == nb) return a.value;
    return float(double(a.value) + (double(b.value) - double(a.value)) * double(n - na) / double(nb - na));
}

// `p` moved by the candles and price from `from` to `to`.
lsPointShape shifted(const SeriesView& series, const lsPointShape& p, const lsPointShape& from,
                     const lsPointShape& to) {
    const std::int64_t n = series.normalIndex(p) + series.normalIndex(to) - series.normalIndex(from);
    return series.pointAt(n, float(double(p.value) + double(to.value) - double(from.value)));
}

lsPointShape midpoint(const SeriesView& series, const lsPointShape& a, const lsPointShape& b) {
    return series.pointAt((series.normalIndex(a) + series.normalIndex(b)) / 2,
                          float((double(a.value) + double(b.value)) / 2.0));
}

void channel(const StudyParams& p, const SeriesView& series, const lsPointShape* in, lsPointShape* out,
             lsShape* shapes) {
    // Until its end is placed the first line runs to point 1, the end's first guess.
    const lsPointShape& start = out[0];
    const lsPointShape& end = unplaced(in[2]) ? out[1] : out[2];
    const bool first = !unplaced(in[0]) && !unplaced(end);
    const bool second = first && !unplaced(in[3]);
    float offset = 0.0f;
    if (second) offset = float(double(in[3].value) - double(priceOn(series, start, end, series.normalIndex(in[3]))));
    lsPointShape upperA = start, upperB = end, middleA = start, middleB = end;
    upperA.value += offset;
    upperB.value += offset;
    middleA.value += offset / 2;
    middleB.value += offset / 2;
    lineShape(shapes[0], 0, p, start, end, first, false, false);
    lineShape(shapes[1], 1, p, middleA, middleB, second, false, false, kDashLine);
    lineShape(shapes[2], 2, p, upperA, upperB, second, false, false);
    if (first && !unplaced(in[2])) out[1] = midpoint(series, start, end);
    if (second && !unplaced(in[2])) out[3] = midpoint(series, upperA, upperB);
}

void pitchfork(const StudyParams& p, const SeriesView& series, const lsPointShape* in, lsPointShape* out,
               lsShape* shapes) {
    const bool two = !unplaced(in[0]) && !unplaced(in[1]);
    const bool three = two && !unplaced(in[2]);
    // The fourth handle is the host's: the middle of the two reaction points.
    out[3] = three ? midpoint(series, out[1], out[2]) : lsPointShape{};
    if (three) out[3].m_typePoint = LS_POINT_PLACED;
    const lsPointShape& towards = three ? out[3] : out[1];
    const bool right = series.normalIndex(towards) >= series.normalIndex(out[0]);
    lineShape(shapes[0], 0, p, out[0], towards, two, !right, right);
    const lsPointShape upper = shifted(series, out[1], out[0], towards);
    const lsPointShape lower = shifted(series, out[2], out[0], towards);
    lineShape(shapes[1], 1, p, out[1], upper, three, !right, right);
    lineShape(shapes[2], 2, p, out[2], lower, three, !right, right);
    lineShape(shapes[3], 3, p, out[1], out[2], three, false, false, kDashLine);
}

void polyline(const StudyParams& p, const lsPointShape* out, lsShape* shapes) {
    bool ended = false;
    for (int i = 0; i + 1 < kPolyPoints; ++i) {
        ended = ended || out[i].m_typePoint == LS_POINT_LAST;
        const bool visible = !ended && !unplaced(out[i]) && !unplaced(out[i + 1]);
        lineShape(shapes[i], i, p, out[i], out[i + 1], visible, false, false);
    }
}

}  // namespace

bool kindFromName(const std::string& name, StudyKind* kind) {
    for (const KindName& k : kKinds)
        if (name == k.name) {
            if (kind) *kind = k.kind;
            return true;
        }
    return false;
}

const char* studyName(StudyKind kind) { return kKinds[int(kind)].name; }

std::vector<std::string> studyNames() {
    std::vector<std::string> out;
    for (const KindName& k : kKinds) out.push_back(k.name);
    return out;
}

QString studyTitle(StudyKind kind) { return QString::fromLatin1(kKinds[int(kind)].title); }

int controlPointCount(StudyKind kind) {
    switch (kind) {
        case StudyKind::HLine:
        case StudyKind::VLine:
        case StudyKind::Text:
            return 1;
        case StudyKind::Line:
        case StudyKind::Arc:
            return 2;
        case StudyKind::Chanel:
        case StudyKind::Pitchfork:
            return 4;
        case StudyKind::PolyLine:
            return kPolyPoints;
    }
    return 0;
}

std::vector<std::int32_t> shapeTypes(StudyKind kind) {
    switch (kind) {
        case StudyKind::HLine:
            return {LS_SHAPE_HLINE};
        case StudyKind::VLine:
            return {LS_SHAPE_VLINE};
        case StudyKind::Line:
            return {LS_SHAPE_LINE};
        case StudyKind::Text:
            return {LS_SHAPE_TEXT};
        case StudyKind::Arc:
            return {LS_SHAPE_LINE, LS_SHAPE_ARC, LS_SHAPE_ARC, LS_SHAPE_ARC};
        case StudyKind::Chanel:
            return {LS_SHAPE_LINE, LS_SHAPE_LINE, LS_SHAPE_LINE};
        case StudyKind::Pitchfork:
            return {LS_SHAPE_LINE, LS_SHAPE_LINE, LS_SHAPE_LINE, LS_SHAPE_LINE};
        case StudyKind::PolyLine:
            return std::vector<std::int32_t>(kPolyPoints - 1, LS_SHAPE_LINE);
    }
    return {};
}

std::int32_t shapeDataSize(std::int32_t type) {
    switch (type) {
        case LS_SHAPE_LINE:
            return sizeof(lsShapeLine);
        case LS_SHAPE_TEXT:
            return sizeof(lsShapeText);
        case LS_SHAPE_HLINE:
            return sizeof(lsShapeHLine);
        case LS_SHAPE_VLINE:
            return sizeof(lsShapeVLine);
        case LS_SHAPE_ARC:
            return sizeof(lsShapeArc);
        default:
            return 0;
    }
}

std::int64_t SeriesView::normalIndex(const lsPointShape& p) const {
    return p.indexType == 1 ? std::int64_t(lastIndex()) + p.index : std::int64_t(p.index);
}

std::int32_t SeriesView::timeAt(std::int64_t index) const {
    if (times.empty()) return 0;
    const std::int64_t last = lastIndex();
    if (index >= 0 && index <= last) return times[std::size_t(index)];
    const std::int64_t base = index < 0 ? times.front() : times.back();
    const std::int64_t steps = index < 0 ? index : index - last;
    return clamp32(std::max<std::int64_t>(0, base + steps * std::max<std::int64_t>(1, period)));
}

lsPointShape SeriesView::pointAt(std::int64_t index, float value) const {
    lsPointShape p;
    p.m_typePoint = LS_POINT_PLACED;
    p.m_xTime = timeAt(index);
    p.value = value;
    const std::int64_t last = lastIndex();
    p.indexType = index > last ? 1 : 0;
    p.index = clamp32(index > last ? index - last : index);
    return p;
}

bool unplaced(const lsPointShape& p) {
    return p.m_xTime == 0 && p.index == 0 && p.value == 0.0f && p.indexType == 0;
}

QString priceTitle(double price, int precision) {
    return QString::number(price, 'f', std::max(0, std::min(precision, 9)));
}

QString dateTitle(std::int32_t time) {
    return QDateTime::fromSecsSinceEpoch(time, Qt::UTC).toString(QStringLiteral("dd.MM.yyyy hh:mm"));
}

void computeStudy(StudyKind kind, const StudyParams& p, const SeriesView& series, const lsPointShape* in,
                  lsPointShape* out, lsShape* shapes) {
    const int n = controlPointCount(kind);
    // The points as placed, each taking the time of its candle.
    for (int i = 0; i < n; ++i) {
        out[i] = in[i];
        if (!unplaced(in[i]) && !series.times.empty()) out[i].m_xTime = series.timeAt(series.normalIndex(in[i]));
    }
    switch (kind) {
        case StudyKind::HLine: {
            setShape(shapes[0], 0, LS_SHAPE_HLINE, p, !unplaced(in[0]), 0, priceTitle(in[0].value, series.precision),
                     kTitleRight, kAlignLeft);
            const lsShapeHLine block{in[0].value};
            writeBlock(shapes[0], block);
            break;
        }
        case StudyKind::VLine: {
            const bool placed = !unplaced(in[0]);
            setShape(shapes[0], 0, LS_SHAPE_VLINE, p, placed, 0, placed ? dateTitle(out[0].m_xTime) : QString(),
                     kTitleTop, kAlignTop);
            lsShapeVLine block;
            std::memset(&block, 0, sizeof block);
            block.placed = placed ? 0 : -1;
            block.index = in[0].index;
            block.indexType = std::uint8_t(in[0].indexType);
            writeBlock(shapes[0], block);
            break;
        }
        case StudyKind::Line:
            lineShape(shapes[0], 0, p, out[0], out[1], !unplaced(in[0]) && !unplaced(in[1]), p.extendLeft,
                      p.extendRight);
            break;
        case StudyKind::Text: {
            setShape(shapes[0], 0, LS_SHAPE_TEXT, p, !unplaced(in[0]));
            lsShapeText block;
            std::memset(&block, 0, sizeof block);
            block.anchor = out[0];
            const int units = std::min(int(p.text.size()), LS_TEXT_CHARS - 1);
            std::memcpy(block.text, p.text.utf16(), std::size_t(units) * sizeof(coreWChar));
            std::strncpy(block.family, p.family.c_str(), sizeof block.family - 1);
            block.pointSize = p.pointSize;
            block.bold = p.bold;
            block.italic = p.italic;
            block.underline = p.underline;
            block.strikeOut = p.strikeOut;
            writeBlock(shapes[0], block);
            break;
        }
        case StudyKind::Arc: {
            const bool placed = !unplaced(in[0]) && !unplaced(in[1]);
            lineShape(shapes[0], 0, p, out[0], out[1], placed, false, false, kDotLine);
            // The arcs open towards the start: below the centre when the start is lower.
            const std::int32_t lower = in[0].value < in[1].value ? 1 : 0;
            for (int i = 0; i < 3; ++i) {
                setShape(shapes[i + 1], i + 1, LS_SHAPE_ARC, p, placed, 0,
                         QString::number(double(kArcPercents[i]), 'f', 1) + QLatin1Char('%'));
                const lsShapeArc block{kArcPercents[i], lower};
                writeBlock(shapes[i + 1], block);
            }
            break;
        }
        case StudyKind::Chanel:
            channel(p, series, in, out, shapes);
            break;
        case StudyKind::Pitchfork:
            pitchfork(p, series, in, out, shapes);
            break;
        case StudyKind::PolyLine:
            polyline(p, out, shapes);
            break;
    }
}

}  // namespace ls
}  // namespace host
