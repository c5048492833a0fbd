// CKVDataLine over owned arrays (Create/InsertDPV/AppendData) and borrowed host arrays,
// including hostile headers, and CKVTime.
#include <gtest/gtest.h>

#include <cstring>

#include "data/KVDataLine.h"
#include "data/KVTime.h"
#include "dpa_arrays.h"

namespace {

struct TimeClose {
    std::int32_t time;
    float close;
};

TEST(KVDataLine, OwnedLineLayoutGrowthAndClear) {
    fxDataPointArray* header = nullptr;
    {
        CKVDataLine line;
        line.Create();
        header = line.GetHeader();
        EXPECT_EQ(line.InsertDPV(DPT_INT32, "TIME"), 4);
        EXPECT_EQ(line.InsertDPV(DPT_FLOAT, "CLOSE"), 4);
        EXPECT_EQ(+header->pointSize, 8);
        EXPECT_EQ(line.GetNamedOffset(CKVDataLine::TIME), 0);
        EXPECT_EQ(line.GetNamedOffset(CKVDataLine::CLOSE), 4);
        EXPECT_EQ(line.GetNamedOffset(CKVDataLine::OPEN), -1);
        // InsertDPV does not fill the maps.
        EXPECT_EQ(line.GetFieldType("CLOSE"), DPT_NONE);
        EXPECT_EQ(line.GetFieldOffset("CLOSE"), -1);

        for (int i = 0; i < 301; ++i) {
            const TimeClose p{10 * i, 0.5f * i};
            line.AppendData(reinterpret_cast<const unsigned char*>(&p));
            if (i == 0) {
                EXPECT_EQ(line.GetCapacity(), 300);
            }
        }
        EXPECT_EQ(line.GetCapacity(), 600);
        EXPECT_EQ(line.Size(), 301);
        EXPECT_EQ(line.GetTime(300), 3000);
        EXPECT_FLOAT_EQ(line.GetClose(300), 150.0f);
        const TimeClose q{7, 2.5f};
        line.ReplaceData(1, reinterpret_cast<const unsigned char*>(&q));
        line.ReplaceData(301, reinterpret_cast<const unsigned char*>(&q));  // ignored
        TimeClose back{};
        EXPECT_TRUE(line.GetDataPoint(1, &back));
        EXPECT_EQ(back.time, 7);
        EXPECT_FALSE(line.GetDataPoint(301, &back));
        EXPECT_FALSE(line.GetDataPoint(0, nullptr));
        EXPECT_EQ(line.GetDataPoint(-1), nullptr);
        EXPECT_EQ(line.GetOpen(0), 0.0f);  // absent field

        line.ClearData();
        EXPECT_EQ(+header->points, nullptr);
        EXPECT_EQ(line.GetCapacity(), 0);
        EXPECT_EQ(+header->pointSize, 8);  // fields stay
        line.AppendData(reinterpret_cast<const unsigned char*>(&q));
        EXPECT_EQ(line.GetCapacity(), 300);
    }  // the line frees the header: a data block was allocated
    {
        CKVDataLine line;
        line.Create();
        header = line.GetHeader();
        EXPECT_EQ(line.FindTime(0), 0);  // no data block
    }  // capacity 0: nothing freed
    FreeOwnedHeader(header);
}

TEST(KVDataLine, DescriptorCountGrowsPastTheArray) {
    CKVDataLine line;
    line.Create();
    fxDataPointArray* header = line.GetHeader();
    for (int i = 0; i < 101; ++i) line.InsertDPV(DPT_UINT8, QString("F%1").arg(i));
    EXPECT_EQ(+header->fieldCount, 101);
    EXPECT_EQ(+header->pointSize, 101);
    EXPECT_STREQ(header->fields[99].name, "F99");
    // Reading its own header back walks only the 100 descriptors that exist.
    line.Create(header);
    EXPECT_EQ(line.GetFieldOffset("F99"), 99);
    EXPECT_EQ(line.GetFieldOffset("F100"), -1);
    FreeOwnedHeader(header);
}

TEST(KVDataLine, BorrowedLayoutMapsAndUpdate) {
    HostArray first({{DPT_INT32, "TIME"}, {DPT_FLOAT, "OPEN"}, {DPT_UINT16, "N"}, {DPT_FLOAT, "N"}});
    first.Add({100, 1.25, 7, 3.5});
    CKVDataLine line(&first.a);
    EXPECT_EQ(line.GetFieldOffset("N"), 10);  // a repeated name keeps the later field
    EXPECT_EQ(line.GetFieldType("N"), DPT_FLOAT);
    EXPECT_EQ(line.GetFieldType("nope"), DPT_NONE);
    EXPECT_EQ(std::memcmp(&line.GetHeaderCopy(), &first.a, sizeof first.a), 0);
    EXPECT_FALSE(line.IsOwner());

    // The maps keep the first array's names: OPEN comes back at its old offset.
    HostArray second({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}});
    second.Add({1, 2});
    line = &second.a;
    EXPECT_EQ(line.GetNamedOffset(CKVDataLine::OPEN), 4);
    EXPECT_EQ(line.GetNamedOffset(CKVDataLine::CLOSE), 4);

