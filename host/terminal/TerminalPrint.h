// The terminal's own printing and export of a chart window: the page a trader keeps. A
// header line (instrument, period, chart type, box and reversal, first and last date) above
// the window's picture without its tool bar and time scroll bar, scaled to fit the page.
// The same page goes to a printer, a PDF file or a PNG picture. The module's own printing
// (5012) stays separate (Terminal::printThroughModule).
#pragma once

#include <QImage>
#include <QString>

class QPainter;
class QPrinter;
class QRect;
class QSize;

namespace host {

class ChartWindows;
class DataCore;

namespace terminal {

class TerminalPrint {
public:
    TerminalPrint(ChartWindows& charts, DataCore& data) : charts_(charts), data_(data) {}

    // The chart widget's picture between the bottom of its tool bar and the top of its time
    // scroll bar; a null image for a widget that is not a window.
    QImage picture(void* widget) const;
    // The header line: the description of the window's first chart, or the window's title
    // when it shows none.
    QString header(void* widget) const;
    // A file name for the export: "USDCHF 30 min Point and Figure.png" (characters a file
    // name should not hold left out).
    QString suggestedName(void* widget, const QString& suffix) const;

    // The page onto `printer` (its format, size and file as set). False with `error`.
    bool print(void* widget, QPrinter& printer, QString* error = nullptr) const;
    // The page into `path`: a PDF for a ".pdf" suffix, a PNG otherwise. False with `error`.
    bool exportTo(void* widget, const QString& path, QString* error = nullptr) const;

    // The header line's height on a page of `page` device pixels.
    static int headerHeight(const QSize& page);
    // Draws the header into the top `headerHeight` pixels of `page` and the picture below
    // it, scaled to fit and centred.
    static void paintPage(QPainter& painter, const QRect& page, int headerHeight, const QString& header,
                          const QImage& picture);

private:
    ChartWindows& charts_;
    DataCore& data_;
};

}  // namespace terminal
}  // namespace host
