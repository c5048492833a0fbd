#include "host/LineStudies.h"

#include <algorithm>
#include <cstring>

#include "host/DataCore.h"
#include "host/MainWindowService.h"
#include "host/data/ChartObject.h"

namespace host {

namespace {

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

std::string readName(const char* field, std::size_t size) { return std::string(field, strnlen(field, size)); }

}  // namespace

LineStudies::LineStudies(Host& host, DataCore& data, MainWindowService& mainWindow)
    : host_(host), data_(data), main_(mainWindow), handle_(host.newHandle()) {
    host_.addInterface({"LINESTUDY", "TELVIX", "LINESTUDY_TELVIX", handle_});
    host_.on(MSG_LS_CREATE_OBJECT, [this](void* t, std::intptr_t p1, std::intptr_t, std::string& d) {
        return create(t, reinterpret_cast<lsCreateObject*>(p1), d);
    });
    host_.on(MSG_LS_DELETE, [this](void* t, std::intptr_t p1, std::intptr_t, std::string& d) { return remove(t, p1, d); });
    host_.on(MSG_LS_SHAPE_SIZES, [this](void* t, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return shapeSizes(t, p1, reinterpret_cast<std::int32_t*>(p2), d);
    });
    host_.on(MSG_LS_GET_LIST_CONTROLPOINTER, [this](void* t, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return exchange(t, p1, reinterpret_cast<lsControlPointsShapes*>(p2), d);
    });
    host_.on(MSG_LS_PROPERTIES, [this](void* t, std::intptr_t p1, std::intptr_t, std::string& d) {
        if (t != handle_ || !find(std::int32_t(p1))) return 1;
        // Recorded, and handed to the terminal's study dialog when there is one; setParams
        // applies an edit.
        properties_.push_back(std::int32_t(p1));
        d = "properties of study " + std::to_string(p1);
        if (propertiesHandler_) propertiesHandler_(std::int32_t(p1));
        return 0;
    });
    host_.on(MSG_LS_TITLE, [this](void* t, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return title(t, p1, reinterpret_cast<coreWChar*>(p2), d);
    });
    host_.on(MSG_LS_FOCUS, [this](void* t, std::intptr_t p1, std::intptr_t, std::string& d) {
        return setFocus(t, reinterpret_cast<const lsFocusRecord*>(p1), d);
    });
    host_.on(MSG_LS_ATTACH, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return attach(p1, reinterpret_cast<const lsAttachRecord*>(p2), d);
    });
    host_.on(MSG_LS_DETACH, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) { return detach(p1, p2, d); });
    host_.on(MSG_LS_DRAWING_MODE, [this](void* t, std::intptr_t p1, std::intptr_t, std::string& d) {
        return drawingMode(t, reinterpret_cast<lsDrawingMode*>(p1), d);
    });
    host_.on(MSG_LS_END_DRAWING, [this](void* t, std::intptr_t, std::intptr_t, std::string& d) {
        if (t != main_.handle()) return 1;
        ++ended_;
        for (auto& s : studies_)
            if (!s.second.finished) s.second.attached = false;
        d = tool_.empty() ? "drawing mode ends" : "drawing mode ends, tool \"" + tool_ + "\" put down";
        tool_.clear();
        return 0;
    });
    host_.on(MSG_LS_BEFORE_PROPERTIES, [this](void* t, std::intptr_t, std::intptr_t, std::string&) {
        if (t != main_.handle()) return 1;
        ++before_;
        return 0;
    });
    data_.addChangeListener([this](const fxDataPointArray* array) { dataChanged(array); });
}

LineStudies::~LineStudies() = default;

bool LineStudies::chooseTool(const std::string& name, std::uint32_t colour) {
    if (!ls::kindFromName(name, nullptr)) return false;
    tool_ = name;
    toolColour_ = colour & 0xFFFFFFu;
    return true;
}

