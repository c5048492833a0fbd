// Font families for the user interface's font elements, by the host's selected language.
//
// Every text element of the terminal's user interface has an element code, 0 to 21; a font
// manager gives the family of each code (the module asks through CModule::getFont) and the
// point size to use for a nominal size (getFontSize). The managers differ only in what they
// put into the map: DefaultManager (Western languages) and ChinaManager (Simplified
// Chinese, whose glyphs need two more points to stay legible).
#pragma once

#include <QString>
#include <map>

namespace font {

// The font elements of the user interface.
enum elementCode : int {
    ELEMENT_FIRST = 0,
    efMainWindow = 0,     // main window frame and caption
    efMenu = 1,           // menus and context menus
    efToolBar = 2,        // tool bars and their buttons
    efToolTip = 3,        // tool tips
    efStatusBar = 4,      // status bar panes
    efDialog = 5,         // dialog texts
    efButton = 6,         // push buttons
    efEdit = 7,           // edit fields and combo boxes
    efList = 8,           // lists and trees
    efTable = 9,          // table cells
    efTableHeader = 10,   // table headers
    efTabBar = 11,        // tab bars
    efChartScale = 12,    // chart captions, price and time scales
    efChartTitle = 13,    // chart window titles
    efChartLabel = 14,    // labels drawn inside a chart (line studies, marks)
    efLegend = 15,        // legends of indicators
    efMessage = 16,       // message boxes
    efHint = 17,          // hints and help texts
    efPrint = 18,         // printed page headers and footers
    efNews = 19,          // news and reports
    efQuotes = 20,        // quote tables (fixed width, so that prices line up)
    efLog = 21,           // log and journal (fixed width)
    ELEMENT_LAST = 21
};

// One element: its family and, as a hint for the user interface that draws it, a point
// size and a weight (QFont's scale: 50 normal, 75 bold).
struct Element {
    QString family;
    int size;
    int weight;
};

class Manager {
public:
    Manager() = default;
    virtual ~Manager() {}
    // The point size to use for a nominal size of `n` points.
    virtual int getFontSize(int n) const = 0;

    // The family of the code; "Arial" for a code not in the map.
    QString GetFont(elementCode code) const;
    // The whole element; null for a code not in the map.
    const Element* GetElement(elementCode code) const;
    int Count() const { return static_cast<int>(elements_.size()); }

protected:
    std::map<elementCode, Element> elements_;

private:
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;
};

// "Chinese (Simplified)" gives a ChinaManager, every other language a DefaultManager. The
// caller owns the result.
Manager* CreateManager(const QString& language);

}  // namespace font
