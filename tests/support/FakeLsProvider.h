// A line-study provider for tests: creates studies (4500), reports shape sizes (4505) and
// computes simple shapes from the control points (4510): "HLine", "VLine", "Line", "Text",
// "Arc" (three arcs), "PolyLine" (ten points, nine segments), "Chanel" (four points: the ends
// of its first line and the width; three lines), "Andrews Pitchfork" (three points; the median
// and two prongs). It also plays the main GUI's drawing mode (3500) for a chosen tool.
// Switches make it hostile: no id, an error flag, counts, sizes and shape types of its choice.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "abi/messages.h"
#include "abi/records/linestudy_records.h"

class FakeLsProvider {
public:
    struct Study {
        std::string name;
        std::uint32_t color = 0;
        int points = 0;
        int shapes = 0;
        bool deleted = false;
    };

    // Hostile switches.
    bool zeroId = false;           // 4500 gives id 0
    int errorAfter = -1;           // 4510 number `errorAfter` (from 1) sets the error flag
    bool overrideCounts = false;   // 4500 reports these counts
    int cpCount = 0, shapeCount = 0;
    std::vector<std::int32_t> sizes;  // 4505 answers these sizes when not empty
    int shapeType = -1;            // every shape gets this type when >= 0
    std::string tool;              // the tool the drawing mode reports (empty: none)
    std::uint32_t toolColor = 0x0000C0;

    std::map<std::int32_t, Study> studies;
    int exchanges = 0;

    void* handle() { return this; }

    // Answers a message of the study protocol; -1 for others (not ours).
    int Handle(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
        switch (message) {
            case MSG_LS_DRAWING_MODE: {
                if (tool.empty() || !p1) return 0;
                lsDrawingMode* mode = reinterpret_cast<lsDrawingMode*>(p1);
                mode->provider = this;
                std::strncpy(mode->name, tool.c_str(), LS_NAME_BYTES - 1);
                mode->color = toolColor;
                return 1;
            }
            case MSG_LS_END_DRAWING: tool.clear(); return 0;
            case MSG_LS_ATTACH:
            case MSG_LS_DETACH:
            case MSG_LS_BEFORE_PROPERTIES: return 0;
            default: break;
        }
        if (target != this) return -1;
        switch (message) {
            case MSG_LS_CREATE_OBJECT: {
                lsCreateObject* create = reinterpret_cast<lsCreateObject*>(p1);
                Study study;
                study.name = create->name;
                study.color = create->color;
                Counts(study.name, study.points, study.shapes);
                if (overrideCounts) {
                    study.points = cpCount;
                    study.shapes = shapeCount;
                }
                const std::int32_t id = zeroId ? 0 : nextId_++;
                create->id = id;
                create->cpCount = study.points;
                create->shapeCount = study.shapes;
                if (id) studies[id] = study;
                return 0;
            }
            case MSG_LS_TITLE: {
                coreWChar* title = reinterpret_cast<coreWChar*>(p2);
                const std::string text = studies.count(std::int32_t(p1)) ? studies[std::int32_t(p1)].name : "";
                for (std::size_t i = 0; i < text.size(); ++i) title[i] = coreWChar(text[i]);
                return 0;
            }
            case MSG_LS_SHAPE_SIZES: {
                std::int32_t* out = reinterpret_cast<std::int32_t*>(p2);
                const Study& study = studies[std::int32_t(p1)];
                for (int i = 0; i < study.shapes; ++i)
                    out[i] = sizes.empty() ? BlockSize(study.name) : sizes[std::size_t(i) % sizes.size()];
                return 0;
            }
            case MSG_LS_GET_LIST_CONTROLPOINTER: {
                ++exchanges;
                lsControlPointsShapes* cps = reinterpret_cast<lsControlPointsShapes*>(p2);
                if (errorAfter > 0 && exchanges >= errorAfter) {
                    cps->error = 1;
                    return 1;
                }
                Compute(studies[std::int32_t(p1)], *cps);
                return 0;
            }
            case MSG_LS_DELETE: studies[std::int32_t(p1)].deleted = true; return 0;
            case MSG_LS_PROPERTIES:
            case MSG_LS_FOCUS: return 0;
            default: return -1;
        }
    }

