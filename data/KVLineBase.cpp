#include "data/KVLineBase.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "data/KVTime.h"

namespace {

enum : int {
    kNameUnits = 255,    // UTF-16 name field, terminator included
    kText8Bytes = 255,   // 8-bit name fields, terminator included
    kGrowStep = 300,     // the data block grows by at least this many points
    kPieceBytes = 100,   // each formatted piece of the text form
    // Any float printed with this many decimals or more shows its exact expansion followed by
    // zeros, so the 99 bytes kept of a piece are the same for every larger precision.
    kMaxPrintedDecimals = 160,
};

// The UTF-16 name field of a header, as bytes: the header may sit at any address, so the code
// units are moved with memcpy rather than through a coreWChar pointer.
unsigned char* NameField(fxDataPointArray* header) {
    return reinterpret_cast<unsigned char*>(header) + offsetof(fxDataPointArray, name) + offsetof(coreNameInstrument, name);
}

// Copies `text` into the UTF-16 name field. Longer input is cut at 254 units and terminated
// (never inside a surrogate pair) instead of running past the field.
void CopyName16(unsigned char* field, const QString& text) {
    int n = std::min(int(text.size()), kNameUnits - 1);
    if (n < text.size() && n > 0 && text.at(n - 1).isHighSurrogate()) --n;
    std::memcpy(field, text.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(n));
    const coreWChar terminator = 0;
    std::memcpy(field + sizeof(coreWChar) * static_cast<std::size_t>(n), &terminator, sizeof terminator);
}

QString ReadName16(const unsigned char* field) {
    coreWChar units[kNameUnits];
    std::memcpy(units, field, sizeof units);
    int n = 0;
    while (n < kNameUnits && units[n] != 0) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(units), n);
}

// Converts `text` to local 8-bit into a field of kText8Bytes bytes. Input of 255 bytes or more
// keeps the whole characters that fit in 254 bytes (never half of one, in any locale) and is
// terminated instead of overflowing the field.
void CopyText8(char* field, const QString& text) {
    int n = std::min(int(text.size()), kText8Bytes - 1);
    QByteArray bytes = text.left(n).toLocal8Bit();
    while (bytes.size() > kText8Bytes - 1) {
        n -= (n > 1 && text.at(n - 1).isLowSurrogate()) ? 2 : 1;
        bytes = text.left(n).toLocal8Bit();
    }
    std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    field[bytes.size()] = '\0';
}

QString ReadText8(const char* field) {
    return QString::fromLocal8Bit(field, static_cast<int>(qstrnlen(field, kText8Bytes)));
}

// A field read by name: 8-byte types through their first byte, 6 and unknown types as 0.
inline double ReadTyped(const unsigned char* p, int type) {
    switch (type) {
    case DPT_UINT8:
    case DPT_BYTES8:
    case DPT_DOUBLE: return p[0];
    case DPT_UINT16: return CKVLineBase::AsShort(p);
    case DPT_INT32: return CKVLineBase::AsLong(p);
    case DPT_FLOAT: return CKVLineBase::AsFloat(p);
    default: return 0;
    }
}

template <typename Read, typename Better>
double FoldWith(const unsigned char* p, std::ptrdiff_t stride, int n, double extreme, Read read, Better better) {
    for (int i = 0; i < n; ++i, p += stride) {
        const double v = read(p);
        if (better(v, extreme)) extreme = v;
    }
    return extreme;
}

// Folds n fields of one type, `stride` bytes apart; the type is resolved once, not per point.
template <typename Better>
double FoldField(const unsigned char* p, std::ptrdiff_t stride, int n, int type, double extreme, Better better) {
    switch (type) {
    case DPT_UINT8:
    case DPT_BYTES8:
    case DPT_DOUBLE:
        return FoldWith(p, stride, n, extreme, [](const unsigned char* q) { return double(q[0]); }, better);
    case DPT_UINT16:
        return FoldWith(p, stride, n, extreme, [](const unsigned char* q) { return double(CKVLineBase::AsShort(q)); }, better);
    case DPT_INT32:
        return FoldWith(p, stride, n, extreme, [](const unsigned char* q) { return double(CKVLineBase::AsLong(q)); }, better);
    case DPT_FLOAT:
        return FoldWith(p, stride, n, extreme, [](const unsigned char* q) { return double(CKVLineBase::AsFloat(q)); }, better);
    default:
        return FoldWith(p, stride, n, extreme, [](const unsigned char*) { return 0.0; }, better);
    }
}

