// The window of one chart component.
//
// A chart type interface creates one for each window component the host asks for. The
// widget owns everything one chart window shows: the chart tree (areas, layers, indicators,
// lines), the left and right price scales, the grid, the time scale, the zoom tool bar and
// the time scroll bar, and the data sources of its lines. It turns Qt's paint, mouse, key
// and tool-tip events into operations on the tree and carries the chart's requests to the
// host: data subscriptions, title changes, properties.
//
// Geometry, top to bottom: the tool bar, the chart (its areas stacked), the time scale and
// the time scroll bar.
#pragma once

#include <QColor>
#include <QFont>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <boost/scoped_ptr.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <memory>
#include <vector>

#include "abi/records.h"
#include "gui/CSimpleGUIWidget.h"
#include "util/QtCompat.h"

class QMenu;
class QAction;
class CXMLWorkData;
class PFChartModule;
class ChartInterface;
class CTimeScrollBar;
class CPropertyWork;
class CListOnePropery;
class CSkin;

namespace pf {
class DataSource;
namespace gui {
class ToolBar;
}
}  // namespace pf

namespace gx {
class Chart;
class Area;
class Line;
class LineStudy;
class TimeScale;
class LRScale;
class Grid;
class TextStatusBar;
}  // namespace gx

class PFChartWidget : public CSimpleGUIWidget {
    Q_OBJECT
public:
    // Chart types (DataTypeShow).
    enum DataTypeShow { PointFigure = 0, Renko = 1, Kagi = 2 };

    static constexpr int kMaxFirstPositions = 300;  // positions shown on a first display
    static constexpr int kToolBarHeight = 24;
    static constexpr int kScrollBarHeight = 16;

    PFChartWidget(PFChartModule* module, int chartType, void* hostHandle, QWidget* parent = nullptr,
                  QWidget* second = nullptr, const char* name = nullptr,
                  Qt::WindowFlags flags = Qt::WindowFlags());
    ~PFChartWidget() override;

    // ---- called by the chart type interface ----
    void Show(bool show);
    // Fills the parent widget.
    void Resize();
    bool IsActive() const;
    ChartInterface* GetCurrentInterface() const;
    // 3009: the data source of the updated object takes the new arrays, its lines follow,
    // the time scale grows and the window repaints. False when no data source of this
    // widget has the record's data handle.
    bool UpdateIndicatorPrimitives(const coreCoreUpdateDpaData* update);
    // Adds the instrument as a new area: data source, indicator and lines; the visible
    // count, the time scale and the scroll bar are set for it. Returns the new area, or an
    // empty pointer when the host created no data object.
    boost::shared_ptr<gx::Area> AddSecondaryPrimitive(void* baseHandle, const char* symbol, const char* name,
                                                      int periodType, int periodLength, int startTime,
                                                      const coreHeadNodeInfo* headNode, int style);
    // Whether a dropped instrument is to be added now.
    bool IsReplaceInstrument();
    void SetReplacePending(bool pending) { replacePending_ = pending; }
    bool IsReplacePending() const { return replacePending_; }
    // Asks the host again for every line's data in the price type `typeName` ("Middle",
    // "Bid", "Ask"): each data source is replaced by one created with that type.
    void ResetType(const QString& typeName);
    // The number of data lines shown in the price type `typeName`.
    int CountDpaByType(const QString& typeName) const;
    const QString& GetPriceType() const { return priceType_; }
    // Rebuilds the title (module name and the indicators' captions), shows it and tells the
    // host when it changed (3125); returns it.
    QString UpdateTitle();

    // Saved layout and settings: the eleven settings of the "PFWidget" node, the chart's
    // object tree, and the per-type default parameters of the module's file.
    void WriteWidgetData(CXMLWorkData* tree) const;
    void ReadWidgetData(CXMLWorkData* tree);
    void ToXML(const boost::shared_ptr<CXMLWorkData>& tree);
    void FromXML(const boost::shared_ptr<CXMLWorkData>& tree);
    void getStartParam();
    void setStartParam() override;
    // The node of the chart type in the default-parameters file ("PointFigure", "Renko",
    // "Kagi"); null for another chart type value.
    const char* StartParamNodeName() const;
    // The scales and the time scale take the widget's colours and fonts again.
    void UpdateScalesProperties();

