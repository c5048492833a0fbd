// One record of the host's undo stack while a command writes it: begun with 3138 (titled
// with the translation of a key, for the widget's window), its root node open for writing,
// committed with 3139. Without a host, or when the host makes no record, Root() is null and
// nothing is written.
#pragma once

#include <memory>

#include <boost/shared_ptr.hpp>

#include "abi/records.h"

class CXMLWorkData;
class PFChartWidget;
namespace gx {
class Line;
class LineStudy;
}  // namespace gx

class UndoRecord {
public:
    UndoRecord(PFChartWidget* widget, const char* titleKey);
    ~UndoRecord();

    CXMLWorkData* Root() const { return root_.get(); }
    // 3139; true when the host took the record.
    bool Commit();

    // The root of a record the host hands back (3140), read from the host; null without a
    // host.
    static std::unique_ptr<CXMLWorkData> Open(PFChartWidget* widget, const coreUndoStart& record);
    // Places in a record are values of the index rule (gx/IndexRule.h: 0, -1, -2 ...), as
    // written and as read back.
    // The line at a place of the chart (area, layer, indicator, line); empty when the chart
    // has no such place (a record may be older than the chart's last change, or edited).
    static boost::shared_ptr<gx::Line> LineAt(PFChartWidget* widget, int area, int layer, int indicator, int line);
    // The position of `study` among the studies of its line; -1 when it is not on it.
    static int StudyIndex(const gx::Line& line, const gx::LineStudy* study);
    // The index the host gives a node of a record (3147); -1 without a host.
    static int NodeIndex(PFChartWidget* widget, const CXMLWorkData& node);
    // The record's first, third and fourth words into `result`.
    static void CopyWords(const coreUndoStart& record, coreUndoRefresh* result);

private:
    PFChartWidget* widget_;
    coreUndoBegin begin_;
    std::unique_ptr<CXMLWorkData> root_;
    bool committed_ = false;
};