    for (int i = 1; i < 10; ++i) second.Add({double(i + 1), 0});
    EXPECT_EQ(line.Update(&second.a), 10);
    second.Add({11, 0}).Add({12, 0});
    EXPECT_EQ(line.Update(&second.a), 2);
    second.a.pointCount = 5;
    EXPECT_EQ(line.Update(&second.a), -7);
    EXPECT_EQ(line.Update(nullptr), 0);
}

TEST(KVDataLine, ReadsByNameAndSearches) {
    HostArray h({{DPT_INT32, "TIME"}, {DPT_DOUBLE, "D"}, {DPT_BYTES8, "B"}, {DPT_UINT16, "S"}, {DPT_FLOAT, "F"}});
    h.Add({10, 1.0, 258, 65535, 3}).Add({20, 2.0, 1, 1, 1}).Add({30, 3.0, 1, 2, 1});
    CKVDataLine line(&h.a);
    EXPECT_EQ(line.ValueByName("D", 0), 0.0);    // the double 1.0 through its first byte
    EXPECT_EQ(line.ValueByName("B", 0), 2.0);    // 258 through its first byte
    EXPECT_EQ(line.ValueByName("S", 0), 65535.0);
    EXPECT_EQ(line.ValueByName("S", 3), 0.0);    // past the block
    EXPECT_EQ(line.ValueByName("x", 0), 0.0);

    EXPECT_EQ(line.FindTime(15), -1);
    EXPECT_EQ(line.FindTime(20), 1);
    EXPECT_EQ(line.FindTime(10, 5), -1);         // from limited to the last point
    EXPECT_EQ(line.FindTime(30, 2, 0), 2);       // to below start: the single point start
    EXPECT_EQ(line.FindTime(30, 0, 1), -1);
    EXPECT_EQ(line.FindElement("F", 1, 0, 99), 1);
    EXPECT_EQ(line.FindElement("x", 1), -1);

    EXPECT_EQ(line.FindMinElement("F"), 1.0);    // 3, 1, 1
    EXPECT_EQ(line.FindMaxElement("F"), 3.0);
    EXPECT_EQ(line.FindMinElement("F", 0, 0), 3.0);
    EXPECT_EQ(line.FindMaxElement("S", 1, 1), 1.0);
    EXPECT_EQ(line.FindMinElement("F", 7, -1), 1.0);  // from limited to the end
    EXPECT_EQ(line.FindMinElement("x"), 0.0);
    // A range wholly outside the block folds nothing.
    EXPECT_EQ(line.FindMinElement("F", 0, -5), CKVLineBase::kMinSentinel);
    EXPECT_EQ(line.FindMaxElement("F", 0, -5), CKVLineBase::kMaxSentinel);

    h.a.pointCount = 0;  // a block with no points: the range is empty
    EXPECT_EQ(line.FindTime(10), -1);
    EXPECT_EQ(line.FindElement("F", 1), -1);
    EXPECT_EQ(line.FindMinElement("F"), CKVLineBase::kMinSentinel);
}

TEST(KVDataLine, TextForm) {
    HostArray h({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}}, 2);
    h.Add({0, 1.5});
    CKVDataLine line(&h.a);
    QString out = "x";
    line.GetStringRepresentation(out);
    EXPECT_EQ(out, "xTIME\tCLOSE\t\n01/01/70 00:00:00\t1.50\t\n");

    HostArray all({{DPT_INT32, "TIME"}, {DPT_FLOAT, "HIGH"}, {DPT_FLOAT, "LOW"}, {DPT_FLOAT, "CLOSE"},
                   {DPT_FLOAT, "VALUE"}, {DPT_FLOAT, "VOLUME"}, {DPT_FLOAT, "X"}, {DPT_UINT8, "OPEN"}}, 0);
    all.Add({-1, 3, 4, 5, 6, 7, 9, 2}).Add({86399 + 86400 * 365, 1, 1, 1, 1, 1, 1, 1});
    all.a.precision = -3;  // no decimals rather than a broken format
    out.clear();
    CKVDataLine(&all.a).GetStringRepresentation(out);
    // OPEN is a 1-byte field read as a float: its 4 bytes reach past the point, so it reads 0.
    EXPECT_EQ(out, "TIME\tOPEN\tHIGH\tLOW\tCLOSE\tVALUE\tVOLUME\t\n"
                   "\t0\t3\t4\t5\t6\t7\t\n"
                   "01/01/71 23:59:59\t0\t1\t1\t1\t1\t1\t\n");

    all.a.points = nullptr;
    out.clear();
    CKVDataLine(&all.a).GetStringRepresentation(out);
    EXPECT_TRUE(out.isEmpty());
}

