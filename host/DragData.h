// The drag data the emulated terminal puts on instruments and primitives dragged from its
// own windows onto a chart window, and how it reads them back.
//
//   "kovar/symbol-indicator"  an instrument: its name in UTF-8, e.g. "USDCHF".
//   "kovar/primitive"         a primitive, the figures of a chart type over an instrument:
//                             "NAME;TYPE" in UTF-8 with TYPE one of pf, renko, kagi,
//                             e.g. "USDCHF;renko"; or a line study tool: "NAME;study"
//                             with the study's type name, e.g. "Andrews Pitchfork;study".
//
// No terminator is part of the format; NUL bytes at the end (as a C producer may leave
// them) are ignored, one anywhere else makes the data unreadable. The module hands these
// bytes back unchanged in a coreDragData with 3119 (instrument) or 3048 (primitive), and
// the host describes what they name in an fxwcDropInstrument (ChartWindows).
#pragma once

#include <QByteArray>
#include <QMimeData>
#include <QString>
#include <memory>
#include <string>

#include "host/data/ChartType.h"

namespace host {
namespace drag {

extern const char kInstrumentType[];  // "kovar/symbol-indicator"
extern const char kPrimitiveType[];   // "kovar/primitive"

// Longest drag data the host reads through a coreDragData, in bytes.
const int kMaxBytes = 1024;

QByteArray instrumentBytes(const std::string& instrument);
QByteArray primitiveBytes(const std::string& instrument, data::ChartType type);

QByteArray studyBytes(const std::string& study);

// Drag data as a drag from the terminal carries it (the caller owns it).
std::unique_ptr<QMimeData> instrumentDrag(const std::string& instrument);
std::unique_ptr<QMimeData> primitiveDrag(const std::string& instrument, data::ChartType type);
std::unique_ptr<QMimeData> studyDrag(const std::string& study);

// The instrument named by instrument drag data; false when the bytes are empty, too long,
// not UTF-8 or hold a NUL before their end.
bool readInstrument(const QByteArray& bytes, std::string* instrument);
// The instrument and chart type of primitive drag data; false unless the bytes are
// "NAME;TYPE" as above.
bool readPrimitive(const QByteArray& bytes, std::string* instrument, data::ChartType* type);
// The study type name of study drag data; false unless the bytes are "NAME;study".
bool readStudy(const QByteArray& bytes, std::string* study);

}  // namespace drag
}  // namespace host
