// Chart window layouts kept in work-data documents, as the terminal keeps the layout of
// every chart window it has open. The module writes and reads the layout itself, through
// the work-data messages (3165 to 3170), under a node the host gives it; the host decides
// where that node lives. A layout document of the emulator looks like this:
//
//   <ChartLayout Type="pf">         the emulator's; Type is pf, renko or kagi
//     <ChartWindow>                 the node of 3021 and 3020
//       <PFWidget .../>             the module's, whatever it writes
//     </ChartWindow>
//   </ChartLayout>
//
//   save  3021 to the window's interface: p1 the chart widget, p2 the coreSzNode of a
//         fresh, empty ChartWindow node; then the document is written to its path. An
//         existing layout document is replaced; any other existing file is left alone.
//   load  a new window of the given type (5003), then 3020 with the document's
//         ChartWindow node: the module rebuilds the window from it, asking the data core for
//         its data objects again (3008).
#pragma once

#include <QString>

#include "host/Host.h"
#include "host/data/ChartType.h"

namespace host {

class ChartWindows;
class WorkDataStore;

class ChartLayouts {
public:
    ChartLayouts(Host& host, ChartWindows& charts, WorkDataStore& store);

    // False, with the reason in `error`, when the widget is not a window, the file cannot be
    // a layout, the module answers 3021 with other than 0 or writes nothing, or the file
    // cannot be written.
    bool save(void* widget, const QString& path, QString* error = nullptr);
    // The new window's widget; null, with the reason in `error`, when the file is missing or
    // holds no layout, the module makes no window or answers 3020 with other than 0 (the
    // window is destroyed again then).
    void* load(data::ChartType type, const QString& path, QString* error = nullptr);
    // The same into and from a node of any work-data document the host holds (a
    // workspace keeps one per window): `node` is cleared and handed to 3021, or handed to
    // 3020 for a new window of `type`.
    bool saveInto(void* widget, void* node, QString* error = nullptr);
    void* loadFrom(data::ChartType type, void* node, QString* error = nullptr);
    // The chart type a layout document was saved from.
    bool typeOf(const QString& path, data::ChartType* type, QString* error = nullptr);

    static const char* rootName() { return "ChartLayout"; }
    static const char* windowName() { return "ChartWindow"; }

private:
    // The document's ChartWindow node, or null with `error` set.
    void* windowNode(const QString& path, QString* error);

    Host& host_;
    ChartWindows& charts_;
    WorkDataStore& store_;
};

}  // namespace host