    // The panel's status changed (3518): the data point arrays are renamed and the host hears
    // "TimeFrame Changed".
    void PanelChangeStatus(int status, int value);
    // Prints the window (5012); refused while busy.
    void Print();
    // Applies a property page of the host's dialog (10054): the page's values (taken from
    // `page` when the dialog sent a copy of the window's own) become the window's settings.
    void ApplyProperty(void* page, int value);
    // The window's property page as last built for the dialog; null before the first
    // ShowProperties.
    CPropertyWork* GetPropertyPage() const { return propertyPage_.get(); }
    // Puts the current settings into the property page and tells an open dialog (10053).
    void RefreshProperties();
    // Whether the tree holds an object of this handle: the widget itself, an area, a layer,
    // a line or a line study.
    bool HoldsObject(const void* handle) const;

    // ---- undo ----
    // Records the zoom state for undo before a zoom of `zoomKind` (0 zoom in, 1 zoom out,
    // 2 slider) changes it: a scale command is made and executed.
    void RecordScaleUndo(int zoomKind);
    // Records the selected lines (and what deleting them empties) before they are deleted.
    void RecordLineDelete();
    // Records the area at `position` before it is closed.
    // `index`: the area's index (0, -1, -2 ...), as the record keeps it.
    void RecordAreaDelete(int index);
    // After a move that changed `study`: unless a step is pending already, its move (with the
    // points it had when the move began) becomes the pending undo step.
    void RecordLineStudyMove(gx::LineStudy* study);
    bool HasPendingUndo() const { return pendingUndo_ != nullptr; }
    // Records the pending step on the host's undo stack (3138/3139) and forgets it; called
    // once the chart has handled the release, and before any other step is recorded.
    void ExecutePendingUndo();

    // ---- line studies ----
    // True while the host's drawing mode has a study tool chosen (3500); `mode` gets it.
    bool GetDrawingMode(lsDrawingMode& mode) const;
    // Starts the chosen study on the first line of the area under `at`: placed point by
    // point, or with every point at `at` when `dropped`. Nothing is made (and nothing thrown)
    // when the host refuses it.
    boost::shared_ptr<gx::LineStudy> StartLineStudy(const QPoint& at, void* provider, const QString& name,
                                                    std::uint32_t color, bool dropped);
    // Deletes a study and every other selected item through the line-delete command, so
    // that one undo brings them back.
    void DeleteLineStudy(gx::LineStudy* study);
    // 3073: the studies of one kind on one data array have new counts or geometry; each is
    // resized and re-read (UpdateCountLS). False when this window has none of them.
    bool OnUpdateLS(const coreUpdateLs* record);
    // Escape: every study being placed is cancelled.
    void CancelCreatingLineStudies();
    // After an undo rebuilt `count` objects: scales, time scale, scroll bar and title follow,
    // and the count is added to the undo's total.
    void AfterRestore(int count);
    // Tells the host that an undo has ended (3142) with the total of objects the undo's
    // commands rebuilt, once per undo, and starts a new total.
    void SendUndoRefreshed();
    // Undoes a record of the host's undo stack (3140); the result record receives the
    // record's first, third and fourth words. Returns 0 when done.
    int UndoPop(const coreUndoStart* record, coreUndoRefresh* result);

    // ---- context menu and trading ----
    // Builds and pops up the context menu at `point` (widget coordinates).
    void ShowPopupMenu(const QPoint& point);
    // Clears the properties, select and delete menus and lets the chart fill them.
    void FillContextMenu();
    // The instrument of the line under the last menu point, at most 20 characters; empty
    // when no line is there.
    QString GetTradeInstrument() const;
    int GetTradeAccountMode() const { return tradeAccountMode_; }
    QMenu* GetAreaMenu() const { return areaMenu_.get(); }

