// The wrapper of a Point and Figure, Renko or Kagi array, whose points are 24-byte column
// records (fxChartTypeRecord). Six standard fields "TIME", "STEP", "VALUE", "TYPE", "END",
// "SOLID"; InsertDPV recognises only TIME, VALUE and END, and the text form prints only TIME
// and VALUE. Everything else is the common line.
#pragma once

#include "data/KVLineBase.h"

class CKVPFLine : public CKVLineBase {
public:
    enum Slot { TIME = 0, STEP, VALUE, TYPE, END, SOLID };

    CKVPFLine();
    explicit CKVPFLine(fxDataPointArray* array);
    CKVPFLine& operator=(fxDataPointArray* array);

    float GetValue(int index) const { return GetFloatField(VALUE, index); }

    // Read the block as consecutive 24-byte records whatever the header's point size;
    // 0 for a record outside the block.
    float GetStepData(int index) const;
    // Boxes in column `index`: floor(|VALUE - END| / STEP + 0.5), negative unless TYPE is 1.
    int GetColCount(int index) const;

    // The extremes of the common line with a margin: below the minimum when the box size is
    // under one unit of the last printed digit; above the maximum then too, or by one box on
    // a line named "Point and Figure".
    double FindMinElement(const QString& name, int from = 0, int to = -1) const;
    double FindMaxElement(const QString& name, int from = 0, int to = -1) const;

    static const KVLineFields kFields;

private:
    // Record `index` of the fixed layout, when it lies inside the block.
    bool ReadRecord(int index, fxChartTypeRecord& record) const;
    // The margin for a box size below one unit of the last printed digit; false when the box
    // size is not that small.
    bool SmallBoxMargin(double& margin) const;
};