TEST(KVDataLine, SettersCutNamesAtTheField) {
    fxDataPointArray* header = nullptr;
    {
        CKVDataLine line;
        line.SetPrecis(3);  // no header: nothing happens
        line.SetName(nullptr);
        line.Create();
        header = line.GetHeader();
        line.InsertDPV(DPT_UINT8, QString(300, QChar('n')));  // cut at 254 bytes, not overflowed
        EXPECT_EQ(std::strlen(header->fields[0].name), 254u);
        line.SetName(QString(300, QChar('a')), QString(300, QChar('b')), 'I', 5, 77);
        EXPECT_EQ(line.GetName(), QString(254, QChar('a')));
        EXPECT_EQ(std::strlen(header->name.secondName), 254u);
        EXPECT_EQ(+header->name.period.type, 'I');
        EXPECT_EQ(+header->name.period.length, 5);
        EXPECT_EQ(+header->name.value, 77);
        line.SetName(QString(253, QChar('a')) + QString::fromUtf16(u"\U0001F600"), "", 'D', 1, 0);
        EXPECT_EQ(line.GetName(), QString(253, QChar('a')));  // the pair is not split
        line.SetName("EURUSD", "", 'D', 1, 0);
        line.SetAdditionalName("RSI");
        EXPECT_EQ(line.GetName(), "EURUSD RSI");
        line.SetAdditionalName(QString(400, QChar('z')));
        EXPECT_EQ(line.GetName().size(), 254);
        line.SetLineColor(0x123456);
        EXPECT_EQ(+header->typeShow.color0, 0x123456);
        EXPECT_EQ(+header->typeShow.color1, 0x123456);
        line.SetBorderValue(1.5f);
        EXPECT_EQ(+header->typeShow.borderValue, 1.5f);
    }
    FreeOwnedHeader(header);
}

TEST(KVDataLine, HostileHeadersAreReadSafely) {
    HostArray h({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}});
    h.Add({10, 1}).Add({20, 2});
    std::memset(h.fields[1].name, 'C', sizeof h.fields[1].name);  // no terminator
    h.a.fieldCount = 1000;                                         // more than the array holds
    CKVDataLine line(&h.a);
    EXPECT_EQ(line.GetFieldOffset(QString(255, QChar('C'))), 4);

    h.a.fieldCount = -4;
    line = &h.a;
    h.a.fieldCount = 3;
    h.a.fields = nullptr;
    line = &h.a;  // walks nothing

    h.a.pointSize = 2;  // TIME no longer lies inside the point
    EXPECT_EQ(line.GetTime(0), 0);
    EXPECT_EQ(line.FindTime(10), 0);
    EXPECT_EQ(line.ValueByName(QString(255, QChar('C')), 0), 0.0);
    for (int size : {0, -8}) {
        h.a.pointSize = size;
        EXPECT_EQ(line.GetDataPoint(0), nullptr);
        EXPECT_EQ(line.FindMaxElement("TIME"), 0.0);
    }
    EXPECT_EQ(line.AllocateMemory(1), nullptr);  // a negative point size allocates nothing
    h.a.pointSize = 8;
    h.a.points = nullptr;
    h.a.pointCount = 1 << 30;
    EXPECT_EQ(line.GetTime(5), 0);
    EXPECT_EQ(line.FindElement("TIME", 10), 0);
    QString out;
    line.GetStringRepresentation(out);
    EXPECT_TRUE(out.isEmpty());
    // A borrowed block is never written past its points, nor freed.
    h.a.points = h.block.data();
    h.a.pointCount = 2;
    const TimeClose p{1, 1};
    line.AppendData(reinterpret_cast<const unsigned char*>(&p));
    EXPECT_EQ(+h.a.pointCount, 2);
    line.ClearData();
    EXPECT_EQ(+h.a.points, nullptr);
}

TEST(KVTime, SharedBufferAndNegativeTimes) {
    CKVTime a(86400 + 3661), b(-1);
    const char* first = a.Format("%d/%m/%y %H:%M:%S");
    EXPECT_STREQ(first, "02/01/70 01:01:01");
    EXPECT_EQ(b.Format("%Y"), first);  // one buffer for every instance
    EXPECT_STREQ(first, "");
    EXPECT_STREQ(a.Format(std::string(120, 'x')), "");  // does not fit in 99 characters
    EXPECT_GT(CKVTime().GetTime(), 1600000000);
}

}  // namespace
