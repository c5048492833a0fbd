// Data point arrays: CKVDataLine over owned arrays (Create/InsertDPV/AppendData) and
// borrowed host arrays, including hostile headers; CKVTime; CKVPFLine's fixed 24-byte
// column records, InsertDPV asymmetry, one-sided margins and text form; CKVDataStore's
// borrowing of the host's list and hand-over of new owned lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "data/KVDataStore.h"
#include "data/KVDataLine.h"
#include "data/KVPFLine.h"
#include "data/KVTime.h"
#include "dpa_arrays.h"

namespace {

const unsigned char* Bytes(const void* p) { return static_cast<const unsigned char*>(p); }

HostArray Columns(int precision = 4) {
    return HostArray({{DPT_INT32, "TIME"}, {DPT_FLOAT, "STEP"}, {DPT_FLOAT, "VALUE"}, {DPT_INT32, "TYPE"},
                      {DPT_FLOAT, "END"}, {DPT_FLOAT, "SOLID"}}, precision);
}

}  // namespace

TEST(KVDataLine, OwnedLineLayoutGrowthNamesAndRelease) {
    fxDataPointArray* header = nullptr;
    {
        CKVDataLine line;
        line.Create();
        header = line.GetHeader();
        EXPECT_EQ(line.InsertDPV(DPT_INT32, "TIME") + line.InsertDPV(DPT_FLOAT, "CLOSE"), 8);
        EXPECT_EQ(line.GetNamedOffset(CKVDataLine::CLOSE), 4);
        EXPECT_EQ(line.GetNamedOffset(CKVDataLine::OPEN), -1);
        EXPECT_EQ(line.GetFieldType("CLOSE"), DPT_NONE);  // InsertDPV does not fill the maps
        EXPECT_EQ(line.GetFieldOffset("CLOSE"), -1);
        int capacityAt300 = 0;
        for (std::int32_t i = 0; i < 301; ++i) {
            const std::int32_t p[2] = {10 * i, 0};
            line.AppendData(Bytes(p));
            if (i == 299) capacityAt300 = line.GetCapacity();
        }
        EXPECT_EQ(std::make_pair(capacityAt300, line.GetCapacity()), std::make_pair(300, 600));
        EXPECT_EQ(line.GetTime(300), 3000);
        const float q[2] = {0, 2.5f};
        line.ReplaceData(301, Bytes(q));  // ignored
        line.ReplaceData(300, Bytes(q));
        EXPECT_EQ(line.GetClose(300), 2.5f);
        line.ClearData();
        EXPECT_EQ(+header->points, nullptr);
        EXPECT_EQ(+header->pointSize, 8);  // the fields stay
        line.AppendData(Bytes(q));
    }  // a data block was allocated: the line frees the header
    {
        CKVDataLine line;
        line.Create();
        header = line.GetHeader();
        EXPECT_EQ(line.FindTime(0), 0);  // no data block
        line.InsertDPV(DPT_UINT8, QString(300, QChar('n')));  // the name is cut at its field
        for (int i = 1; i <= 100; ++i) line.InsertDPV(DPT_UINT8, QString("F%1").arg(i));
        EXPECT_EQ(+header->fieldCount, 101);  // counted past the 100 descriptors that exist
        EXPECT_EQ(std::strlen(header->fields[0].name), 254u);
        EXPECT_STREQ(header->fields[99].name, "F99");
        line.Create(header);
        EXPECT_EQ(line.GetFieldOffset("F99"), 99);
        EXPECT_EQ(line.GetFieldOffset("F100"), -1);

        line.SetName(QString(300, QChar('a')), QString(300, QChar('b')), 'I', 5, 77);
        EXPECT_EQ(line.GetName(), QString(254, QChar('a')));
        EXPECT_EQ(std::strlen(header->name.secondName), 254u);
        EXPECT_EQ(+header->name.value, 77);
        line.SetName(QString(253, QChar('a')) + QString::fromUtf16(u"\U0001F600"), "", 'D', 1, 0);
        EXPECT_EQ(line.GetName(), QString(253, QChar('a')));  // a surrogate pair is not split
        line.SetName("EURUSD", "", 'D', 1, 0);
        line.SetAdditionalName("RSI");
        EXPECT_EQ(line.GetName(), "EURUSD RSI");
        line.SetAdditionalName(QString(400, QChar('z')));
        EXPECT_EQ(line.GetName().size(), 254);
        line.SetLineColor(0x123456);
        EXPECT_EQ(+header->typeShow.color1, 0x123456);
    }  // capacity 0: nothing is freed
    FreeOwnedHeader(header);

    CKVDataLine none;
    none.SetPrecis(3);  // no header: nothing happens
}

