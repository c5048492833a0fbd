// The wrapper of a price series array: seven standard fields "TIME", "OPEN", "HIGH", "LOW",
// "CLOSE", "VALUE", "VOLUME", all recognised by InsertDPV and all printed by the text form.
#pragma once

#include "data/KVLineBase.h"

class CKVDataLine : public CKVLineBase {
public:
    enum Slot { TIME = 0, OPEN, HIGH, LOW, CLOSE, VALUE, VOLUME };

    CKVDataLine();
    explicit CKVDataLine(fxDataPointArray* array);
    CKVDataLine& operator=(fxDataPointArray* array);

    // The named field of point `index` read as a 32-bit float whatever its declared type;
    // 0 without a data block, out of range or when the field is absent.
    float GetOpen(int index) const { return GetFloatField(OPEN, index); }
    float GetHigh(int index) const { return GetFloatField(HIGH, index); }
    float GetLow(int index) const { return GetFloatField(LOW, index); }
    float GetClose(int index) const { return GetFloatField(CLOSE, index); }
    float GetValue(int index) const { return GetFloatField(VALUE, index); }
    float GetVolume(int index) const { return GetFloatField(VOLUME, index); }

    static const KVLineFields kFields;
};