// Range of FindTime and FindElement; false when it is empty (no points).
bool ScanRange(int count, int from, int to, int& start, int& end) {
    if (count <= 0) return false;
    start = from < 0 ? 0 : std::min(from, count - 1);
    if (to == -1) end = count - 1;
    else if (start > to) end = start;
    else if (to >= count) end = count - 1;
    else end = to;
    return true;
}

// Range of FindMinElement and FindMaxElement. The rule never gives an empty range, but it can
// name points outside the block (a `to` below -1, an empty array): only the part of the range
// inside the block is folded, so such a range leaves the sentinel.
bool ExtremeRange(int count, int from, int to, int& start, int& end) {
    end = (to != -1 && static_cast<long long>(to) + 1 < count) ? to : count - 1;
    start = std::min(std::max(from, 0), end);
    start = std::max(start, 0);
    end = std::min(end, count - 1);
    return start <= end;
}

}  // namespace

CKVLineBase::CKVLineBase(const KVLineFields& fields) : fields_(&fields) {
    std::memset(&copy_, 0, sizeof copy_);
    ResetOffsets();
}

CKVLineBase::~CKVLineBase() {
    if (!owns_ || capacity_ == 0 || !header_) return;
    std::free(header_->points);
    std::free(header_->fields);
    std::free(header_);
}

CKVLineBase::CKVLineBase(CKVLineBase&& other) noexcept
    : fields_(other.fields_), header_(other.header_), copy_(other.copy_), capacity_(other.capacity_),
      owns_(other.owns_), types_(std::move(other.types_)), offsetMap_(std::move(other.offsetMap_)),
      previous_(other.previous_) {
    std::copy(other.offsets_, other.offsets_ + KVLineFields::kMaxSlots, offsets_);
    Disown(other);
}

CKVLineBase& CKVLineBase::operator=(CKVLineBase&& other) noexcept {
    if (this == &other) return *this;
    fields_ = other.fields_;
    header_ = other.header_;
    copy_ = other.copy_;
    capacity_ = other.capacity_;
    std::copy(other.offsets_, other.offsets_ + KVLineFields::kMaxSlots, offsets_);
    owns_ = other.owns_;
    types_ = std::move(other.types_);
    offsetMap_ = std::move(other.offsetMap_);
    previous_ = other.previous_;
    Disown(other);
    return *this;
}

// A moved-from line keeps nothing that its destructor would free.
void CKVLineBase::Disown(CKVLineBase& other) {
    other.header_ = nullptr;
    other.owns_ = false;
    other.capacity_ = 0;
}

void CKVLineBase::ResetOffsets() { std::fill(offsets_, offsets_ + KVLineFields::kMaxSlots, -1); }

void CKVLineBase::Create() {
    header_ = static_cast<fxDataPointArray*>(std::calloc(1, sizeof(fxDataPointArray)));
    if (header_)
        header_->fields = static_cast<fxDataPointField*>(std::calloc(FX_MAX_DATA_POINT_FIELDS, sizeof(fxDataPointField)));
    capacity_ = 0;
    previous_ = 0;
    ResetOffsets();
    owns_ = header_ != nullptr;
    std::memset(&copy_, 0, sizeof copy_);
}

void CKVLineBase::Create(fxDataPointArray* array) {
    if (!array) return;
    header_ = array;
    std::memcpy(&copy_, array, sizeof copy_);
    ResetOffsets();
    // The maps keep what earlier arrays put there; a later duplicate name wins.
    const fxDataPointField* fields = array->fields;
    const int n = fields ? std::clamp<int>(+array->fieldCount, 0, FX_MAX_DATA_POINT_FIELDS) : 0;
    int offset = 0;
    for (int i = 0; i < n; ++i) {
        const QString name = ReadText8(fields[i].name);
        const DATA_POINT_TYPES type = static_cast<DATA_POINT_TYPES>(fields[i].type);
        offsetMap_[name] = offset;
        offset += GetFieldLen(type);
        types_[name] = type;
    }
    for (int slot = 0; slot < fields_->count; ++slot) {
        const auto it = offsetMap_.constFind(QLatin1String(fields_->names[slot]));
        if (it != offsetMap_.constEnd()) offsets_[slot] = it.value();
    }
}

