// Data point arrays and the records of the host's data core.
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

// Field types of a data point; only the values, widths and reading rules are fixed.
// The 32-bit underlying type lets a descriptor's type word (any value the host wrote) be held
// in the enumeration without undefined behaviour; values above 6 are not valid.
enum DATA_POINT_TYPES : std::int32_t {
    DPT_UINT8 = 0,   // 1 byte
    DPT_UINT16 = 1,  // 2 bytes
    DPT_INT32 = 2,   // 4 bytes
    DPT_BYTES8 = 3,  // 8 bytes, read by name through its first byte
    DPT_FLOAT = 4,   // 4 bytes, IEEE float
    DPT_DOUBLE = 5,  // 8 bytes, read by name through its first byte
    DPT_NONE = 6     // 0 bytes; also the type of an unknown field
};

// Period of a series: 'I' intraday (length in minutes, 0 = ticks), 'D', 'W', 'M', 'Y'.
struct namePeriod {
    char type;
    std::int32_t length;
};
PF_LAYOUT32(sizeof(namePeriod) == 5);
PF_LAYOUT64(sizeof(namePeriod) == 5);

struct coreNameInstrument {
    coreWChar name[255];       // UTF-16, NUL-terminated
    char secondName[255];      // 8-bit, NUL-terminated
    namePeriod period;
    std::int32_t value;
};
PF_LAYOUT32(sizeof(coreNameInstrument) == 774);
PF_LAYOUT32(offsetof(coreNameInstrument, secondName) == 510);
PF_LAYOUT32(offsetof(coreNameInstrument, period) == 765);
PF_LAYOUT32(offsetof(coreNameInstrument, value) == 770);
PF_LAYOUT64(sizeof(coreNameInstrument) == 774);

// Pen type of a series (word 3 of coreTypeShow); the host defines the values.
enum eCoreTypeShowPen : std::int32_t {};

// Drawing attributes of a series: nine 32-bit words.
struct coreTypeShow {
    std::int32_t color0;       // X boxes, rising bricks, thick Kagi line
    std::int32_t color1;       // O boxes, falling bricks, thin Kagi line
    std::int32_t word2;
    std::int32_t penType;      // eCoreTypeShowPen
    std::int32_t word4;
    std::int32_t penWeight;
    std::int32_t lineShowType;
    float borderValue;
    std::int32_t word8;
};
PF_LAYOUT32(sizeof(coreTypeShow) == 36);
PF_LAYOUT64(sizeof(coreTypeShow) == 36);

struct coreSystemCoord {
    std::int32_t words[3];
};
PF_LAYOUT32(sizeof(coreSystemCoord) == 12);

// One field descriptor; the descriptor array holds at most 100 of them.
struct fxDataPointField {
    std::int32_t type;         // DATA_POINT_TYPES
    char name[255];            // 8-bit, NUL-terminated
};
PF_LAYOUT32(sizeof(fxDataPointField) == 259);
PF_LAYOUT64(sizeof(fxDataPointField) == 259);
enum { FX_MAX_DATA_POINT_FIELDS = 100 };

struct fxDataPointArray {
    coreNameInstrument name;
    void* owner;
    coreTypeShow typeShow;
    fxDataPointField* fields;
    std::int32_t fieldCount;
    std::int32_t precision;
    coreSystemCoord coord;
    std::int32_t pointSize;
    unsigned char* points;     // pointCount x pointSize bytes
    std::int32_t pointCount;
};
PF_LAYOUT32(sizeof(fxDataPointArray) == 850);
PF_LAYOUT32(offsetof(fxDataPointArray, owner) == 774);
PF_LAYOUT32(offsetof(fxDataPointArray, typeShow) == 778);
PF_LAYOUT32(offsetof(fxDataPointArray, fields) == 814);
PF_LAYOUT32(offsetof(fxDataPointArray, fieldCount) == 818);
PF_LAYOUT32(offsetof(fxDataPointArray, precision) == 822);
PF_LAYOUT32(offsetof(fxDataPointArray, coord) == 826);
PF_LAYOUT32(offsetof(fxDataPointArray, pointSize) == 838);
PF_LAYOUT32(offsetof(fxDataPointArray, points) == 842);
PF_LAYOUT32(offsetof(fxDataPointArray, pointCount) == 846);
PF_LAYOUT64(sizeof(fxDataPointArray) == 862);

struct coreListCreateData {
    std::int32_t count;
    fxDataPointArray** arrays;
};
PF_LAYOUT32(sizeof(coreListCreateData) == 8);
PF_LAYOUT64(sizeof(coreListCreateData) == 12);

// The host's description of a work-data node: two document handles and the node handle,
// each kept as a 32-bit word.
struct coreSzNode {
    std::uint32_t document;
    std::uint32_t document2;
    std::uint32_t node;
};
PF_LAYOUT32(sizeof(coreSzNode) == 12);
PF_LAYOUT64(sizeof(coreSzNode) == 12);

// The 24-byte record of one Point and Figure column, Renko brick or Kagi stroke.
struct fxChartTypeRecord {
    std::int32_t time;         // TIME: seconds since 1970, UTC
    float step;                // STEP: box size
    float value;               // VALUE
    std::int32_t type;         // TYPE
    float end;                 // END
    float solid;               // SOLID (Kagi: the level where the line changes thickness)
};
PF_LAYOUT32(sizeof(fxChartTypeRecord) == 24);
PF_LAYOUT64(sizeof(fxChartTypeRecord) == 24);

// Message 3008: create a computed data object; the host writes its handle into `handle`.
struct coreCreateDpaData {
    void* provider;
    coreNameInstrument name;
    void* handle;
    std::int32_t zero1;
    std::int32_t value;
    std::int32_t zero2;
    coreSzNode node;
};
PF_LAYOUT32(sizeof(coreCreateDpaData) == 806);
PF_LAYOUT32(offsetof(coreCreateDpaData, name) == 4);
PF_LAYOUT32(offsetof(coreCreateDpaData, handle) == 778);
PF_LAYOUT32(offsetof(coreCreateDpaData, zero1) == 782);
PF_LAYOUT32(offsetof(coreCreateDpaData, value) == 786);
PF_LAYOUT32(offsetof(coreCreateDpaData, zero2) == 790);
PF_LAYOUT32(offsetof(coreCreateDpaData, node) == 794);
PF_LAYOUT64(sizeof(coreCreateDpaData) == 814);

// Message 3009 to a chart type interface: new data for a subscribed object.
// Laid out like the create record.
struct coreCoreUpdateDpaData {
    void* provider;
    coreNameInstrument name;
    void* handle;              // the data object that changed
    void* subscriber;          // the chart widget that subscribed
    std::int32_t reference;
    std::int32_t zero2;
    coreSzNode node;
};
PF_LAYOUT32(sizeof(coreCoreUpdateDpaData) == 806);
PF_LAYOUT32(offsetof(coreCoreUpdateDpaData, handle) == 778);
PF_LAYOUT32(offsetof(coreCoreUpdateDpaData, subscriber) == 782);
PF_LAYOUT32(offsetof(coreCoreUpdateDpaData, reference) == 786);
PF_LAYOUT64(sizeof(coreCoreUpdateDpaData) == 818);

// Messages 3013 and 3014: subscription to a data object's updates.
struct coreDpaSubscription {
    void* first;
    void* subscriber;
};
PF_LAYOUT32(sizeof(coreDpaSubscription) == 8);
PF_LAYOUT64(sizeof(coreDpaSubscription) == 16);

#pragma pack(pop)
