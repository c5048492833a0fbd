// The common wrapper of one host data point array (fxDataPointArray): the header, the field
// layout and the data block. CKVDataLine (price series) and CKVPFLine (column arrays) are this
// class with their own table of standard fields; everything they share lives here once.
//
// A line is empty (no header), borrowing (the host owns the header) or owning (Create() made
// the header; the destructor frees it once a data block was allocated). Copies are member by
// member: a copy shares the header and takes the owns flag. Moving hands the ownership over, so
// a vector of lines can grow without freeing a header the moved line still uses.
//
// The arrays come from another binary: every reader checks the header, the data block, the
// index and that the field lies inside the data point before it reads, and answers the neutral
// result (false, null, 0, -1, 6 or the sentinels) otherwise. Nothing here throws.
#pragma once

#include <QMap>
#include <QString>

#include <cstdint>
#include <cstring>

#include "abi/records/dpa_records.h"

// The standard fields a line knows by name, in slot order, and which of them `InsertDPV`
// recognises and the text form prints. Slot 0 is "TIME" in every table.
struct KVLineFields {
    enum { kMaxSlots = 7 };
    int count;
    const char* names[kMaxSlots];
    unsigned insertMask;  // bit i: InsertDPV sets the offset of slot i
    unsigned printMask;   // bit i: the text form prints slot i
};

class CKVLineBase {
public:
    virtual ~CKVLineBase();

    // Makes an owned, empty header with room for 100 descriptors.
    void Create();
    // Borrows the host's array and learns its field layout; null changes nothing.
    void Create(fxDataPointArray* array);

    // Building an owned array.
    int InsertDPV(DATA_POINT_TYPES type, const QString& name);
    unsigned char* AllocateMemory(long n);
    void AppendData(const unsigned char* point);
    void ReplaceData(int index, const unsigned char* point);
    void ClearData();

    // Header setters: nothing happens without a header.
    void SetName(const QString& name, const QString& second, char periodType, int periodLength, long value);
    void SetName(const coreNameInstrument* name);
    void SetAdditionalName(const QString& text);
    void SetOwner(void* owner);
    void SetPrecis(int precision);
    void SetTypeShow(const coreTypeShow* show);
    void SetCoord(const coreSystemCoord* coord);
    void SetLineColor(long color);
    void SetPenType(eCoreTypeShowPen pen);
    void SetWeightPen(int weight);
    void SetLineShowType(int type);
    void SetBorderValue(float value);

    // Field readers.
    static int GetFieldLen(DATA_POINT_TYPES type);
    static unsigned char AsByte(const unsigned char* p) { return p ? p[0] : 0; }
    static unsigned short AsShort(const unsigned char* p) { return Load<std::uint16_t>(p); }
    static int AsLong(const unsigned char* p) { return Load<std::int32_t>(p); }
    static float AsFloat(const unsigned char* p) { return Load<float>(p); }

    bool GetDataPoint(int index, void* out) const;
    unsigned char* GetDataPoint(int index) const;
    int GetTime(int index) const;
    DATA_POINT_TYPES GetFieldType(const QString& name) const;
    int GetFieldOffset(const QString& name) const;
    double ValueByName(const QString& name, int index) const;

    // Searches; `to` = -1 means up to the last point.
    int FindTime(long time, int from = 0, int to = -1) const;
    int FindElement(const QString& name, double value, int from = 0, int to = -1) const;
    double FindMinElement(const QString& name, int from = 0, int to = -1) const;
    double FindMaxElement(const QString& name, int from = 0, int to = -1) const;

    // Appends the tab-separated text form of the whole series to `out`.
    void GetStringRepresentation(QString& out) const;
    // Takes the host's newer array of the same layout; the number of points added.
    int Update(fxDataPointArray* array);

    // State.
    fxDataPointArray* GetHeader() const { return header_; }
    const fxDataPointArray& GetHeaderCopy() const { return copy_; }
    int Size() const;
    int GetCapacity() const { return capacity_; }
    bool IsOwner() const { return owns_; }
    int GetPrevCount() const { return previous_; }
    // Byte offset of standard field `slot` in a data point; -1 when absent or no such slot.
    int GetNamedOffset(int slot) const;
    // The header's UTF-16 name, read up to its terminator or the end of the field.
    QString GetName() const;

    static constexpr double kMinSentinel = 1.7e308;
    static constexpr double kMaxSentinel = -1.7e308;

protected:
    explicit CKVLineBase(const KVLineFields& fields);
    CKVLineBase(const CKVLineBase&) = default;
    CKVLineBase& operator=(const CKVLineBase&) = default;
    CKVLineBase(CKVLineBase&& other) noexcept;
    CKVLineBase& operator=(CKVLineBase&& other) noexcept;

    // Standard field `slot` of point `index` read as a 32-bit float; 0 when unreadable.
    float GetFloatField(int slot, int index) const;

    // Start of the data block when it holds readable points, else null.
    const unsigned char* Block() const;
    int PointCount() const { return header_ ? header_->pointCount : 0; }
    int PointSize() const { return header_ ? header_->pointSize : 0; }

    template <typename T>
    static T Load(const unsigned char* p) {
        T v{};
        if (p) std::memcpy(&v, p, sizeof v);
        return v;
    }

private:
    struct Field {
        int offset;
        int type;
    };
    // The field `name` from the maps, when it lies inside a data point.
    bool LocateField(const QString& name, Field& field) const;
    // Folds field `name` over the extreme range from `sentinel`, keeping what `better` prefers.
    template <typename Better>
    double FindExtreme(const QString& name, int from, int to, double sentinel, Better better) const;
    // The point `index` when it lies inside the block.
    const unsigned char* PointAt(int index) const;
    // Bytes [offset, offset + width) of point `index`, when they lie inside the point.
    const unsigned char* FieldAt(int index, int offset, int width) const;
    void ResetOffsets();
    void Disown(CKVLineBase& other);

    const KVLineFields* fields_;
    fxDataPointArray* header_ = nullptr;
    fxDataPointArray copy_;
    int capacity_ = 0;
    int offsets_[KVLineFields::kMaxSlots];
    bool owns_ = false;
    QMap<QString, DATA_POINT_TYPES> types_;
    QMap<QString, int> offsetMap_;
    int previous_ = 0;
};