int CKVLineBase::InsertDPV(DATA_POINT_TYPES type, const QString& name) {
    if (!header_) return 0;
    fxDataPointField* fields = header_->fields;
    const int index = header_->fieldCount;
    // Only 100 descriptors fit; the count goes on growing past them.
    if (fields && index >= 0 && index < FX_MAX_DATA_POINT_FIELDS) {
        fields[index].type = type;
        CopyText8(fields[index].name, name);
    }
    if (index < INT_MAX) header_->fieldCount = index + 1;
    const int size = header_->pointSize;
    for (int slot = 0; slot < fields_->count; ++slot)
        if ((fields_->insertMask & (1u << slot)) && name == QLatin1String(fields_->names[slot])) offsets_[slot] = size;
    const int width = GetFieldLen(type);
    header_->pointSize = size <= INT_MAX - width ? size + width : size;
    return width;
}

unsigned char* CKVLineBase::AllocateMemory(long n) {
    if (!header_ || header_->pointSize < 0) return nullptr;
    const long long m = std::max<long long>(n, kGrowStep);
    const bool grow = header_->points && capacity_ != 0;
    const long long points = grow ? capacity_ + m : m;
    const unsigned long long bytes = static_cast<unsigned long long>(points) * static_cast<unsigned>(header_->pointSize);
    // A capacity past 32 bits or a block the address space cannot hold: the line stays as it was.
    if (points > INT_MAX || bytes > static_cast<unsigned long long>(PTRDIFF_MAX)) return nullptr;
    const std::size_t request = std::max<std::size_t>(static_cast<std::size_t>(bytes), 1);
    void* block = grow ? std::realloc(header_->points, request) : std::malloc(request);
    if (!block) return nullptr;
    header_->points = static_cast<unsigned char*>(block);
    capacity_ = static_cast<int>(points);
    return header_->points;
}

void CKVLineBase::AppendData(const unsigned char* point) {
    if (!point || !header_) return;
    if (header_->pointCount == capacity_) AllocateMemory(1);
    const int count = header_->pointCount;
    const int size = header_->pointSize;
    // Writes only into a block this line allocated and only below its capacity.
    if (!header_->points || count < 0 || count >= capacity_ || size < 0) return;
    std::memcpy(header_->points + static_cast<std::ptrdiff_t>(count) * size, point, static_cast<std::size_t>(size));
    header_->pointCount = count + 1;
}

void CKVLineBase::ReplaceData(int index, const unsigned char* point) {
    if (!point) return;
    const unsigned char* target = PointAt(index);
    if (target) std::memcpy(const_cast<unsigned char*>(target), point, static_cast<std::size_t>(PointSize()));
}

void CKVLineBase::ClearData() {
    if (!header_) return;
    // Only a block this line allocated is freed; a borrowed block belongs to the host and is
    // let go without freeing.
    if (capacity_ != 0) std::free(header_->points);
    header_->points = nullptr;
    header_->pointCount = 0;
    capacity_ = 0;
    previous_ = 0;
}

void CKVLineBase::SetName(const QString& name, const QString& second, char periodType, int periodLength, long value) {
    if (!header_) return;
    CopyName16(NameField(header_), name);
    CopyText8(header_->name.secondName, second);
    header_->name.period.type = periodType;
    header_->name.period.length = periodLength;
    header_->name.value = static_cast<std::int32_t>(value);
}

void CKVLineBase::SetName(const coreNameInstrument* name) {
    if (header_ && name) std::memcpy(&header_->name, name, sizeof(coreNameInstrument));
}

void CKVLineBase::SetAdditionalName(const QString& text) {
    if (header_) CopyName16(NameField(header_), ReadName16(NameField(header_)) + QLatin1Char(' ') + text);
}

// SetOwner and SetPrecis test for the header like every other setter.
void CKVLineBase::SetOwner(void* owner) {
    if (header_) header_->owner = owner;
}

void CKVLineBase::SetPrecis(int precision) {
    if (header_) header_->precision = precision;
}

