#include "gx/Visitors.h"

#include <stdexcept>

#include <algorithm>

#include "data/DataSource.h"
#include "data/KVPFLine.h"
#include "data/ScaleEngine.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/TimeScale.h"
#include "gx/ls/LineStudy.h"

namespace gx {

namespace {

const Area* AreaOf(const Line& line) {
    const Indicator* indicator = line.GetIndicator();
    const Layer* layer = indicator ? indicator->GetLayer() : nullptr;
    return layer ? layer->GetArea() : nullptr;
}

const Area* AreaOf(const Indicator& indicator) {
    const Layer* layer = indicator.GetLayer();
    return layer ? layer->GetArea() : nullptr;
}

// Erases the elements `drop` selects, keeping the order of the rest.
template <class T, class Pred>
void StableErase(std::vector<T>& v, Pred drop) {
    v.erase(std::remove_if(v.begin(), v.end(), drop), v.end());
}

}  // namespace

void CountUnderMouseObject::Visit(boost::shared_ptr<Line> line) {
    if (line->IsOnDataClicked(point)) ++lines;
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (s->PtInLS(point)) ++studies;
}

void UpdateTime::Visit(boost::shared_ptr<Line> line) {
    if (scale) line->UpdateTimes(scale);
}

void FindArea::Visit(boost::shared_ptr<Area> area) {
    if (area->Rect().contains(point)) found = area;
}

void FindLayer::Visit(boost::shared_ptr<Layer> layer) {
    if (layer->Rect().contains(point)) found = layer;
}

void UnSelectingLine::Visit(boost::shared_ptr<Line> line) { line->Select(false); }

void UnSelectingLS::Visit(boost::shared_ptr<Line> line) {
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (!(s->GetState() & LineStudy::StateCreating)) s->Select(false);
}

void SetManualDeleteLS::Visit(boost::shared_ptr<Line> line) {
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies()) s->SetManualDelete(true);
}

void DeleteSelItems::Visit(boost::shared_ptr<Line> line) {
    if (area && AreaOf(*line) != area) return;
    // Studies deleted by hand leave the host now, also those that go with their line.
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (s->IsManualDelete() && (s->IsSelected() || line->IsSelected())) s->Delete();
    StableErase(line->GetLineStudies(), [](const boost::shared_ptr<LineStudy>& s) { return s->IsSelected(); });
}

void DeleteSelItems::Visit(boost::shared_ptr<Indicator> indicator) {
    if (area && AreaOf(*indicator) != area) return;
    StableErase(indicator->GetLines(), [](const boost::shared_ptr<Line>& l) { return l->IsSelected(); });
}

void DeleteSelItems::Visit(boost::shared_ptr<Layer> layer) {
    if (area && layer->GetArea() != area) return;
    StableErase(layer->GetIndicators(),
                [](const boost::shared_ptr<Indicator>& i) { return i->GetLineCount() == 0; });
}

void DeleteSelItems::Visit(boost::shared_ptr<Area> a) {
    if (area && a.get() != area) return;
    StableErase(a->GetLayers(), [](const boost::shared_ptr<Layer>& l) { return l->GetIndicatorCount() == 0; });
}

void DeleteSelItems::Visit(Chart* chart) {
    StableErase(chart->GetAreas(), [this](const boost::shared_ptr<Area>& a) {
        return a->GetLayerCount() == 0 && (!area || a.get() == area);
    });
}

void SelectAreaLines::Visit(boost::shared_ptr<Line> line) {
    if (AreaOf(*line) == area) line->Select(true);
}

void SelectAreaLS::Visit(boost::shared_ptr<Line> line) {
    if (AreaOf(*line) != area) return;
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies()) s->Select(true);
}

void UpdateCountLS::Visit(boost::shared_ptr<Line> line) {
    if (!array || static_cast<const void*>(line->GetArray()) != array) return;
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies()) {
        if (s->GetName() != kind) continue;
        ++updated;
        s->UpdateCPCount(cpCount);
        try {
            s->UpdateShapeCount(shapeCount);
        } catch (const std::exception&) {
            failed.push_back(s);
        }
    }
}

void FindDataSource::Visit(boost::shared_ptr<Area> a) {
    if (a.get() != area) return;
    for (const boost::shared_ptr<Layer>& layer : a->GetLayers())
        for (const boost::shared_ptr<Indicator>& indicator : layer->GetIndicators())
            if (indicator->GetDataSource()) {
                found = indicator->GetDataSource();
                return;
            }
}

void ReleaseTempLS::Visit(boost::shared_ptr<Line> line) {
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies()) s->ReleaseTempDraw();
}

void FindLayerByIndex::Visit(boost::shared_ptr<Layer> layer) {
    if (layer->GetIndex() == index) found = layer;
}

void FindIndicatorByHandle::Visit(boost::shared_ptr<Indicator> indicator) {
    if (indicator->GetHandle() == handle) found = indicator;
}

void FindLSByHandle::Visit(boost::shared_ptr<Line> line) {
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (s->GetHandle() == handle) found = s;
}