TEST(KVDataLine, BorrowedLayoutMapsAndUpdate) {
    HostArray first({{DPT_INT32, "TIME"}, {DPT_FLOAT, "OPEN"}, {DPT_UINT16, "N"}, {DPT_FLOAT, "N"}});
    first.Add({100, 1.25, 7, 3.5});
    CKVDataLine line(&first.a);
    EXPECT_EQ(line.GetFieldOffset("N"), 10);  // a repeated name keeps the later field
    EXPECT_EQ(line.GetFieldType("N"), DPT_FLOAT);
    EXPECT_EQ(std::memcmp(&line.GetHeaderCopy(), &first.a, sizeof first.a), 0);

    HostArray second({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}});
    second.Add({1, 2});
    line = &second.a;
    EXPECT_EQ(line.GetNamedOffset(CKVDataLine::OPEN), 4);  // left in the maps by the first array
    EXPECT_EQ(line.GetNamedOffset(CKVDataLine::CLOSE), 4);

    for (int i = 1; i < 10; ++i) second.Add({double(i + 1), 0});
    EXPECT_EQ(line.Update(&second.a), 10);
    second.Add({11, 0}).Add({12, 0});
    EXPECT_EQ(line.Update(&second.a), 2);
    second.a.pointCount = 5;
    EXPECT_EQ(line.Update(&second.a), -7);
}

TEST(KVDataLine, ReadsByNameAndSearches) {
    HostArray h({{DPT_INT32, "TIME"}, {DPT_DOUBLE, "D"}, {DPT_BYTES8, "B"}, {DPT_UINT16, "S"}, {DPT_FLOAT, "F"}});
    h.Add({10, 1.0, 258, 65535, 3}).Add({20, 2.0, 1, 1, 1}).Add({30, 3.0, 1, 2, 1});
    CKVDataLine line(&h.a);
    EXPECT_EQ(line.ValueByName("D", 0), 0.0);  // the double 1.0 through its first byte
    EXPECT_EQ(line.ValueByName("B", 0), 2.0);
    EXPECT_EQ(line.ValueByName("S", 0), 65535.0);
    EXPECT_EQ(line.ValueByName("S", 3), 0.0);  // past the block

    EXPECT_EQ(line.FindTime(15), -1);
    EXPECT_EQ(line.FindTime(20), 1);
    EXPECT_EQ(line.FindTime(10, 5), -1);    // from limited to the last point
    EXPECT_EQ(line.FindTime(30, 2, 0), 2);  // to below start: the single point start
    EXPECT_EQ(line.FindElement("F", 1, 0, 99), 1);
    EXPECT_EQ(line.FindElement("x", 1), -1);

    EXPECT_EQ(line.FindMinElement("F"), 1.0);  // 3, 1, 1
    EXPECT_EQ(line.FindMaxElement("S", 1, 1), 1.0);
    EXPECT_EQ(line.FindMinElement("F", 7), 1.0);
    EXPECT_EQ(line.FindMinElement("x"), 0.0);
    EXPECT_EQ(line.FindMaxElement("F", 0, -5), CKVLineBase::kMaxSentinel);  // nothing inside the block

    h.a.pointCount = 0;
    EXPECT_EQ(line.FindTime(10), -1);
    EXPECT_EQ(line.FindMinElement("F"), CKVLineBase::kMinSentinel);
}

TEST(KVDataLine, TextFormsOfDataAndColumnLines) {
    HostArray h({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}}, 2);
    h.Add({0, 1.5});
    QString out = "x";
    CKVDataLine(&h.a).GetStringRepresentation(out);
    EXPECT_EQ(out, "xTIME\tCLOSE\t\n01/01/70 00:00:00\t1.50\t\n");

    HostArray all({{DPT_INT32, "TIME"}, {DPT_FLOAT, "HIGH"}, {DPT_FLOAT, "LOW"}, {DPT_FLOAT, "CLOSE"},
                   {DPT_FLOAT, "VALUE"}, {DPT_FLOAT, "VOLUME"}, {DPT_FLOAT, "X"}, {DPT_UINT8, "OPEN"}}, -3);
    all.Add({-1, 3, 4, 5, 6, 7, 9, 2}).Add({86399 + 86400 * 365, 1, 1, 1, 1, 1, 1, 1});
    out.clear();
    CKVDataLine(&all.a).GetStringRepresentation(out);
    // A negative precision prints no decimals; OPEN, a 1-byte field read as 4, reaches past the point.
    EXPECT_EQ(out, "TIME\tOPEN\tHIGH\tLOW\tCLOSE\tVALUE\tVOLUME\t\n"
                   "\t0\t3\t4\t5\t6\t7\t\n"
                   "01/01/71 23:59:59\t0\t1\t1\t1\t1\t1\t\n");
    // A column line prints TIME and VALUE only.
    HostArray columns = Columns(3);
    columns.Add({3600, 0.5, 1.25, 1, 2.0, 0});
    out.clear();
    CKVPFLine(&columns.a).GetStringRepresentation(out);
    EXPECT_EQ(out, "TIME\tVALUE\t\n01/01/70 01:00:00\t1.250\t\n");
}