void CKVLineBase::SetTypeShow(const coreTypeShow* show) {
    if (header_ && show) std::memcpy(&header_->typeShow, show, sizeof(coreTypeShow));
}

void CKVLineBase::SetCoord(const coreSystemCoord* coord) {
    if (header_ && coord) std::memcpy(&header_->coord, coord, sizeof(coreSystemCoord));
}

void CKVLineBase::SetLineColor(long color) {
    if (!header_) return;
    header_->typeShow.color0 = static_cast<std::int32_t>(color);
    header_->typeShow.color1 = static_cast<std::int32_t>(color);
}

void CKVLineBase::SetPenType(eCoreTypeShowPen pen) {
    if (header_) header_->typeShow.penType = pen;
}

void CKVLineBase::SetWeightPen(int weight) {
    if (header_) header_->typeShow.penWeight = weight;
}

void CKVLineBase::SetLineShowType(int type) {
    if (header_) header_->typeShow.lineShowType = type;
}

void CKVLineBase::SetBorderValue(float value) {
    if (header_) header_->typeShow.borderValue = value;
}

int CKVLineBase::GetFieldLen(DATA_POINT_TYPES type) {
    switch (type) {
    case DPT_UINT8: return 1;
    case DPT_UINT16: return 2;
    case DPT_INT32:
    case DPT_FLOAT: return 4;
    case DPT_BYTES8:
    case DPT_DOUBLE: return 8;
    default: return 0;
    }
}

// A block of zero-sized points holds nothing to read and counts as no block.
const unsigned char* CKVLineBase::Block() const {
    return header_ && header_->pointSize > 0 ? header_->points : nullptr;
}

const unsigned char* CKVLineBase::PointAt(int index) const {
    const unsigned char* block = Block();
    if (!block || index < 0 || index >= header_->pointCount) return nullptr;
    return block + static_cast<std::ptrdiff_t>(index) * header_->pointSize;
}

const unsigned char* CKVLineBase::FieldAt(int index, int offset, int width) const {
    if (offset < 0 || offset > PointSize() - width) return nullptr;
    const unsigned char* point = PointAt(index);
    return point ? point + offset : nullptr;
}

bool CKVLineBase::LocateField(const QString& name, Field& field) const {
    const auto it = offsetMap_.constFind(name);
    if (it == offsetMap_.constEnd()) return false;
    field.offset = it.value();
    field.type = types_.value(name, DPT_NONE);
    return field.offset >= 0 && field.offset <= PointSize() - GetFieldLen(static_cast<DATA_POINT_TYPES>(field.type));
}

bool CKVLineBase::GetDataPoint(int index, void* out) const {
    const unsigned char* point = PointAt(index);
    if (!point || !out) return false;
    std::memcpy(out, point, static_cast<std::size_t>(PointSize()));
    return true;
}

unsigned char* CKVLineBase::GetDataPoint(int index) const { return const_cast<unsigned char*>(PointAt(index)); }

int CKVLineBase::GetTime(int index) const { return AsLong(FieldAt(index, offsets_[0], 4)); }

float CKVLineBase::GetFloatField(int slot, int index) const {
    if (slot < 0 || slot >= fields_->count) return 0;
    return AsFloat(FieldAt(index, offsets_[slot], 4));
}

DATA_POINT_TYPES CKVLineBase::GetFieldType(const QString& name) const { return types_.value(name, DPT_NONE); }

int CKVLineBase::GetFieldOffset(const QString& name) const { return offsetMap_.value(name, -1); }

// The index is range-checked here too: a point past the block is never read.
double CKVLineBase::ValueByName(const QString& name, int index) const {
    Field field;
    if (!Block() || !LocateField(name, field)) return 0;
    const unsigned char* point = PointAt(index);
    return point ? ReadTyped(point + field.offset, field.type) : 0;
}

int CKVLineBase::FindTime(long time, int from, int to) const {
    if (!Block()) return 0;
    int start = 0, end = -1;
    const bool any = ScanRange(PointCount(), from, to, start, end);
    const int offset = offsets_[0];
    if (offset < 0 || offset > PointSize() - 4) return 0;
    if (!any) return -1;
    for (int i = start; i <= end; ++i) {
        const long t = AsLong(PointAt(i) + offset);
        if (t > time) return -1;
        if (t == time) return i;
    }
    return -1;
}

