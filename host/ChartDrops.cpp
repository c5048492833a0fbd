// Instruments reaching a chart window: the records of 5007, and the host's answers to the
// module's questions about drag data dropped on its widget (3119, 3048).
#include <cstddef>
#include <cstring>
#include <sstream>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/DragData.h"
#include "host/ls/StudyGeometry.h"

namespace host {

namespace {

std::string hex(const void* p) {
    std::ostringstream out;
    out << p;
    return out.str();
}

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

void copyText(char* field, std::size_t size, const std::string& text) {
    std::strncpy(field, text.c_str(), size - 1);
    field[size - 1] = 0;
}

// The colour of a study dropped from the terminal's tool palette (0x00RRGGBB).
const std::uint32_t kDroppedStudyColour = 0x0000C0;

// 3048 for a line study tool: instrumentType "LineStudy", the provider in baseHandle, the
// study's type name as the symbol and its colour as the style.
int describeStudy(Host& host, const std::string& study, fxwcDropInstrument* record, std::string& detail) {
    detail = "study \"" + study + "\"";
    const std::vector<Host::Interface> providers = host.findInterfaces("LINESTUDY", "TELVIX", "");
    if (!ls::kindFromName(study, nullptr) || providers.empty()) {
        detail += providers.empty() ? ": no line-study provider" : ": no such study";
        return 1;
    }
    fxwcDropInstrument filled;
    std::memset(&filled, 0, sizeof filled);
    filled.baseHandle = providers.front().handle;
    copyText(filled.symbol, sizeof filled.symbol, study);
    copyText(filled.instrumentType, sizeof filled.instrumentType, "LineStudy");
    copyText(filled.providerName, sizeof filled.providerName, "TELVIX");
    filled.style = std::int32_t(kDroppedStudyColour);
    std::memcpy(record, &filled, sizeof filled);
    detail += " -> provider " + hex(filled.baseHandle);
    return 0;
}

}  // namespace

bool ChartWindows::dropRecord(const std::string& name, const std::optional<namePeriod>& period,
                              fxwcDropInstrument* record) {
    const data::Instrument* instrument = data_.instrument(name);
    if (!instrument || !record) return false;
    std::memset(record, 0, sizeof *record);
    record->baseHandle = data_.baseHandle(name);
    data::putWide(reinterpret_cast<char*>(record) + offsetof(fxwcDropInstrument, name), 255, name);
    copyText(record->symbol, sizeof record->symbol, name);
    copyText(record->instrumentType, sizeof record->instrumentType, "Currency");
    copyText(record->providerName, sizeof record->providerName, "TELVIX");
    const namePeriod p = period ? *period : instrument->period();
    record->periodType = p.type;
    record->periodLength = p.length;
    record->startTime = 0;
    record->style = 0;
    return true;
}

int ChartWindows::drop(void* widget, const std::vector<std::string>& instruments,
                       const std::optional<namePeriod>& period) {
    const Window* w = find(widget);
    if (!w) return -1;
    std::vector<fxwcDropInstrument> records(instruments.size());
    std::string names;
    for (std::size_t i = 0; i < instruments.size(); ++i) {
        if (!dropRecord(instruments[i], period, &records[i])) return -1;
        names += (i ? ", " : "") + instruments[i];
    }
    fxwcDropList list;
    list.count = std::int32_t(records.size());
    list.records = records.empty() ? nullptr : records.data();
    return host_.send(w->iface, MSG_WC_DROP_INSTRUMENTS, P(widget), P(&list), "drop " + names + " on " + hex(widget));
}

int ChartWindows::describeDrag(void* target, bool primitive, const coreDragData* drag, fxwcDropInstrument* record,
                               std::string& detail) {
    if (target != host_.coreHandle() || !drag || !record) return 1;
    coreDragData d;
    std::memcpy(&d, drag, sizeof d);  // packed: read by value
    if (!d.bytes || d.length < 1 || d.length > drag::kMaxBytes) {
        detail = "drag data of " + std::to_string(d.length) + " bytes at " + hex(d.bytes) + ": refused";
        return 1;
    }
    const QByteArray bytes(d.bytes, d.length);
    std::string name;
    data::ChartType type = data::ChartType::PointAndFigure;
    const bool readable = primitive ? drag::readPrimitive(bytes, &name, &type) : drag::readInstrument(bytes, &name);
    detail = std::string(primitive ? "primitive " : "instrument ") + "\"" +
             QString::fromUtf8(bytes).toStdString() + "\"";
    std::string study;
    if (primitive && !readable && drag::readStudy(bytes, &study)) return describeStudy(host_, study, record, detail);
    fxwcDropInstrument filled;
    if (!readable || !dropRecord(name, std::nullopt, &filled)) {
        detail += readable ? ": no such instrument" : ": unreadable";
        return 1;
    }
    if (primitive) filled.style = std::int32_t(type);
    std::memcpy(record, &filled, sizeof filled);
    detail += " -> base " + hex(filled.baseHandle);
    return 0;
}

}  // namespace host