    // ---- called by the chart tree ----
    void SendMainChange(const QString& text);
    void StartSelectedPF(const QMouseEvent& event);
    void MoveSelectedPF(const QMouseEvent& event);
    // Ends a zoom selection; true when the selection was wide enough and the view zoomed.
    bool EndSelectedPF(const QMouseEvent& event);
    void UnStartSelectPF();
    void SetCursor();
    void ResetCursor();
    // 3001 for the chart type's provider, 3008, then 3013 with this widget as subscriber.
    // The create record's 8-bit text is the widget's price type ("Middle", "Bid", "Ask"; empty
    // until the host switches the type).
    boost::shared_ptr<pf::DataSource> CreateDataSource(void* baseHandle, const QString& symbol,
                                                       namePeriod period);
    // Unsubscribes (3014) and forgets a data source.
    void ReleaseDataSource(const boost::shared_ptr<pf::DataSource>& source);
    // Makes the time scale on the line whose data starts earliest, if there is none yet.
    void CreateTimeScale();
    // Brings the time scale up to the time line's data; touches only what is new.
    void ExpandTimeScale();
    void UpdateTimeScale();
    const char* GetModuleName() const;
    QString DataTypeShow2StringLocale(int type) const;
    static const char* DataTypeShow2String(int type);
    // The width of each price scale: enough for the widest price of the data, at least
    // LRScale::nWidth. Kept from the last UpdateScaleWidth.
    int CalcLRScaleWidth() const;
    // Measures the prices again after the data changed and re-places the areas when the
    // scales' width changes.
    void UpdateScaleWidth();
    QColor GetAreasColor() const;
    // Opens the host's properties dialog for the indicator of `line` (3092).
    void ShowIndicatorProp(const boost::shared_ptr<gx::Line>& line);
    // The widget's own properties (a double click on empty chart space): the page is filled
    // with the current settings and shown in the host's dialog (10052 to the main window).
    void ShowProperties();

    // After a deletion in the tree: unsubscribes the data sources no indicator uses any more,
    // re-stacks the areas, rebuilds the title and repaints.
    void AfterDelete();

    // After an exception ended one of the window's event handlers or slots (the module's
    // barrier caught it): the half-done action is dropped so that the next event works. The
    // zoom selection ends, a pending move step is forgotten, studies the host gave up on
    // (detached by a failed request) leave their lines, and the window repaints.
    void AbandonAction();

    // Paints the window; returns at once while busy, and while repaint is suspended
    // unless forced.
    void Draw(QPainter& painter, bool force);
    // The scroll bar's range and value from the last area. The window has one time scroll
    // bar and one zoom slider for all its areas; they follow the last one, as the zoom
    // buttons and a newly added instrument leave them.
    void SetScrollRange();
    // A restored area's positions: the total from its data, the first and the visible count
    // as saved (clamped to the data; a negative count gives the first display's count).
    void RestorePositions(gx::Area* area, int first, int visible);

    // ---- state ----
    PFChartModule* GetModule() const { return module_; }
    int GetChartType() const { return chartType_; }
    void* GetHostHandle() const { return hostHandle_; }
    gx::Chart* GetChart() const { return chart_.get(); }
    gx::TimeScale* GetTimeScale() const { return timeScale_.get(); }
    gx::LRScale* GetLeftScale() const { return leftScale_.get(); }
    gx::LRScale* GetRightScale() const { return rightScale_.get(); }
    gx::Grid* GetGrid() const { return grid_.get(); }
    CTimeScrollBar* GetTimeScrollBar() const { return scrollBar_.get(); }
    pf::gui::ToolBar* GetToolBar() const { return toolBar_; }
    gx::TextStatusBar* GetStatusBar() const;
    const std::vector<boost::shared_ptr<pf::DataSource> >& GetDataSources() const { return sources_; }
    boost::shared_ptr<pf::DataSource> FindDataSource(void* handle) const;