void Selector::Visit(Chart* chart) { chart->SetSelectedFlag(selected); }
void Selector::Visit(boost::shared_ptr<Area> area) { area->SetSelectedFlag(selected); }
void Selector::Visit(boost::shared_ptr<Layer> layer) { layer->SetSelectedFlag(selected); }

void UnSelLsNotUnderMouse::Visit(boost::shared_ptr<Line> line) {
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (!(s->GetState() & LineStudy::StateCreating) && !s->PtInLS(point)) s->Select(false);
}

void UnSelFigureNotUnderMouse::Visit(boost::shared_ptr<Line> line) {
    if (!line->IsOnDataClicked(point)) line->Select(false);
}

void MakeCaption::Visit(boost::shared_ptr<Indicator> indicator) {
    if (area && AreaOf(*indicator) != area) return;
    const QString text = indicator->MakeCaptionIndicator();
    if (text.isEmpty()) return;
    if (!caption.isEmpty()) caption += QLatin1String(", ");
    caption += text;
}

void RenameDpa::Visit(boost::shared_ptr<Indicator> indicator) {
    if (indicator->UpdateLines()) ++renamed;
}

void UpdateLS::Visit(boost::shared_ptr<Line> line) {
    // Points beyond the last candle are kept relative to it, so they keep their distance
    // when candles arrive; the studies only follow the line's rectangle.
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies()) s->SetRect(line->Rect());
}

void FindUndoFirstVisibleFigure::Visit(boost::shared_ptr<Line> line) {
    if (line->GetFirstVisibleFigure() > 0) lines.push_back(line);
}

void FindSelLine::Visit(boost::shared_ptr<Line> line) {
    if (line->IsSelected() && AreaOf(*line) == area) lines.push_back(line);
}

void FindUnderMouseObject::Visit(boost::shared_ptr<Line> line) {
    if (line->IsOnDataClicked(point)) lines.push_back(line);
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (s->PtInLS(point)) studies.push_back(s);
}

void FindIndicatorHandle::Visit(boost::shared_ptr<Area> a) {
    if (a.get() != area) return;
    for (const boost::shared_ptr<Layer>& layer : a->GetLayers())
        for (const boost::shared_ptr<Indicator>& indicator : layer->GetIndicators())
            handles.push_back(indicator->GetHandle());
}

void FindAllIndicators::Visit(boost::shared_ptr<Indicator> indicator) {
    if (!area || AreaOf(*indicator) == area) indicators.push_back(indicator);
}

void FindSelLs::Visit(boost::shared_ptr<Line> line) {
    const std::vector<boost::shared_ptr<LineStudy> > selected = line->FindLSSelected();
    studies.insert(studies.end(), selected.begin(), selected.end());
}

void FindLsByState::Visit(boost::shared_ptr<Line> line) {
    const std::vector<boost::shared_ptr<LineStudy> > found = line->FindLS(mask);
    studies.insert(studies.end(), found.begin(), found.end());
}

void DeleteSelLS::Visit(boost::shared_ptr<Line> line) {
    for (const boost::shared_ptr<LineStudy>& s : line->GetLineStudies())
        if (s->IsManualDelete() && s->IsSelected()) s->Delete();
    StableErase(line->GetLineStudies(), [](const boost::shared_ptr<LineStudy>& s) { return s->IsSelected(); });
}

void DeleteUnUsedLayers::Visit(boost::shared_ptr<Area> area) {
    if (area->GetLayerCount() < 2) return;
    StableErase(area->GetLayers(), [](const boost::shared_ptr<Layer>& l) { return l->IsEmpty(); });
}

void FindMinTimeLine::Visit(boost::shared_ptr<Line> line) {
    // A line without data counts as starting at time 0 (GetTime(0) of an empty array).
    if (chart && line->GetChart() != chart) return;
    if (!found || line->GetTime(0) < found->GetTime(0)) found = line;
}

void FindMinMax::Visit(boost::shared_ptr<Line> line) {
    if (area_ && AreaOf(*line) != area_) return;
    fxDataPointArray* array = line->GetArray();
    if (!array || line->Size() < 1 || !line->GetEngine()) return;
    const CKVPFLine view(array);
    if (view.Size() < 1) return;
    pointCount = static_cast<float>(view.Size());
    const pf::ScaleEngine& engine = *line->GetEngine();
    int first = std::max(0, engine.GetFirstColumn());
    const long long end = static_cast<long long>(first) + engine.GetColumnCount() - 1;
    int last = static_cast<int>(std::min<long long>(view.Size() - 1, end));
    // A view with no column of the line (wholly in the free space after the newest, or
    // showing no position) takes its range from the column nearest to it, so that the
    // scales and the grid always have one.
    if (last < first) first = last = std::min(first, view.Size() - 1);
    firstPos = static_cast<float>(first);
    const float box = view.GetStepData(0);
    const double high = view.FindMaxElement(QStringLiteral("END"), first, last);
    if (high > maxPrice) maxPrice = static_cast<float>(high + box);
    const double low = view.FindMinElement(QStringLiteral("VALUE"), first, last);
    if (low < minPrice) minPrice = static_cast<float>(low - box);
    columnCount = static_cast<float>(view.Size());
    boxSize = box;
    precision = static_cast<float>(array->precision);
}

}  // namespace gx