    static void Counts(const std::string& name, int& points, int& shapes) {
        points = 1;
        shapes = 1;
        if (name == "Line") points = 2;
        else if (name == "Arc") points = 2, shapes = 3;
        else if (name == "PolyLine") points = 10, shapes = 9;
        else if (name == "Andrews Pitchfork") points = 3, shapes = 3;
        else if (name == "Chanel") points = 4, shapes = 3;
    }
    static int Type(const std::string& name) {
        if (name == "HLine") return LS_SHAPE_HLINE;
        if (name == "VLine") return LS_SHAPE_VLINE;
        if (name == "Text") return LS_SHAPE_TEXT;
        if (name == "Arc") return LS_SHAPE_ARC;
        return LS_SHAPE_LINE;
    }
    static std::int32_t BlockSize(const std::string& name) {
        switch (Type(name)) {
            case LS_SHAPE_HLINE: return sizeof(lsShapeHLine);
            case LS_SHAPE_VLINE: return sizeof(lsShapeVLine);
            case LS_SHAPE_TEXT: return sizeof(lsShapeText);
            case LS_SHAPE_ARC: return sizeof(lsShapeArc);
            default: return sizeof(lsShapeLine);
        }
    }

private:
    void Compute(const Study& study, lsControlPointsShapes& cps) {
        // By value: the record is packed and may lie at any address.
        const int inCount = cps.inCount, outCount = cps.outCount;
        const int n = std::min(inCount, outCount);
        for (int i = 0; i < n; ++i) cps.out[i] = cps.in[i];
        for (int s = 0; s < cps.shapeCount; ++s) {
            lsShape& shape = cps.shapes[s];
            shape.type = shapeType >= 0 ? shapeType : Type(study.name);
            shape.color = study.color;
            shape.penStyle = 1;
            shape.penWidth = 1;
            shape.visible = 1;
            void* data = shape.data;
            if (!data || n == 0 || shapeType >= 0 || !sizes.empty()) continue;
            const lsPointShape& a = cps.in[std::min(s, n - 1)];
            switch (Type(study.name)) {
                case LS_SHAPE_HLINE: reinterpret_cast<lsShapeHLine*>(data)->price = a.value; break;
                case LS_SHAPE_VLINE: {
                    lsShapeVLine v{};
                    v.placed = a.m_typePoint >= 1 ? 0 : -1;
                    v.index = a.index;
                    v.indexType = a.indexType;
                    std::memcpy(data, &v, sizeof v);
                    break;
                }
                case LS_SHAPE_TEXT: {
                    lsShapeText* t = reinterpret_cast<lsShapeText*>(data);
                    t->anchor = a;
                    const char* text = "Note";
                    for (int i = 0; text[i]; ++i) t->text[i] = coreWChar(text[i]);
                    std::strcpy(t->family, "Sans");
                    t->pointSize = 9;
                    break;
                }
                case LS_SHAPE_ARC: {
                    lsShapeArc* arc = reinterpret_cast<lsShapeArc*>(data);
                    static const float percents[] = {38.2f, 50.0f, 61.8f};
                    arc->percent = percents[s % 3];
                    arc->lowerHalf = 0;
                    break;
                }
                default: {
                    lsShapeLine* line = reinterpret_cast<lsShapeLine*>(data);
                    line->points[0] = cps.in[std::min(s, n - 1)];
                    line->points[1] = cps.in[std::min(s + 1, n - 1)];
                    if (study.name == "Chanel" && n >= 4) {
                        // Lines 0 and 2 run from point 0 to point 2, the second moved by the
                        // width (point 3's price over point 0's); line 1 is their middle.
                        const float width = cps.in[3].value - cps.in[0].value;
                        const float shift = s == 0 ? 0.0f : s == 1 ? width / 2 : width;
                        line->points[0] = cps.in[0];
                        line->points[1] = cps.in[2];
                        line->points[0].value += shift;
                        line->points[1].value += shift;
                    } else if (study.name == "Andrews Pitchfork" && n >= 3) {
                        // The median from point 0 through the middle of points 1 and 2, and the
                        // prongs through 1 and 2 parallel to it.
                        lsPointShape mid = cps.in[1];
                        mid.index = (cps.in[1].index + cps.in[2].index) / 2;
                        mid.value = (cps.in[1].value + cps.in[2].value) / 2;
                        const lsPointShape from = s == 0 ? cps.in[0] : cps.in[s];
                        lsPointShape to = from;
                        to.index = from.index + (mid.index - cps.in[0].index);
                        to.value = from.value + (mid.value - cps.in[0].value);
                        line->points[0] = from;
                        line->points[1] = to;
                        line->extendRight = 1;
                    }
                    break;
                }
            }
        }
    }

    std::int32_t nextId_ = 1;
};
