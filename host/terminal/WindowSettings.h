// What a workspace keeps of a chart window beyond the module's layout: the settings of each
// chart object it shows (box size, reversal, percentage, colours) and of each of its line
// studies (colour, pen, extension, text and font), which live in the terminal's data core
// and line-study provider rather than in the module:
//
//   <Window …>
//     <ChartWindow> … </ChartWindow>
//     <Chart Instrument="USDCHF" Box="0.005" Reversal="3" Percent="0" Rising="ff00a000" Falling="ffd00000"
//            Price="0"/>
//     <Study Kind="Text" Colour="0000c0" Width="1" Style="1" Left="0" Right="0" Text="Top"
//            Family="DejaVu Sans" Size="12" Bold="1" Italic="0" Underline="0" StrikeOut="0"/>
//   </Window>
//
// Charts are matched again by instrument, in order; studies in the order the window's
// layout creates them, by kind. Values that make no sense keep the defaults and are named.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

#include "host/data/ChartType.h"

namespace host {

class Emulator;

namespace workdata {
struct Node;
}

namespace terminal {

// The line studies drawn on the charts of `widget`, in id order (the order they were made).
std::vector<std::int32_t> windowStudies(Emulator& emulator, void* widget);

// Writes the Chart and Study elements of `widget` under the work-data node `node`.
void saveWindowSettings(Emulator& emulator, void* widget, void* node);

// The Chart elements of a Window element: the settings each instrument's chart had. Those
// with values out of bounds are left out and named in `problems`.
struct SavedChart {
    QString instrument;
    data::ChartSettings settings;
};
std::vector<SavedChart> savedCharts(const workdata::Node& window, QStringList* problems = nullptr);

// Applies the Chart and Study elements of `window` to `widget` just opened from its layout;
// `studiesBefore` are the study ids that existed before it was opened. What could not be
// applied is named in `problems`.
void restoreWindowSettings(Emulator& emulator, void* widget, const workdata::Node& window,
                           const std::vector<std::int32_t>& studiesBefore, QStringList* problems);

}  // namespace terminal
}  // namespace host
