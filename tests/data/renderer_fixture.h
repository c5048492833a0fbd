// Common set-up of the renderer tests: a scale engine, the owning line, the three renderers
// and a recording device.
#pragma once

#include <gtest/gtest.h>

#include <QPainter>
#include <boost/shared_ptr.hpp>

#include "ChartRecords.h"
#include "RecordingPaintDevice.h"
#include "data/KagiData.h"
#include "data/PFData.h"
#include "data/RenkoData.h"
#include "gx/Line.h"

struct RendererTest : ::testing::Test {
    boost::shared_ptr<pf::ScaleEngine> engine{new pf::ScaleEngine};
    gx::Line line;
    RecordingPaintDevice device;
    pf::PFData pfData{&line, engine};
    pf::RenkoData renko{&line, engine};
    pf::KagiData kagi{&line, engine};

    // Unless a test says otherwise: 10 columns of 10 pixels from x 0, columns 0..9 drawable,
    // rows 0..99 with 10 rows per price unit (price 0 on row 100).
    void SetUp() override { Frame(10, 0, 9.0f, 100, 0.0f, 10.0f); }

    void Frame(int columns, int first, float last, int height, float minPrice, float maxPrice, int width = -1) {
        if (width < 0) width = columns > 0 ? columns * 10 : 100;
        engine->SetColumnCount(columns);
        engine->SetFirstColumn(first);
        engine->Update(QRect(QPoint(-2, 0), QPoint(width + 1, height - 1)), 0.0f, last, minPrice, maxPrice);
    }

    void Paint(pf::PointData& renderer, fxDataPointArray* array) {
        device.clear();
        QPainter painter(&device);
        renderer.Draw(painter, array);
    }

    // The pen of each Kagi line drawn: 't' thin, 'T' thick.
    std::string KagiPens() const {
        std::string s;
        for (const auto& p : device.primitives())
            s += SamePen(p.pen, kColour1, 1.0) ? 't' : SamePen(p.pen, kColour0, 2.0) ? 'T' : '?';
        return s;
    }

    static bool SamePen(const QPen& pen, QRgb colour, qreal width, Qt::PenStyle style = Qt::SolidLine) {
        return pen.color().rgb() == colour && pen.widthF() == width && pen.style() == style &&
               pen.capStyle() == Qt::SquareCap && pen.joinStyle() == Qt::BevelJoin &&
               pen.brush().style() == Qt::SolidPattern;
    }
};
