// Records of the line-study protocol: a line study (trend line, text, arc, channel, ...)
// is an object of the host's line-study provider. The module creates it, sends the control
// points the user places, and draws the control points and shapes the host hands back.
//
// Who allocates what:
//  - lsControlPointsShapes and every array it points to (input points, output points,
//    shapes, and each shape's data block) belong to the module. The host fills them in
//    place and never keeps a pointer to them after a message returns.
//  - The sizes of the shape data blocks come from the host (message 4505) before the
//    module allocates them; the host must not write more than it reported.
//
// Messages (module -> line-study provider unless said otherwise):
//   4500 LS_CREATE_OBJECT      p1 lsCreateObject*, p2 0; the host fills id and counts
//   4501 delete study          p1 study id, p2 0
//   4505 shape sizes           p1 study id, p2 int32_t[shape count]
//   4510 control points        p1 study id, p2 lsControlPointsShapes*
//   4511 study properties      p1 study id, p2 0 (after 10041 to the main GUI)
//   4516 study title           p1 study id, p2 coreWChar[LS_TITLE_CHARS]
//   4517 focus                 p1 lsFocusRecord*, p2 0
//   3068 attach (data core)    p1 line data id, p2 lsAttachRecord*
//   3071 detach (data core)    p1 line data id, p2 study id
//   3500 drawing mode (main)   p1 lsDrawingMode*; answers 1 while a study tool is chosen
//   3501 end drawing mode      p1 0, p2 0 (main GUI)
//   10041 before properties    p1 0, p2 0 (main GUI)
// Host -> module:
//   3073 studies changed       p1 coreUpdateLs*, p2 0
//
// Finding the provider again: a saved layout holds the type name and points of each study,
// not a usable provider handle. On loading, the module asks the host for the interface of
// kind LS_PROVIDER_INTERFACE ("LINESTUDY", provider "TELVIX") through 3001 and recreates the
// study there (4500); a layout loaded without such an interface shows no studies.
//
// Dropping a study ("kovar/primitive"): the host describes the drag with 3048 in an
// fxwcDropInstrument. When its instrumentType reads LS_PRIMITIVE_KIND ("LineStudy"), the
// drop is a line study: baseHandle is the provider, symbol the study's type name ("HLine",
// "Line", ...) and style its colour (0x00RRGGBB). The module creates it at the drop point on
// the first line of the area under it, every control point there.
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

// One control point, 20 bytes.
struct lsPointShape {
    std::int32_t m_typePoint;  // 0 not placed, 1 placed, 2 last point of an open list
    std::int32_t m_xTime;      // seconds since 1970 UTC
    std::int32_t index;        // candle index; relative to the last candle when indexType is 1
    float value;               // price
    std::int32_t indexType;    // 0 inside the data, 1 beyond the last candle
};
PF_LAYOUT32(sizeof(lsPointShape) == 20);
PF_LAYOUT64(sizeof(lsPointShape) == 20);

enum lsPointType : std::int32_t {
    LS_POINT_NOT_PLACED = 0,
    LS_POINT_PLACED = 1,
    LS_POINT_LAST = 2,
};

// Shape types of lsShape::type.
enum lsShapeType : std::int32_t {
    LS_SHAPE_LINE = 0,
    LS_SHAPE_TEXT = 2,
    LS_SHAPE_HLINE = 3,
    LS_SHAPE_VLINE = 4,
    LS_SHAPE_ARC = 5,
};

const int LS_SHAPE_TITLE_BYTES = 1024;

