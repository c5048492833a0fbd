// The chart window's tool bar: Zoom In, Zoom Out, the zoom slider and the cross-cursor
// button. Zooming acts on every area at once through the areas' scale engines: each keeps
// the total number of positions, how many are visible and the first visible one.
#pragma once

#include <QWidget>

class QSlider;
class QToolButton;
class PFChartWidget;
class CSkin;

namespace pf {
namespace gui {

class ToolBar : public QWidget {
    Q_OBJECT
public:
    static constexpr double kZoomFactor = 1.3;
    // Zoom In needs at least this many visible positions in an area.
    static constexpr int kMinZoomInVisible = 6;
    // The zoom slider's maximum is the total less this: a zoom shows at least 4 positions.
    static constexpr int kMinSliderVisible = 4;
    // Zoom kinds of a scale undo step.
    enum ZoomKind { ZoomKindIn = 0, ZoomKindOut = 1, ZoomKindSlider = 2 };

    explicit ToolBar(PFChartWidget* widget);
    ~ToolBar() override;

    // Zoom In: every area shows visible / 1.3 positions, keeping its right edge. When the
    // first area shows fewer than 6 nothing at all happens (no undo step, no repaint), and a
    // later area showing fewer than 6 ends the zoom there. `record` asks for an undo step.
    void OnBnClickedZoomIn(bool record);
    // Zoom Out: visible * 1.3 positions, at most total + free steps, first not below 0.
    void OnBnClickedZoomOut(bool record);
    // The zoom slider moved: every area shows total - value positions. The change is
    // recorded for undo while the widget's zoom-recording flag is set; a clear flag is only
    // set (the change came with a zoom that was recorded already).
    void OnChangeZoom(int value);

    void OnBnClickedCrossCursor();
    void OnBnReleasedCrossCursor();
    void SetCrossCursorToggled(bool on);
    bool IsEnabledCrossCursor() const;
    bool IsCrossCursorToggled() const;
    // Clears the toggled state of the state buttons (the cross cursor).
    void ResetStateButtonList(bool repaint);

    // The skin's tool bar: its background colour with its image stretched over the bar's
    // height (tiled along it), its foreground colour and font, and the zoom icons.
    void ApplySkin(const CSkin& skin);

    QSlider* GetZoomSlider() const { return slider_; }
    QToolButton* GetZoomInButton() const { return zoomIn_; }
    QToolButton* GetZoomOutButton() const { return zoomOut_; }
    QToolButton* GetCrossCursorButton() const { return cross_; }

private:
    // The zoom buttons' clicks (connected through the module's barrier).
    void ZoomInClicked();
    void ZoomOutClicked();
    // One scale undo step of `zoomKind`; a failure to record is logged and the zoom goes on.
    void RecordUndo(int zoomKind);
    // Scroll bar range after a zoom: 0 .. total - visible + free steps, value `first` (or
    // the bar's own value when `setValue` is false). When the bar has to clamp the value,
    // the areas follow it as they do when the bar is moved.
    void SetScrollRange(int total, int visible, int first, bool setValue);
    // Moves the slider to `value` (and, with `setMaximum`, its maximum to `maximum`) without
    // running OnChangeZoom: the zoom has set the areas already.
    void MoveSliderQuietly(bool setMaximum, int maximum, int value);
    // Ends a zoom button's work the way the slider's own signal would have: a slider that
    // moved leaves the zoom-recording flag set (OnChangeZoom sets it for a change it does not
    // record), and when the areas changed the main window hears "Scale changed".
    void AfterZoomButton(int sliderBefore, bool changed);

    PFChartWidget* widget_;
    QToolButton* zoomIn_;
    QToolButton* zoomOut_;
    QSlider* slider_;
    QToolButton* cross_;
};

}  // namespace gui
}  // namespace pf