TEST(KVDataLine, HostileHeadersAreReadSafely) {
    HostArray h({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}});
    h.Add({10, 1}).Add({20, 2});
    std::memset(h.fields[1].name, 'C', sizeof h.fields[1].name);  // no terminator
    h.a.fieldCount = 1000;
    CKVDataLine line(&h.a);
    EXPECT_EQ(line.GetFieldOffset(QString(255, QChar('C'))), 4);
    h.a.fieldCount = -4;
    line = &h.a;
    h.a.fieldCount = 3;
    h.a.fields = nullptr;
    line = &h.a;

    h.a.pointSize = 2;  // TIME no longer lies inside the point
    EXPECT_EQ(line.GetTime(0), 0);
    EXPECT_EQ(line.FindTime(10), 0);
    h.a.pointSize = -8;
    EXPECT_EQ(line.GetDataPoint(0), nullptr);
    EXPECT_EQ(line.AllocateMemory(1), nullptr);
    h.a.pointSize = 8;
    h.a.points = nullptr;
    h.a.pointCount = 1 << 30;
    EXPECT_EQ(line.FindElement("TIME", 10), 0);
    QString out;
    line.GetStringRepresentation(out);
    EXPECT_TRUE(out.isEmpty());
    // A borrowed block is neither written past its points nor freed.
    h.a.points = h.block.data();
    h.a.pointCount = 2;
    line.AppendData(h.block.data());
    EXPECT_EQ(+h.a.pointCount, 2);
    line.ClearData();
}

TEST(KVTime, SharedBufferAndNegativeTimes) {
    CKVTime a(86400 + 3661), b(-1);
    const char* first = a.Format("%d/%m/%y %H:%M:%S");
    EXPECT_STREQ(first, "02/01/70 01:01:01");
    EXPECT_EQ(b.Format("%Y"), first);  // one buffer for every instance
    EXPECT_STREQ(first, "");
    EXPECT_STREQ(a.Format(std::string(120, 'x')), "");  // more than 99 characters
}

TEST(KVPFLine, ColumnCountsOnTheFixedStride) {
    HostArray h = Columns();
    h.Add({0, 0.0010, 1.2000, 1, 1.2050, 0}).Add({60, 0.0010, 1.2050, 0, 1.2000, 0});
    h.Add({120, 1.0, 0.0, 1, 2.5, 0}).Add({180, 0, 1, 1, 2, 0}).Add({240, 0, 1, 1, 1, 0});
    CKVPFLine line(&h.a);
    const int counts[] = {5, -5, 3, INT_MAX, 0, 0};  // 2.5 rounds up; box 0: endless, 0/0 counts 0
    for (int i = 0; i < 6; ++i) EXPECT_EQ(line.GetColCount(i), counts[i]) << i;
    // The stride stays 24 bytes whatever the header says; a record past the block is not read.
    h.a.pointSize = 12;
    EXPECT_FLOAT_EQ(line.GetStepData(1), 0.0010f);
    EXPECT_EQ(line.GetStepData(2), 0.0f);
}

TEST(KVPFLine, NamedOffsetsFromInsertAndFromCreate) {
    HostArray h = Columns();
    fxDataPointArray* header = nullptr;
    {
        CKVPFLine line;
        line.Create();
        header = line.GetHeader();
        for (int i = 0; i < h.a.fieldCount; ++i)
            line.InsertDPV(static_cast<DATA_POINT_TYPES>(+h.fields[i].type), h.fields[i].name);
        const int inserted[] = {0, -1, 8, -1, 16, -1};
        for (int slot = 0; slot < 6; ++slot) EXPECT_EQ(line.GetNamedOffset(slot), inserted[slot]) << slot;
        EXPECT_EQ(+header->pointSize, 24);
        line = &h.a;
        for (int slot = 0; slot < 6; ++slot) EXPECT_EQ(line.GetNamedOffset(slot), 4 * slot) << slot;
        EXPECT_EQ(line.GetNamedOffset(6), -1);  // six slots only
    }
    FreeOwnedHeader(header);
}

