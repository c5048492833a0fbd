// Data point arrays as another binary may hand them over: random headers (counts, sizes,
// precision, period, names without terminators), random descriptors and a data block of
// exactly count x size bytes or none, read through CKVDataLine, CKVPFLine and CKVDataStore.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "../data/dpa_arrays.h"
#include "data/KVDataStore.h"
#include "data/KVPFLine.h"

namespace {

const char* const kNames[] = {"TIME", "OPEN", "HIGH", "LOW", "CLOSE", "VALUE", "VOLUME",
                              "STEP", "TYPE", "END", "SOLID", "X"};

// An array the fuzzer owns: descriptors allocated to exactly the count the header claims
// (at most 100) and a block of exactly count x size bytes, so a read past either is caught.
struct FuzzArray {
    fxDataPointArray a;
    std::unique_ptr<fxDataPointField[]> fields;
    std::unique_ptr<unsigned char[]> block;
    std::vector<QString> names;
};

QString PickName(FuzzedDataProvider& in) {
    if (in.ConsumeBool()) return QString::fromLatin1(kNames[in.ConsumeIntegralInRange<int>(0, 11)]);
    return QString::fromLocal8Bit(in.ConsumeRandomLengthString(300).c_str());
}

void FillArray(FuzzedDataProvider& in, FuzzArray& f) {
    std::memset(&f.a, 0, sizeof f.a);
    const std::vector<unsigned char> name = in.ConsumeBytes<unsigned char>(in.ConsumeIntegralInRange(0, 774));
    if (!name.empty()) std::memcpy(&f.a.name, name.data(), name.size());  // names, period, value; unterminated at will
    f.a.precision = in.ConsumeBool() ? in.ConsumeIntegral<std::int32_t>() : in.ConsumeIntegralInRange(-3, 12);

    const int count = in.ConsumeBool() ? in.ConsumeIntegral<std::int32_t>() : in.ConsumeIntegralInRange(0, 110);
    f.a.fieldCount = count;
    const int held = std::clamp(count, 0, int(FX_MAX_DATA_POINT_FIELDS));
    int size = 0;
    if (held > 0 && in.ConsumeIntegralInRange(0, 15) != 0) {
        f.fields.reset(new fxDataPointField[static_cast<std::size_t>(held)]);
        for (int i = 0; i < held; ++i) {
            fxDataPointField& d = f.fields[static_cast<std::size_t>(i)];
            d.type = in.ConsumeBool() ? in.ConsumeIntegralInRange(0, 6) : in.ConsumeIntegral<std::uint8_t>();
            if (in.ConsumeBool()) {
                std::memset(d.name, 'N', sizeof d.name);  // no terminator
            } else {
                std::memset(d.name, 0, sizeof d.name);
                const QByteArray n = PickName(in).toLocal8Bit().left(254);
                std::memcpy(d.name, n.constData(), static_cast<std::size_t>(n.size()));
            }
            size += CKVLineBase::GetFieldLen(static_cast<DATA_POINT_TYPES>(d.type));
            f.names.push_back(QString::fromLocal8Bit(d.name, static_cast<int>(qstrnlen(d.name, 255))));
        }
        f.a.fields = f.fields.get();
    }
    f.a.pointSize = in.ConsumeBool() ? size : in.ConsumeIntegralInRange(-8, 64);
    f.a.pointCount = in.ConsumeBool() ? in.ConsumeIntegralInRange(0, 600) : in.ConsumeIntegral<std::int32_t>();
    const long long bytes = static_cast<long long>(f.a.pointCount) * f.a.pointSize;
    if (f.a.pointCount >= 0 && f.a.pointSize >= 0 && bytes <= (1 << 20) && in.ConsumeIntegralInRange(0, 7) != 0) {
        f.block.reset(new unsigned char[static_cast<std::size_t>(std::max(bytes, 1LL))]);
        const std::vector<unsigned char> data = in.ConsumeBytes<unsigned char>(static_cast<std::size_t>(bytes));
        std::memset(f.block.get(), 0, static_cast<std::size_t>(bytes));
        if (!data.empty()) std::memcpy(f.block.get(), data.data(), data.size());
        f.a.points = f.block.get();
    }
}

int Index(FuzzedDataProvider& in) {
    return in.ConsumeBool() ? in.ConsumeIntegralInRange(-2, 620) : in.ConsumeIntegral<std::int32_t>();
}

template <typename Line>
void ReadAll(FuzzedDataProvider& in, const Line& line, const FuzzArray& f) {
    std::vector<unsigned char> out(static_cast<std::size_t>(std::max(1, +f.a.pointSize)));
    for (int k = 0; k < 8; ++k) {
        const int i = Index(in);
        line.GetTime(i);
        line.GetValue(i);
        line.GetDataPoint(i, out.data());
        line.GetDataPoint(i);
        const QString name = !f.names.empty() && in.ConsumeBool()
                                 ? f.names[in.ConsumeIntegralInRange<std::size_t>(0, f.names.size() - 1)]
                                 : PickName(in);
        line.GetFieldType(name);
        line.GetFieldOffset(name);
        line.ValueByName(name, i);
        const int from = Index(in), to = Index(in);
        line.FindTime(in.ConsumeIntegral<std::int32_t>(), from, to);
        line.FindElement(name, in.ConsumeFloatingPoint<double>(), from, to);
        line.FindMinElement(name, from, to);
        line.FindMaxElement(name, from, to);
    }
    QString text;
    line.GetStringRepresentation(text);
}

// An owned line built from the fuzz input; its header is freed here when the line would not.
void BuildOwned(FuzzedDataProvider& in) {
    fxDataPointArray* header = nullptr;
    bool freed = false;
    {
        CKVDataLine line;
        line.Create();
        header = line.GetHeader();
        const int fields = in.ConsumeIntegralInRange(0, 104);
        for (int i = 0; i < fields; ++i)
            line.InsertDPV(static_cast<DATA_POINT_TYPES>(in.ConsumeIntegral<std::uint8_t>()), PickName(in));
        line.SetName(PickName(in), PickName(in), in.ConsumeIntegral<char>(), in.ConsumeIntegral<int>(),
                     in.ConsumeIntegral<long>());
        line.SetAdditionalName(PickName(in));
        line.SetPrecis(in.ConsumeIntegralInRange(-2, 200));
        std::vector<unsigned char> point(static_cast<std::size_t>(std::max(1, +header->pointSize)));
        const int points = in.ConsumeIntegralInRange(0, 700);
        for (int i = 0; i < points; ++i) {
            point[0] = static_cast<unsigned char>(i);
            if (in.ConsumeIntegralInRange(0, 9) == 0) line.ReplaceData(Index(in), point.data());
            else line.AppendData(point.data());
        }
        if (in.ConsumeBool()) line.ClearData();
        QString text;
        line.GetStringRepresentation(text);
        line.FindMinElement("TIME");
        freed = line.GetCapacity() != 0;
    }
    if (!freed) FreeOwnedHeader(header);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    FuzzArray arrays[3];
    for (FuzzArray& f : arrays) FillArray(in, f);

    CKVDataLine line(&arrays[0].a);
    CKVPFLine pf(&arrays[0].a);
    ReadAll(in, line, arrays[0]);
    ReadAll(in, pf, arrays[0]);
    for (int k = 0; k < 8; ++k) {
        const int i = Index(in);
        pf.GetColCount(i);
        pf.GetStepData(i);
    }
    // A second array on the same lines: the maps keep the first array's names.
    line = &arrays[1].a;
    pf = &arrays[1].a;
    ReadAll(in, line, arrays[1]);
    ReadAll(in, pf, arrays[1]);
    line.Update(&arrays[2].a);
    ReadAll(in, line, arrays[2]);

    BuildOwned(in);

    fxDataPointArray* list[4] = {&arrays[0].a, nullptr, &arrays[1].a, &arrays[2].a};
    coreListCreateData create{in.ConsumeIntegralInRange(-1, 4), in.ConsumeIntegralInRange(0, 7) ? list : nullptr};
    std::vector<fxDataPointArray*> added;
    {
        CKVDataStore store(&create);
        for (int k = in.ConsumeIntegralInRange(0, 3); k > 0; --k) added.push_back(store.AddLine()->GetHeader());
        store.FindLineByName(PickName(in));
        store[in.ConsumeIntegral<unsigned>()];
        store.Update(&create);
        if (in.ConsumeBool()) store.ClearData();
    }
    for (fxDataPointArray* header : added) FreeOwnedHeader(header);
    return 0;
}
