// The emulated terminal's line-study provider and its drawing tools.
//
// The provider is a host interface (kind "LINESTUDY", provider "TELVIX", name
// "LINESTUDY_TELVIX"); the chart addresses it by its handle, which it gets from the drawing
// mode (3500) or the interface look-up. Each study lives here: its type, colour, settings
// (StudyParams), the line data it is bound to, and the control points the chart sent last.
// Geometry: host/ls/StudyGeometry.h.
//
// Messages (see abi/records/linestudy_records.h for the records):
//   to the provider    4500 create, 4501 delete, 4505 shape sizes, 4510 control points
//                      and shapes, 4511 properties, 4516 title, 4517 focus
//   to the data core   3068 attach, 3071 detach
//   to the main GUI    3500 drawing mode (1 and the record filled while a tool is chosen),
//                      3501 end of drawing mode (the tool is put down), 10041
//   to the module      3073 (target null, p1 coreUpdateLs: the study's data array, type
//                      name and counts) when a study's geometry changed: new data on its
//                      line (one per kind of study there), or its settings edited (setParams)
//
// Everything the chart sends is checked: the target, the study id, null records, counts
// that differ from the study's own and null arrays are refused with 1 (4510 also sets the
// record's error flag when the record itself is readable), and nothing is written beyond
// the sizes the host reported. The data array named in 4500 and 3068 is never read: it is
// looked up among the data core's objects by address.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/Host.h"
#include "host/ls/StudyGeometry.h"

namespace host {

class DataCore;
class MainWindowService;

class LineStudies {
public:
    using StudyParams = ls::StudyParams;

    LineStudies(Host& host, DataCore& data, MainWindowService& mainWindow);
    ~LineStudies();
    LineStudies(const LineStudies&) = delete;
    LineStudies& operator=(const LineStudies&) = delete;

    void* handle() const { return handle_; }

    // ---- the drawing tool ----
    // Chooses the tool for a study type; false (nothing chosen) for an unknown name.
    bool chooseTool(const std::string& name, std::uint32_t colour = 0x0000C0);
    void clearTool() { tool_.clear(); }
    // The chosen tool's name; empty when none is chosen.
    const std::string& tool() const { return tool_; }
    // How often the chart ended the drawing mode (3501). A study still unfinished then was
    // cancelled by the chart (which does not delete it): it is unbound from its data and
    // hears no more of it.
    int endedDrawing() const { return ended_; }

    // ---- the studies ----
    struct Study {
        std::int32_t id;
        ls::StudyKind kind;
        StudyParams params;
        void* dataArray;         // from 4500 / 3068, never read
        std::intptr_t dataId;    // the line data id of 3068; 0 while not attached
        bool attached;
        bool selected;           // from 4517
        std::vector<lsPointShape> in;   // as the chart sent them last (4510)
        std::vector<lsPointShape> out;  // as the host corrected them
        int exchanges;           // 4510s answered
        std::vector<std::int32_t> sizes;  // the data block sizes 4505 reported
        int binds = 0;           // 3068s received: the chart binds once on creation, again when done
        bool finished = false;   // placement ended (a 4510 with the finished flag, or a second 3068)
    };
    // The live studies, by id; null for an unknown or deleted id.
    const Study* study(std::int32_t id) const;
    std::vector<std::int32_t> ids() const;
    // Ids deleted by the chart (4501), in order.
    const std::vector<std::int32_t>& deleted() const { return deleted_; }
    // The study that has the focus (4517); 0 for none.
    std::int32_t focus() const { return focus_; }
    // Property requests (4511) and their 10041s, in order.
    const std::vector<std::int32_t>& propertyRequests() const { return properties_; }
    int beforeProperties() const { return before_; }
    // Called with the study id of each property request once it is recorded (the terminal
    // opens its study dialog later, after the module's message has returned).
    void setPropertiesHandler(std::function<void(std::int32_t id)> handler) { propertiesHandler_ = std::move(handler); }
    // Forgets the deleted ids, property requests and updates heard so far (a long run keeps
    // its memory flat); live studies stay.
    void forget() {
        std::vector<std::int32_t>().swap(deleted_);
        std::vector<std::int32_t>().swap(properties_);
        std::vector<Update>().swap(updates_);
    }
    // Forgets every study too, for a long run between rounds whose windows are all gone: the
    // chart does not delete the studies of a window it destroys (5004), their objects are
    // the terminal's to drop with the window.
    void forgetStudies() {
        forget();
        studies_.clear();
        focus_ = 0;
    }

    // New settings for a study, as its property page would apply them; the chart hears of it
    // with 3073. False for an unknown id.
    bool setParams(std::int32_t id, const StudyParams& params);
    // 3073 for the kind and data of study `id` (an unknown id sends an empty record, for
    // tests of the module's answer); the module's answer.
    int sendUpdate(std::int32_t id);
    // The 3073s sent, in order: the study and the module's answer.
    struct Update {
        std::int32_t id;
        int answer;
    };
    const std::vector<Update>& updates() const { return updates_; }

    // A terminal that answers badly, for tests of the chart's defences. Each field left at
    // its default changes nothing.
    struct Faults {
        bool zeroId = false;          // 4500 answers 0 but leaves the id 0
        bool errorFlag = false;       // 4510 answers 0 with the error flag set
        bool overrideShapeCount = false;
        std::int32_t shapeCount = 0;  // what 4500 reports instead of the real count
        bool overrideShapeSize = false;
        std::int32_t shapeSize = 0;   // what 4505 reports for every shape
        bool overrideShapeType = false;
        std::int32_t shapeType = 0;   // the type 4510 writes into every shape
    };
    void setFaults(const Faults& faults) { faults_ = faults; }

    // The series a study is computed on: the candles' times of the data object owning
    // `array` (empty for an array of no object).
    ls::SeriesView series(const void* array) const;

private:
    Study* find(std::int32_t id);
    int create(void* target, lsCreateObject* record, std::string& detail);
    int remove(void* target, std::intptr_t id, std::string& detail);
    int shapeSizes(void* target, std::intptr_t id, std::int32_t* sizes, std::string& detail);
    int exchange(void* target, std::intptr_t id, lsControlPointsShapes* record, std::string& detail);
    int title(void* target, std::intptr_t id, coreWChar* buffer, std::string& detail);
    int setFocus(void* target, const lsFocusRecord* record, std::string& detail);
    int attach(std::intptr_t dataId, const lsAttachRecord* record, std::string& detail);
    int detach(std::intptr_t dataId, std::intptr_t id, std::string& detail);
    int drawingMode(void* target, lsDrawingMode* record, std::string& detail);
    void dataChanged(const void* array);

    Host& host_;
    DataCore& data_;
    MainWindowService& main_;
    void* handle_;
    std::map<std::int32_t, Study> studies_;
    std::vector<std::int32_t> deleted_;
    std::vector<std::int32_t> properties_;
    std::vector<Update> updates_;
    std::int32_t nextId_ = 1;
    std::int32_t focus_ = 0;
    int before_ = 0;
    int ended_ = 0;
    std::string tool_;
    std::uint32_t toolColour_ = 0x0000C0;
    Faults faults_;
    std::function<void(std::int32_t)> propertiesHandler_;
};

}  // namespace host
