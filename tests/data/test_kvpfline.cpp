// CKVPFLine: the fixed 24-byte column records, the InsertDPV asymmetry, the one-sided margins
// of the extremes and the text form.
#include <gtest/gtest.h>

#include "data/KVPFLine.h"
#include "dpa_arrays.h"

namespace {

HostArray Columns(int precision = 4) {
    return HostArray({{DPT_INT32, "TIME"}, {DPT_FLOAT, "STEP"}, {DPT_FLOAT, "VALUE"}, {DPT_INT32, "TYPE"},
                      {DPT_FLOAT, "END"}, {DPT_FLOAT, "SOLID"}}, precision);
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

TEST(KVPFLine, TextFormPrintsTimeAndValueOnly) {
    HostArray h = Columns(3);
    h.Add({3600, 0.5, 1.25, 1, 2.0, 0});
    QString out;
    CKVPFLine(&h.a).GetStringRepresentation(out);
    EXPECT_EQ(out, "TIME\tVALUE\t\n01/01/70 01:00:00\t1.250\t\n");
}

}  // namespace
