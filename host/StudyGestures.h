// A person drawing line studies on a chart window: the study tool is chosen in the
// terminal (LineStudies::chooseTool, which the chart learns of through 3500), then each
// control point is placed with the mouse, moving over the chart between the points (the
// rubber band) and clicking at each; a polyline of fewer than ten points is finished with
// a double click on its last point.
//
// Where a time and a price lie on the chart is read the way a person reads it: the mouse
// is moved over the first area and the terminal's status bar shows the time and the price
// under it (its time and price panes, written by the module). Nothing of the module's own
// scale is used.
#pragma once

#include <QPoint>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace host {

class Emulator;

struct StudyPoint {
    std::int32_t time;  // seconds since 1970, UTC
    double price;
};

// The pixel (chart widget coordinates) of the first area where the status bar shows the
// column holding `time` (the last column whose time is not after it) and the price nearest
// `price`. False with `error` when the status bar shows no time or price in the area, or
// when `time` lies before the first time or after the last time it shows (out of view:
// the window must be scrolled first).
bool StudyPixel(Emulator& emulator, void* widget, const StudyPoint& point, QPoint* at, std::string* error);

// The control points the user clicks for `points` given on the command line: the points
// themselves, except that a "Chanel" of three points (start, end, parallel line) has its
// end clicked twice (the first click of the end is the end's first guess). False for a
// count the study does not take.
bool StudyClicks(const std::string& name, const std::vector<StudyPoint>& points, std::vector<StudyPoint>* clicks,
                 std::string* error);

// Places a study of type `name` on the first area of the window, its control points at
// `points` (StudyClicks), with the mouse. True with the new study's id when the chart
// created it and ended the drawing mode (3501).
bool PlaceStudy(Emulator& emulator, void* widget, const std::string& name, const std::vector<StudyPoint>& points,
                std::int32_t* id, std::string* error);

// PlaceStudy with the pixels (chart widget coordinates) of the clicks given.
bool PlaceStudyAt(Emulator& emulator, void* widget, const std::string& name, const std::vector<QPoint>& pixels,
                  std::int32_t* id, std::string* error);

// Parses "NAME:TIME,PRICE[:TIME,PRICE...]"; false for a malformed text.
bool ParseStudy(const std::string& text, std::string* name, std::vector<StudyPoint>* points);

}  // namespace host