    bool IsBusy() const { return busy_; }
    void SetBusy(bool busy) { busy_ = busy; }
    bool IsRepaintSuspended() const { return repaintSuspended_; }
    void SetRepaintSuspended(bool suspended) { repaintSuspended_ = suspended; }
    bool IsDrawnOnce() const { return drawnOnce_; }
    bool IsZoomRecording() const { return zoomRecording_; }
    void SetZoomRecording(bool on) { zoomRecording_ = on; }
    bool IsAutoScroll() const { return autoScroll_; }
    void SetAutoScroll(bool on) { autoScroll_ = on; }
    int GetFreeStep() const { return freeStep_; }
    void SetFreeStep(int steps) { freeStep_ = steps; }
    int GetCrossCursorState() const;
    const QFont& GetAreasFont() const { return areasFont_; }
    void SetAreasFont(const QFont& font) { areasFont_ = font; }
    const QColor& GetAreasFontColor() const { return areasFontColor_; }
    void SetAreasFontColor(const QColor& color) { areasFontColor_ = color; }
    const QColor& GetTSBackgroundColor() const { return tsBackgroundColor_; }
    void SetTSBackgroundColor(const QColor& color) { tsBackgroundColor_ = color; }
    const QColor& GetTSGridColor() const { return tsGridColor_; }
    void SetTSGridColor(const QColor& color) { tsGridColor_ = color; }
    // Button colours of the skin: pressed fill and frame.
    QColor GetButtonFillColor() const;
    QColor GetButtonFrameColor() const;
    // The module's skin; null without a module.
    const CSkin* GetSkin() const;
    // The colour of the time scale's labels: the skin's time-scale font colour.
    QColor GetTimeScaleFontColor() const;
    // Takes the skin's look: grid and area colours, the close buttons, the time scale's
    // labels and the tool bar. A skin read from a document also gives the scales' font
    // colour and the time scale's background and grid; the built-in skin gives a window its
    // own start values for them. `creating` also takes the skin's auto-scroll flag.
    void ApplySkin(bool creating = false);
    // Where the mouse was last seen, widget coordinates.
    QPoint GetMousePos() const { return mousePos_; }
    // Top edge of the time scroll bar: the time scale ends one pixel above it.
    int GetTimeScrollBarTop() const;
    // The rectangle the chart's areas share.
    QRect ChartRect() const;
    // Whether an instrument of the area is in a dealing day off.
    bool IsAreaDayOff(const gx::Area* area) const;
    boost::shared_ptr<gx::Area> GetCurrentArea() const { return currentArea_; }
    const QString& GetTitle() const { return title_; }