// One shape computed by the host, 3383 bytes on the terminal. The module zeroes the record
// before each use and reads only the named fields; the reserved bytes are the host's.
struct lsShape {
    std::int32_t hostTag;             // 0: the host's own number for the shape
    std::int32_t type;                // 4: lsShapeType
    std::uint8_t reserved1[1287];     // 8: the host's
    char title[LS_SHAPE_TITLE_BYTES]; // 1295: 8-bit local text, NUL-terminated
    std::int32_t titlePosition;       // 2319: 1 right, 2 left, 3 top, 4 bottom, 5/6 middle
    std::int32_t titleAlignment;      // 2323: Qt alignment bits
    std::uint8_t reserved2[1036];     // 2327: the host's
    std::uint32_t color;              // 3363: 0x00RRGGBB
    std::int32_t penStyle;            // 3367: Qt::PenStyle value
    std::int32_t penWidth;            // 3371
    std::int32_t visible;             // 3375: nonzero: drawn and hit-tested
    void* data;                       // 3379: the shape's data block (module-allocated)
};
PF_LAYOUT32(sizeof(lsShape) == 3383);
PF_LAYOUT32(offsetof(lsShape, type) == 4);
PF_LAYOUT32(offsetof(lsShape, title) == 1295);
PF_LAYOUT32(offsetof(lsShape, titlePosition) == 2319);
PF_LAYOUT32(offsetof(lsShape, titleAlignment) == 2323);
PF_LAYOUT32(offsetof(lsShape, color) == 3363);
PF_LAYOUT32(offsetof(lsShape, penStyle) == 3367);
PF_LAYOUT32(offsetof(lsShape, penWidth) == 3371);
PF_LAYOUT32(offsetof(lsShape, visible) == 3375);
PF_LAYOUT32(offsetof(lsShape, data) == 3379);
PF_LAYOUT64(sizeof(lsShape) == 3387);

// The exchange record of 4510: input points go to the host, output points and shapes come
// back. Counts and pointers must agree with the arrays the module allocated.
struct lsControlPointsShapes {
    std::int32_t inCount;      // control points sent
    lsPointShape* in;          // the points as the user set them
    std::int32_t outCount;     // control points returned
    lsPointShape* out;         // the points as corrected by the host (drawn, hit-tested)
    std::int32_t shapeCount;
    lsShape* shapes;
    std::int32_t finished;     // 1 once creation has ended
    std::int32_t error;        // 1: the host failed
};
PF_LAYOUT32(sizeof(lsControlPointsShapes) == 32);
PF_LAYOUT32(offsetof(lsControlPointsShapes, outCount) == 8);
PF_LAYOUT32(offsetof(lsControlPointsShapes, shapes) == 20);
PF_LAYOUT32(offsetof(lsControlPointsShapes, error) == 28);
PF_LAYOUT64(sizeof(lsControlPointsShapes) == 44);

// Shape data blocks, by shape type.

// Type 0, a straight line: two points and the extension flags.
struct lsShapeLine {
    lsPointShape points[2];
    std::int32_t extendLeft;   // 40
    std::int32_t extendRight;  // 44
};
PF_LAYOUT32(sizeof(lsShapeLine) == 48);
PF_LAYOUT64(sizeof(lsShapeLine) == 48);

const int LS_TEXT_CHARS = 1024;
const int LS_FONT_BYTES = 1024;

// Type 2, a text: the anchor, the text and its font.
struct lsShapeText {
    lsPointShape anchor;
    coreWChar text[LS_TEXT_CHARS];  // 20: UTF-16, NUL-terminated
    char family[LS_FONT_BYTES];     // 2068: ASCII, NUL-terminated
    std::int32_t pointSize;         // 3092
    std::uint8_t bold;              // 3096
    std::uint8_t italic;            // 3097
    std::uint8_t underline;         // 3098
    std::uint8_t strikeOut;         // 3099
};
PF_LAYOUT32(sizeof(lsShapeText) == 3100);
PF_LAYOUT32(offsetof(lsShapeText, family) == 2068);
PF_LAYOUT32(offsetof(lsShapeText, pointSize) == 3092);
PF_LAYOUT64(sizeof(lsShapeText) == 3100);

// Type 3, a horizontal line.
struct lsShapeHLine {
    float price;
};
PF_LAYOUT32(sizeof(lsShapeHLine) == 4);

// Type 4, a vertical line. `placed` is negative while the line has no position. The flag at
// byte 9 is read as one byte: a terminal that keeps it in a wider field has its low byte
// there (little-endian), one that keeps a single byte has nothing after it. A block of 10
// bytes or more is a vertical line.
struct lsShapeVLine {
    std::int32_t placed;       // 0
    std::int32_t index;        // 4: candle index (relative to the last candle when indexType is 1)
    std::uint8_t reserved;     // 8: the host's
    std::uint8_t indexType;    // 9: 0 inside the data, 1 beyond the last candle
};
PF_LAYOUT32(sizeof(lsShapeVLine) == 10);
PF_LAYOUT32(offsetof(lsShapeVLine, indexType) == 9);
PF_LAYOUT64(sizeof(lsShapeVLine) == 10);