LineStudies::Study* LineStudies::find(std::int32_t id) {
    auto it = studies_.find(id);
    return it == studies_.end() ? nullptr : &it->second;
}

const LineStudies::Study* LineStudies::study(std::int32_t id) const {
    auto it = studies_.find(id);
    return it == studies_.end() ? nullptr : &it->second;
}

std::vector<std::int32_t> LineStudies::ids() const {
    std::vector<std::int32_t> out;
    for (const auto& s : studies_) out.push_back(s.first);
    return out;
}

ls::SeriesView LineStudies::series(const void* array) const {
    ls::SeriesView view;
    const data::DataObject* owner = data_.ownerOf(array);
    if (!owner) return view;
    view.precision = owner->instrument().precision();
    const namePeriod period = owner->instrument().period();
    const std::int64_t length = std::max<std::int64_t>(1, period.length);
    switch (period.type) {
        case 'I': view.period = 60 * length; break;
        case 'D': view.period = 86400 * length; break;
        case 'W': view.period = 604800 * length; break;
        case 'M': view.period = 30 * 86400 * length; break;
        case 'Y': view.period = 365 * 86400 * length; break;
        default: break;
    }
    if (const data::ChartObject* chart = dynamic_cast<const data::ChartObject*>(owner)) {
        for (const fxChartTypeRecord& r : chart->records()) view.times.push_back(r.time);
    } else {
        for (const data::Quote& q : owner->instrument().quotes()) view.times.push_back(q.time);
    }
    return view;
}

bool LineStudies::setParams(std::int32_t id, const StudyParams& params) {
    Study* s = find(id);
    if (!s) return false;
    s->params = params;
    sendUpdate(id);
    return true;
}

int LineStudies::sendUpdate(std::int32_t id) {
    // The record names the study's data and kind with its counts: the chart re-reads every
    // study of that kind on that data. An unknown id sends an empty record.
    coreUpdateLs record;
    std::memset(&record, 0, sizeof record);
    if (const Study* s = find(id)) {
        record.dataArray = s->dataArray;
        const std::string name = ls::studyName(s->kind);
        std::memcpy(record.kind, name.data(), std::min(name.size(), sizeof record.kind - 1));
        record.cpCount = ls::controlPointCount(s->kind);
        record.shapeCount = std::int32_t(ls::shapeTypes(s->kind).size());
    }
    const int answer = host_.send(nullptr, MSG_LS_UPDATE, P(&record), 0, "study " + std::to_string(id) + " changed");
    updates_.push_back(Update{id, answer});
    return answer;
}

void LineStudies::dataChanged(const void* array) {
    // One 3073 per kind of study on the array: it updates all studies of that kind there.
    std::vector<std::int32_t> changed;
    std::vector<ls::StudyKind> kinds;
    for (const auto& s : studies_)
        if (s.second.attached && s.second.dataArray == array &&
            std::find(kinds.begin(), kinds.end(), s.second.kind) == kinds.end()) {
            kinds.push_back(s.second.kind);
            changed.push_back(s.first);
        }
    // The module may delete studies while it handles an update: each is looked up again.
    for (std::int32_t id : changed)
        if (find(id)) sendUpdate(id);
}

// ---- messages ----

