// A picture of one chart window, made the way the terminal shows a chart: the module is
// asked for a window component of the chart type (5003) inside a sub-window of the main
// window, each instrument is dropped on it (5007, one area each), held-back quotes are
// replayed (the module hears of every change with 3009), and the host grabs its own
// container widget with the module's chart in it. Nothing is drawn by the host: the
// picture is the module's work, reached only through its entry points. Used by
// `pfhost chart`, `pfhost render` and `pfhost demo`.
#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/data/ChartType.h"

namespace host {

class Emulator;

namespace cli {

struct ChartPicture {
    // What to draw. The module must have been started.
    std::vector<std::string> instruments;   // loaded or built-in, one drop each
    data::ChartType type = data::ChartType::PointAndFigure;
    data::ChartSettings settings;           // zeros: the data core's defaults
    QSize size{1200, 800};
    std::size_t replay = 0;                 // held-back quotes of each instrument replayed after the drops
    QString loadLayout;                     // a layout document the window is loaded from (3020), no drops
    QString saveLayout;                     // where the window's layout is saved once drawn (3021)
    QString printFile;                      // where the window is printed once drawn (5012), as PDF
    // Deals and orders placed from the window's context menu once it is drawn, in order.
    struct Trade {
        bool order;
        int account;                        // 1 to the number of accounts (DealingService::addDemoAccounts)
    };
    std::vector<Trade> trades;
    int accounts = 1;                       // accounts the module was started with
    QPoint tradeAt;                         // where the menu opens; null: the middle of the window
    // What the person at the terminal does to the window after the drops and the replay,
    // before it is grabbed, in order (ChartActions.cpp).
    struct Action {
        enum Kind { ZoomIn, ZoomOut, Scroll, CloseArea, DeleteLine, Undo } kind;
        int value;                          // Scroll: the position; CloseArea, DeleteLine: the area
    };
    std::vector<Action> actions;
    // Line studies placed with the mouse on the first area after the actions (so that
    // --scroll can bring their times into view) (--study NAME:TIME,PRICE[:TIME,PRICE...]).
    struct Study {
        std::string name;
        std::vector<std::pair<std::int32_t, double> > points;  // UNIX time, price
    };
    std::vector<Study> studies;
    // Entries of the window's property page set after the actions, in order: the page is
    // opened in the terminal's property dialog (a double click on empty chart space), each
    // entry shown as the first text gets the second and is applied (10054).
    std::vector<std::pair<QString, QString> > properties;

    // What was drawn.
    QImage image;
    QString title;                          // the window's title as the module gave it
    std::vector<data::ChartSettings> used;  // per instrument, what its chart object got
    std::size_t replayed = 0;               // quotes replayed, all instruments
    std::size_t notices = 0;                // 3009 sent to the module meanwhile

    // One line: what the picture shows.
    QString Describe() const;
};

// Draws `picture` through the emulator's chart windows and closes the window again (5004).
// False with `error` set when an instrument is unknown, the settings do not fit one, or
// the module makes no chart window or refuses a drop.
bool DrawChart(Emulator& emulator, ChartPicture& picture, std::string* error);
// DrawChart, then the image written to `path` as PNG.
bool SaveChart(Emulator& emulator, ChartPicture& picture, const QString& path, std::string* error);

// The actions among `args` (--zoom in|out, --scroll N, --close-area I, --delete-line I,
// --undo), in the order given; false for a malformed one.
bool ParseActions(const QStringList& args, std::vector<ChartPicture::Action>* actions);
// Plays `actions` on the window in order; false with `error` set at the first that fails.
bool PlayActions(Emulator& emulator, void* widget, const std::vector<ChartPicture::Action>& actions,
                 std::string* error);
// Opens the window's property page in the emulator's property dialog and sets and applies
// `picture.properties` in order; false with `error` set at the first that fails. The dialog
// is closed afterwards.
bool SetProperties(Emulator& emulator, void* widget, const ChartPicture& picture, std::string* error);
// The titles on the emulator's undo stack, one a line, the next to be undone first.
std::string DescribeUndoStack(Emulator& emulator);

// Puts a price source into the emulator's data core: a CSV path is loaded, anything else
// names a built-in instrument. The last `holdBack` quotes wait for replay. The instrument's
// name, or empty with `error` set.
std::string LoadSource(Emulator& emulator, const QString& source, std::size_t holdBack, std::string* error);

// `pfhost chart` and `pfhost render`: the options of `usage` parsed, the module started,
// the picture saved. `all` says whether the options beyond render's are taken (--replay,
// layouts, printing, trading). Returns the exit status.
int RunChartCommand(const QStringList& args, const char* command, const char* usage, bool all);

}  // namespace cli
}  // namespace host
