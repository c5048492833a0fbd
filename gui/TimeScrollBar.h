// The scroll bar under the chart: its value is the first visible position of every area.
#pragma once

#include <QAbstractSlider>
#include <QByteArray>
#include <QImage>
#include <functional>

class PFChartWidget;
class CXMLWorkData;
class QSlider;

class CTimeScrollBar : public QAbstractSlider {
    Q_OBJECT
public:
    explicit CTimeScrollBar(PFChartWidget* widget);

    // The number of positions on screen: the first area's visible count, kept whenever the
    // bar is set after a zoom or a scroll; -1 until known.
    int GetScreenDataPoints() const { return nScreenDataPoints_; }
    void SetScreenDataPoints(int n) { nScreenDataPoints_ = n; }
    // Sets range and value without moving the areas (the caller already did), and takes the
    // number of positions on screen from the first area.
    void SetQuietly(int minimum, int maximum, int value);

    // The zoom state before a zoom of kind `zoomType` (0 zoom in, 1 zoom out, 2 slider) as a
    // child node "Node" of `tree`: "ObjectType" 3, "ObjHandle", "nScreenDataPoints",
    // "nZoomType" and, with a zoom slider, "zoomSlider"; then `more` adds what its caller
    // keeps beside them, and the node's parameters are written, once.
    void ToXml(CXMLWorkData* tree, int zoomType,
               const std::function<void(CXMLWorkData&)>& more = std::function<void(CXMLWorkData&)>()) const;
    // Restores the zoom state from such a node itself (only when the chart has an area):
    // "nScreenDataPoints" comes back, then the zoom is taken back: "nZoomType" 0 zooms out,
    // 1 zooms in (both without recording), 2 sets the slider back to "zoomSlider" and the
    // bar to the first area.
    void FromXml(CXMLWorkData* node);

    // Every area's first visible position becomes `value` (0 when negative); the time scale
    // follows, the window repaints and the main window hears "Scale changed".
    void OnValueChanged(int value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    int ValueAt(int x) const;
    void RefreshScreenDataPoints();
    QSlider* ZoomSlider() const;
    // The slider at `sliderValue` (-1: none saved) with its algorithm run unrecorded, the page
    // step from the saved screen count, the bar's range and value from the first area.
    void RestoreSlider(int sliderValue);

    // Whether every pixel of `image` is opaque.
    static bool Opaque(const QImage& image);

    PFChartWidget* widget_;
    // The bar as the style last drew it, and the option it drew from.
    QImage picture_;
    QByteArray pictureKey_;
    int nScreenDataPoints_ = -1;
    bool quiet_ = false;
};