int LineStudies::create(void* target, lsCreateObject* record, std::string& detail) {
    if (target != handle_ || !record) return 1;
    record->id = 0;
    record->cpCount = 0;
    record->shapeCount = 0;
    const std::string name = readName(record->name, sizeof record->name);
    ls::StudyKind kind;
    detail = "create \"" + name + "\"";
    if (!ls::kindFromName(name, &kind)) {
        detail += ": no such study";
        return 1;
    }
    Study s;
    s.id = nextId_++;
    s.kind = kind;
    s.params.colour = record->color & 0xFFFFFFu;
    s.dataArray = record->dataArray;
    s.dataId = 0;
    s.attached = false;
    s.selected = false;
    s.exchanges = 0;
    s.sizes.assign(ls::shapeTypes(kind).size(), 0);
    const int points = ls::controlPointCount(kind);
    s.in.assign(std::size_t(points), lsPointShape{});
    s.out = s.in;
    studies_[s.id] = s;
    record->id = faults_.zeroId ? 0 : s.id;
    record->cpCount = points;
    record->shapeCount = faults_.overrideShapeCount ? faults_.shapeCount : std::int32_t(ls::shapeTypes(kind).size());
    detail += " = " + std::to_string(s.id) + ", " + std::to_string(record->cpCount) + " points, " +
              std::to_string(record->shapeCount) + " shapes";
    return 0;
}

int LineStudies::remove(void* target, std::intptr_t id, std::string& detail) {
    if (target != handle_ || !find(std::int32_t(id))) return 1;
    studies_.erase(std::int32_t(id));
    deleted_.push_back(std::int32_t(id));
    if (focus_ == id) focus_ = 0;
    detail = "delete study " + std::to_string(id);
    return 0;
}

int LineStudies::shapeSizes(void* target, std::intptr_t id, std::int32_t* sizes, std::string& detail) {
    Study* s = target == handle_ ? find(std::int32_t(id)) : nullptr;
    if (!s || !sizes) return 1;
    const std::vector<std::int32_t> types = ls::shapeTypes(s->kind);
    // As many entries as the count 4500 reported, never more than the study has.
    std::size_t n = types.size();
    if (faults_.overrideShapeCount) n = std::min<std::size_t>(n, std::size_t(std::max(0, faults_.shapeCount)));
    s->sizes.assign(types.size(), 0);
    for (std::size_t i = 0; i < n; ++i) {
        const std::int32_t size = faults_.overrideShapeSize ? faults_.shapeSize : ls::shapeDataSize(types[i]);
        s->sizes[i] = size;
        std::memcpy(sizes + i, &size, sizeof size);
    }
    detail = std::to_string(n) + " shape sizes of study " + std::to_string(id);
    return 0;
}

int LineStudies::exchange(void* target, std::intptr_t id, lsControlPointsShapes* record, std::string& detail) {
    if (target != handle_ || !record) return 1;
    Study* s = find(std::int32_t(id));
    detail = "study " + std::to_string(id);
    const int points = s ? ls::controlPointCount(s->kind) : 0;
    const std::vector<std::int32_t> types = s ? ls::shapeTypes(s->kind) : std::vector<std::int32_t>();
    const char* refused = nullptr;
    if (!s)
        refused = "no such study";
    else if (record->inCount != points || record->outCount != points)
        refused = "point counts differ from the study's";
    else if (!record->in || !record->out)
        refused = "no point arrays";
    else if (record->shapeCount != std::int32_t(types.size()) || !record->shapes)
        refused = "shape count differs from the study's";
    for (std::size_t i = 0; !refused && i < types.size(); ++i)
        if (!record->shapes[i].data) refused = "a shape without its data block";
    if (refused) {
        record->error = 1;
        detail += std::string(": refused, ") + refused;
        return 1;
    }
    std::memcpy(s->in.data(), record->in, sizeof(lsPointShape) * std::size_t(points));
    if (record->finished == 1) s->finished = true;
    // The shapes are computed into the host's own copies; the chart's records get the
    // host's fields, and each data block at most the size 4505 reported for it.
    std::vector<lsShape> shapes(types.size());
    std::vector<std::vector<char> > blocks(types.size());
    for (std::size_t i = 0; i < types.size(); ++i) {
        std::memcpy(&shapes[i], &record->shapes[i], sizeof(lsShape));
        blocks[i].assign(std::size_t(ls::shapeDataSize(types[i])), '\0');
        shapes[i].data = blocks[i].data();
    }
    const ls::SeriesView view = series(s->dataArray);
    ls::computeStudy(s->kind, s->params, view, s->in.data(), s->out.data(), shapes.data());
    std::memcpy(record->out, s->out.data(), sizeof(lsPointShape) * std::size_t(points));
    for (std::size_t i = 0; i < types.size(); ++i) {
        void* data = record->shapes[i].data;
        const std::int32_t reported = i < s->sizes.size() ? s->sizes[i] : 0;
        const std::size_t n = std::min(blocks[i].size(), std::size_t(std::max(0, reported)));
        shapes[i].data = data;
        if (faults_.overrideShapeType) shapes[i].type = faults_.shapeType;
        std::memcpy(&record->shapes[i], &shapes[i], sizeof(lsShape));
        if (n) std::memcpy(data, blocks[i].data(), n);
    }
    if (faults_.errorFlag) {
        record->error = 1;
        detail += ": answered with the error flag";
        return 0;
    }
    record->error = 0;
    ++s->exchanges;
    detail += " (" + std::string(ls::studyName(s->kind)) + "): " + std::to_string(points) + " points, " +
              std::to_string(types.size()) + " shapes";
    return 0;
}