    // ---- context menu entries and signals (connected through the module's barrier) ----
    void OnCustomContextMenuRequested(const QPoint& point);
    void OnHovered(QAction* action);
    void TradeDeal();
    void TradeOrder();
    void ZoomIn();
    void ZoomOut();
    void OnDelete();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(pf::EnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    // Raises the busy flag for a long operation (printing, a loaded layout, an undo) and
    // puts it back after: meanwhile the forbidden cursor drops mouse events, and painting,
    // the wheel, printing and undo are refused. The widget may be gone by then (a dialog's
    // event loop), hence the guarded pointer.
    class BusyScope {
    public:
        explicit BusyScope(PFChartWidget* widget);
        ~BusyScope();
        BusyScope(const BusyScope&) = delete;
        BusyScope& operator=(const BusyScope&) = delete;

    private:
        QPointer<PFChartWidget> widget_;
        bool was_;
        Qt::CursorShape cursor_;
    };

    // The settings as the property page's bindings hold them while the dialog is open.
    struct PropertyValues {
        int gridShow = 1;
        long gridColor = 0;
        long areaColor = 0;
        int leftScale = 1;
        int rightScale = 1;
        int freeStep = 0;
        int autoScroll = 0;
        QFont areasFont;
        long areasFontColor = 0;
        long tsBackgroundColor = 0;
        long tsGridColor = 0;
    };
    // Makes the page and its bindings on first use.
    void BuildPropertyPage();
    // Settings -> bindings' variables, and back.
    void LoadPropertyValues();
    void StorePropertyValues();

    // The skin's background picture over an area's data part, under the figures, placed as
    // the skin's background position says.
    void DrawBackImage(QPainter& painter, const QRect& data) const;
    // True (and the event ignored) while the forbidden cursor is shown.
    bool Forbidden(QEvent* event) const;
    void PlaceChildren();
    // The line under `point` whose renderer reports a figure there; empty when none.
    boost::shared_ptr<gx::Line> LineUnderMouse(const QPoint& point) const;
    boost::shared_ptr<gx::Area> AreaAt(const QPoint& point) const;
    // The number of positions a first display shows for `total` positions of data (-1: the
    // host gave no array).
    int FirstDisplayCount(int total) const;
    // The zoom slider as a first display or a zoom leaves it for `area` (the last area when
    // none is given).
    void SetZoomSlider(bool firstDisplay, const gx::Area* area = nullptr);
    // After the data of `area` changed from `oldTotal` to `newTotal` positions: the first
    // position and the visible count stay inside the data, a view of the newest position
    // keeps it in view, and a view of all the data keeps all of it.
    void FollowData(gx::Area& area, int oldTotal, int newTotal);
    // Sets the visible count of a freshly added area; the scroll bar, every area's first
    // position and the zoom slider start again from it.
    void SetFirstDisplay(const boost::shared_ptr<gx::Area>& area, const fxDataPointArray* first);

    bool busy_ = false;
    bool repaintSuspended_ = false;
    bool drawnOnce_ = false;
    bool zoomRecording_ = false;
    bool autoScroll_ = false;
    bool replacePending_ = false;
    struct PendingUndo;
    std::shared_ptr<PendingUndo> pendingUndo_;  // shared: the type is complete only in its own file
    boost::shared_ptr<gx::Area> currentArea_;
    boost::shared_ptr<QMenu> areaMenu_;
    boost::shared_ptr<QMenu> indicatorMenu_;
    boost::shared_ptr<QMenu> lsMenu_;
    boost::shared_ptr<gx::TimeScale> timeScale_;
    boost::shared_ptr<gx::LRScale> leftScale_;
    boost::shared_ptr<gx::LRScale> rightScale_;
    boost::shared_ptr<gx::Grid> grid_;
    boost::shared_ptr<CTimeScrollBar> scrollBar_;
    PFChartModule* module_;
    int chartType_;
    // Objects rebuilt so far by the commands of the undo under way (3142 tells the total).
    int undoRestored_ = 0;
    void* hostHandle_;
    QWidget* second_;
    pf::gui::ToolBar* toolBar_;
    boost::scoped_ptr<gx::Chart> chart_;
    std::vector<boost::shared_ptr<pf::DataSource> > sources_;
    int maxFirstPositions_ = kMaxFirstPositions;
    int freeStep_ = 5;
    int tradeAccountMode_ = 0;
    QString lastHover_;
    QPoint menuPoint_;
    QFont areasFont_;
    QColor areasFontColor_;
    QColor tsBackgroundColor_;
    QColor tsGridColor_;
    QPoint mousePos_;
    bool selectionStartedByPress_ = false;  // the last left press began a zoom selection
    QString title_;
    QString titleSent_;
    QString priceType_;
    int scaleWidth_;
    boost::scoped_ptr<CPropertyWork> propertyPage_;
    boost::scoped_ptr<CListOnePropery> propertyList_;
    PropertyValues propertyValues_;
    bool applyingProperties_ = false;  // while ApplyProperty takes a page
};