// Type 5, an arc around control point 1 through control point 0, scaled by percent.
struct lsShapeArc {
    float percent;             // 0: radius in percent of the distance
    std::int32_t lowerHalf;    // 4: 0 upper half, 1 lower half
};
PF_LAYOUT32(sizeof(lsShapeArc) == 8);

const int LS_NAME_BYTES = 256;

#define LS_PROVIDER_INTERFACE "LINESTUDY"
#define LS_PRIMITIVE_KIND "LineStudy"

// 4500 LS_CREATE_OBJECT. The module fills the name, data array and colour; the host fills
// the id (0: failure) and the two counts.
struct lsCreateObject {
    char name[LS_NAME_BYTES];  // 8-bit local text, at most 255 characters, NUL-terminated
    void* dataArray;           // the line's fxDataPointArray
    std::uint32_t color;       // 0x00RRGGBB
    std::int32_t id;           // out: the new study's id
    std::int32_t cpCount;      // out: control points
    std::int32_t shapeCount;   // out: shapes
};
PF_LAYOUT32(sizeof(lsCreateObject) == 276);
PF_LAYOUT32(offsetof(lsCreateObject, dataArray) == 256);
PF_LAYOUT32(offsetof(lsCreateObject, id) == 264);
PF_LAYOUT64(sizeof(lsCreateObject) == 280);

const int LS_TITLE_CHARS = 256;  // the 4516 buffer, in UTF-16 units, NUL included

// 4517: which study has the focus and how it is shown. 9 bytes.
struct lsFocusRecord {
    std::int32_t id;
    std::uint8_t selected;
    std::uint32_t color;       // 0x00RRGGBB
};
PF_LAYOUT32(sizeof(lsFocusRecord) == 9);
PF_LAYOUT64(sizeof(lsFocusRecord) == 9);

// 3068: binds a study to the data of its line.
struct lsAttachRecord {
    void* dataArray;           // the line's fxDataPointArray
    void* provider;            // the study's line-study provider
    std::int32_t id;           // the study's id
};
PF_LAYOUT32(sizeof(lsAttachRecord) == 12);
PF_LAYOUT64(sizeof(lsAttachRecord) == 20);

// 3500: the host's drawing mode. The main GUI answers 1 and fills the record while the
// user has chosen a study tool; the next left press on a chart line starts that study.
// The chart sends 3501 when the study is finished or cancelled, and the host leaves the mode.
struct lsDrawingMode {
    void* provider;            // the provider to create the study with
    char name[LS_NAME_BYTES];  // the study's type name ("Line", "PolyLine", ...)
    std::uint32_t color;       // 0x00RRGGBB for the new study
};
PF_LAYOUT32(sizeof(lsDrawingMode) == 264);
PF_LAYOUT32(offsetof(lsDrawingMode, color) == 260);
PF_LAYOUT64(sizeof(lsDrawingMode) == 268);

// 3073, host -> module: the studies of one kind on one line's data have new counts (the
// host changed their settings) or new geometry (prices arrived). Every chart line whose data
// array is `dataArray` resizes each of its studies named `kind` to these counts, asks the
// host for the shapes again (4505, 4510) and repaints.
struct coreUpdateLs {
    void* dataArray;           // the data key: the line's fxDataPointArray
    char kind[LS_NAME_BYTES];  // the studies' type name, 8-bit local text, NUL-terminated
    std::int32_t cpCount;      // control points each study now has
    std::int32_t shapeCount;   // shapes each study now has
};
PF_LAYOUT32(sizeof(coreUpdateLs) == 268);
PF_LAYOUT32(offsetof(coreUpdateLs, kind) == 4);
PF_LAYOUT32(offsetof(coreUpdateLs, cpCount) == 260);
PF_LAYOUT32(offsetof(coreUpdateLs, shapeCount) == 264);
PF_LAYOUT64(sizeof(coreUpdateLs) == 272);

#pragma pack(pop)