int LineStudies::title(void* target, std::intptr_t id, coreWChar* buffer, std::string& detail) {
    Study* s = target == handle_ ? find(std::int32_t(id)) : nullptr;
    if (!s || !buffer) return 1;
    const QString text = ls::studyTitle(s->kind);
    const int n = std::min(int(text.size()), LS_TITLE_CHARS - 1);
    std::memcpy(buffer, text.utf16(), std::size_t(n) * sizeof(coreWChar));
    buffer[n] = 0;
    detail = "title \"" + text.toStdString() + "\"";
    return 0;
}

int LineStudies::setFocus(void* target, const lsFocusRecord* record, std::string& detail) {
    if (target != handle_ || !record) return 1;
    lsFocusRecord r;
    std::memcpy(&r, record, sizeof r);
    Study* s = find(r.id);
    if (!s) return 1;
    s->selected = r.selected != 0;
    if (s->selected)
        focus_ = r.id;
    else if (focus_ == r.id)
        focus_ = 0;
    detail = "study " + std::to_string(r.id) + (s->selected ? " selected" : " not selected");
    return 0;
}

int LineStudies::attach(std::intptr_t dataId, const lsAttachRecord* record, std::string& detail) {
    if (!record) return 1;
    lsAttachRecord r;
    std::memcpy(&r, record, sizeof r);
    Study* s = r.provider == handle_ ? find(r.id) : nullptr;
    if (!s) return 1;
    s->dataId = dataId;
    if (r.dataArray) s->dataArray = r.dataArray;
    s->attached = true;
    if (++s->binds >= 2) s->finished = true;
    detail = "study " + std::to_string(r.id) + " bound to data " + std::to_string(dataId);
    return 0;
}

int LineStudies::detach(std::intptr_t dataId, std::intptr_t id, std::string& detail) {
    Study* s = find(std::int32_t(id));
    // A study the chart has deleted (4501 came first) is no longer known: nothing to undo.
    if (!s) {
        if (std::find(deleted_.begin(), deleted_.end(), std::int32_t(id)) == deleted_.end()) return 1;
        detail = "deleted study " + std::to_string(id) + " unbound";
        return 0;
    }
    s->attached = false;
    detail = "study " + std::to_string(id) + " unbound from data " + std::to_string(dataId);
    return 0;
}

int LineStudies::drawingMode(void* target, lsDrawingMode* record, std::string& detail) {
    if (target != main_.handle() || !record || tool_.empty()) return 0;
    record->provider = handle_;
    std::memset(record->name, 0, sizeof record->name);
    std::memcpy(record->name, tool_.data(), std::min(tool_.size(), sizeof record->name - 1));
    record->color = toolColour_;
    detail = "tool \"" + tool_ + "\"";
    return 1;
}

}  // namespace host