TEST(KVPFLine, MarginsOfTheExtremes) {
    HostArray h = Columns(4);
    h.Add({0, 0.0005, 1.1, 1, 1.2, 0}).Add({60, 0.0005, 1.2, 0, 1.1, 0});
    CKVPFLine line(&h.a);
    EXPECT_NEAR(line.FindMaxElement("VALUE"), 1.2, 1e-6);  // not named "Point and Figure"
    h.Name(u"Point and Figure");
    EXPECT_NEAR(line.FindMaxElement("VALUE"), 1.2005, 1e-6);
    EXPECT_NEAR(line.FindMinElement("VALUE"), 1.1, 1e-6);   // no box below the minimum

    // Box size under one unit of the last printed digit: 0.001 intraday, 0.01 otherwise.
    const float small = 0.00005f;
    for (int r = 0; r < 2; ++r) std::memcpy(h.block.data() + 24 * r + 4, &small, 4);
    h.a.name.period.type = 'I';
    EXPECT_NEAR(line.FindMinElement("VALUE"), 1.1 - 0.001, 1e-6);
    EXPECT_NEAR(line.FindMaxElement("VALUE"), 1.2 + 0.001, 1e-6);
    h.a.name.period.type = 'D';
    EXPECT_NEAR(line.FindMinElement("VALUE"), 1.1 - 0.01, 1e-6);
    EXPECT_NEAR(line.FindMaxElement("VALUE"), 1.2 + 0.01, 1e-6);
    // The margin applies to the neutral 0 of an unknown field too.
    EXPECT_NEAR(line.FindMaxElement("nope"), 0.01, 1e-9);
}

TEST(KVDataStore, AddLineHandsTheHeaderToTheStoredCopy) {
    std::vector<fxDataPointArray*> empty(2);
    {
        CKVDataStore store;
        empty[0] = store.AddLine()->GetHeader();
        empty[1] = store.AddLine()->GetHeader();
        ASSERT_EQ(store.GetCount(), 2);
        EXPECT_TRUE(store[0]->IsOwner());
        EXPECT_TRUE(std::equal(empty.begin(), empty.end(), store.GetArrays()));
        EXPECT_EQ(store[2], nullptr);

        // A line with data survives the vector growing under it and is freed once, by the store.
        CKVDataLine* filled = store.AddLine();
        filled->InsertDPV(DPT_INT32, "TIME");
        const std::int32_t t = 42;
        filled->AppendData(reinterpret_cast<const unsigned char*>(&t));
        for (int i = 0; i < 8; ++i) empty.push_back(store.AddLine()->GetHeader());
        EXPECT_EQ(store[2]->GetTime(0), 42);
        store[2]->SetName("EURUSD", "", 'D', 1, 0);
        EXPECT_EQ(store.FindLineByName("EURUSD"), store[2]);
        EXPECT_EQ(store.FindLineByName("eurusd"), nullptr);
    }  // only the line with a data block frees its header
    for (fxDataPointArray* header : empty) FreeOwnedHeader(header);
}

TEST(KVDataStore, BorrowsTheHostListAndUpdatesByIndex) {
    HostArray a({{DPT_INT32, "TIME"}, {DPT_FLOAT, "CLOSE"}});
    HostArray b({{DPT_INT32, "TIME"}});
    a.Add({1, 1});
    b.Add({5});
    b.Name(u"GBPUSD");
    fxDataPointArray* arrays[3] = {&a.a, nullptr, &b.a};
    coreListCreateData list{3, arrays};
    CKVDataStore store(&list);
    ASSERT_EQ(store.GetCount(), 3);
    EXPECT_FALSE(store.OwnsArrays());
    EXPECT_EQ(store[1]->GetHeader(), nullptr);  // a null entry gives an empty line
    EXPECT_EQ(store.FindLineByName("GBPUSD"), store[2]);

    a.Add({2, 2});
    fxDataPointArray* longer[5] = {&a.a, &b.a, &b.a, &b.a, &b.a};
    coreListCreateData update{5, longer};
    store.Update(&update);  // updates the three lines that exist, no more
    EXPECT_EQ(store[1]->GetHeader(), &b.a);
    EXPECT_EQ(store[1]->GetTime(0), 0);  // Update takes the array but does not learn its layout
    EXPECT_EQ(store[0]->GetPrevCount(), 2);

    fxDataPointArray* header = store.AddLine()->GetHeader();  // the host's pointer array is not freed
    EXPECT_TRUE(store.OwnsArrays());
    EXPECT_EQ(store.GetArrays()[2], &b.a);
    store.ClearData();  // borrowed blocks are let go, not freed
    EXPECT_EQ(+a.a.pointCount, 0);

    coreListCreateData broken{4, nullptr};
    store.Create(&broken);
    EXPECT_EQ(store[0], nullptr);
    FreeOwnedHeader(header);
}
