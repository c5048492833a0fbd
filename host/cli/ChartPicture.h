// A chart of one instrument drawn into an image the way the chart window draws it: the
// chart-type object is created through the host callback (pf::DataSource, message 3008),
// its arrays fetched with 3043/3042, and the module's scale engine and renderer paint the
// most recent columns. Used by `pfhost render` and `pfhost demo`.
#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <string>

#include "host/data/ChartType.h"

namespace host {

class Emulator;

namespace cli {

struct ChartPicture {
    // What to draw.
    std::string instrument;                 // a loaded or built-in instrument
    data::ChartType type = data::ChartType::PointAndFigure;
    data::ChartSettings settings;           // zeros: the data core's defaults
    QSize size{1200, 800};
    int columnWidth = 12;                   // pixels per visible column, about

    // What was drawn.
    QImage image;
    int records = 0;                        // columns, bricks or strokes in the array
    int first = 0;                          // index of the first visible one
    int columns = 0;                        // how many are visible
    float low = 0.0f;                       // price range of the visible ones
    float high = 0.0f;
    double box = 0.0;                       // settings the data core used
    int reversal = 0;

    // One line: what the picture shows.
    QString Describe() const;
};

// Draws `picture` through the emulator's data core. False with `error` set when the
// instrument is unknown, the data core refuses the chart object or it has no records.
bool DrawChart(Emulator& emulator, ChartPicture& picture, std::string* error);
// DrawChart, then the image written to `path` as PNG.
bool SaveChart(Emulator& emulator, ChartPicture& picture, const QString& path, std::string* error);

}  // namespace cli
}  // namespace host
