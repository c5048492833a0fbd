#include "data/KVDataLine.h"

const KVLineFields CKVDataLine::kFields = {
    7, {"TIME", "OPEN", "HIGH", "LOW", "CLOSE", "VALUE", "VOLUME"}, 0x7F, 0x7F};

CKVDataLine::CKVDataLine() : CKVLineBase(kFields) {}

CKVDataLine::CKVDataLine(fxDataPointArray* array) : CKVLineBase(kFields) { Create(array); }

CKVDataLine& CKVDataLine::operator=(fxDataPointArray* array) {
    Create(array);
    return *this;
}