int CKVLineBase::FindElement(const QString& name, double value, int from, int to) const {
    if (!Block()) return 0;
    int start = 0, end = -1;
    Field field;
    if (!LocateField(name, field) || !ScanRange(PointCount(), from, to, start, end)) return -1;
    for (int i = start; i <= end; ++i)
        if (ReadTyped(PointAt(i) + field.offset, field.type) == value) return i;
    return -1;
}

template <typename Better>
double CKVLineBase::FindExtreme(const QString& name, int from, int to, double sentinel, Better better) const {
    Field field;
    if (!Block() || !LocateField(name, field)) return 0;
    int start = 0, end = -1;
    if (!ExtremeRange(PointCount(), from, to, start, end)) return sentinel;
    return FoldField(PointAt(start) + field.offset, PointSize(), end - start + 1, field.type, sentinel, better);
}

double CKVLineBase::FindMinElement(const QString& name, int from, int to) const {
    return FindExtreme(name, from, to, kMinSentinel, [](double v, double m) { return v < m; });
}

double CKVLineBase::FindMaxElement(const QString& name, int from, int to) const {
    return FindExtreme(name, from, to, kMaxSentinel, [](double v, double m) { return v > m; });
}

void CKVLineBase::GetStringRepresentation(QString& out) const {
    if (!Block()) return;
    std::string text;
    int printed[KVLineFields::kMaxSlots];  // the value columns after TIME, in slot order
    int columns = 0;
    const bool hasTime = offsets_[0] != -1;
    for (int slot = 0; slot < fields_->count; ++slot) {
        if (!(fields_->printMask & (1u << slot)) || offsets_[slot] == -1) continue;
        text += fields_->names[slot];
        text += '\t';
        if (slot != 0) printed[columns++] = slot;
    }
    text += '\n';

    // "%.<precision>f" and a tab; a negative precision prints no decimals.
    const int precision = std::clamp<int>(+header_->precision, 0, kMaxPrintedDecimals);
    const int count = std::max(0, PointCount());
    // About 18 bytes of time and a dozen plus the decimals per value; grows if more is needed.
    const std::size_t rowGuess = (hasTime ? 18u : 0u) + static_cast<std::size_t>(columns) * (12u + precision) + 1u;
    text.reserve(text.size() + std::min<std::size_t>(rowGuess * static_cast<std::size_t>(count), 1u << 26));
    // The text has to fit in a QString next to what `out` already holds.
    const std::size_t limit = static_cast<std::size_t>(std::max(0, (INT_MAX / 2 - 16) - int(out.size())));

    static const std::string kTimeFormat = "%d/%m/%y %H:%M:%S";
    CKVTime clock(0);
    char piece[kPieceBytes];
    const auto append = [&](int written) {
        if (written > 0) text.append(piece, static_cast<std::size_t>(std::min(written, kPieceBytes - 1)));
    };
    for (int i = 0; i < count && text.size() < limit; ++i) {
        if (hasTime) {
            clock.SetTime(GetTime(i));
            append(std::snprintf(piece, sizeof piece, "%s\t", clock.Format(kTimeFormat)));
        }
        for (int c = 0; c < columns; ++c)
            append(std::snprintf(piece, sizeof piece, "%.*f\t", precision, double(GetFloatField(printed[c], i))));
        text += '\n';
    }
    out.append(QLatin1String(text.data(), static_cast<int>(std::min(text.size(), limit))));
}

int CKVLineBase::Update(fxDataPointArray* array) {
    if (!array) return 0;
    header_ = array;
    const long long added = static_cast<long long>(array->pointCount) - previous_;
    previous_ = array->pointCount;
    return static_cast<int>(std::clamp<long long>(added, INT_MIN, INT_MAX));
}

int CKVLineBase::Size() const { return Block() ? std::max(0, +header_->pointCount) : 0; }

int CKVLineBase::GetNamedOffset(int slot) const {
    return slot >= 0 && slot < fields_->count ? offsets_[slot] : -1;
}

QString CKVLineBase::GetName() const { return header_ ? ReadName16(NameField(header_)) : QString(); }
