// A line study in the chart's layout: a "LineStudy" node under its line's node with one
// "ControlPoint" child per input point (up to the one that ends an open list).
//
// "InterfaceName", "ProviderName" and "InterfaceObjectName" are the head node of the host
// object behind the line's data (3012); loading does not need them.
// Besides the keys of every saved object, "ObjectColor" keeps the colour the study was
// created with, so that the host makes it again in that colour.
// The study's base point ("BasePointTime", "BasePointValue") is its first input point; the
// offsets are 0. Restoring creates the study anew in the host under its type name and puts
// the saved points back by their times, so a point beyond the data lands as far beyond the
// last candle as the time says. The provider is the one that created the study when it is
// still known in this process (an undo), otherwise the host's "LINESTUDY" interface. The
// host hears the creation's sequence (4500, 4516, 3068, 4517, 4505, 4510) and one more 4510
// with the restored points, nothing else.
#include <QByteArray>
#include <cstring>
#include <memory>

#include "abi/messages.h"
#include "abi/records/interface_records.h"
#include "abi/records/workdata_records.h"
#include "data/DataSource.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/ls/LineStudy.h"
#include "module/PFChartModule.h"
#include "module/LogHelper.h"
#include "xml/CXMLWorkData.h"

namespace gx {

namespace {

const int kObjectLineStudy = 2;

void* FindProvider(const CModule* module) {
    if (!module || !module->sendToHost) return nullptr;
    void* found = nullptr;
    coreInterfaceRequest request;
    std::memset(&request, 0, sizeof request);
    std::strncpy(request.kind, LS_PROVIDER_INTERFACE, sizeof request.kind - 1);
    std::strncpy(request.provider, "TELVIX", sizeof request.provider - 1);
    request.count = 1;
    request.result = &found;
    if (module->sendToHost(module->hostHandle, MSG_GET_INTERFACE, reinterpret_cast<std::intptr_t>(&request), 0) != 0)
        return nullptr;
    return found;
}

QString Local8(const char* text, std::size_t size) {
    return QString::fromLocal8Bit(text, static_cast<int>(strnlen(text, size)));
}

}  // namespace

std::unique_ptr<CXMLWorkData> LineStudy::ToXML(CXMLWorkData* lineNode, const lsControlPointsShapesWrap* snapshot) const {
    std::unique_ptr<CXMLWorkData> node(lineNode ? lineNode->createNode("LineStudy") : nullptr);
    if (!node) return node;
    const std::vector<lsPointShape>& points = snapshot ? snapshot->In() : in_;
    Indicator* indicator = line_ ? line_->GetIndicator() : nullptr;
    Layer* layer = indicator ? indicator->GetLayer() : nullptr;
    Area* area = layer ? layer->GetArea() : nullptr;
    node->writeInteger("ObjHandle", id_);
    node->writeInteger("SourceArea", area ? area->GetIndex() : -1);
    node->writeInt64("ObjectInternalPointer", static_cast<qint64>(reinterpret_cast<std::uintptr_t>(provider_)));
    node->writeString("ObjectName", name_);
    node->writeInteger("ObjectType", kObjectLineStudy);
    node->writeInteger("ObjectLineIndex", line_ ? line_->GetIndex() - 1 : -1);
    // The line's data description: the head node of the host object behind its data array.
    coreHeadNodeInfo head;
    std::memset(&head, 0, sizeof head);
    fxDataPointArray* array = line_ ? line_->GetArray() : nullptr;
    void* owner = nullptr;
    if (array) std::memcpy(&owner, reinterpret_cast<const char*>(array) + offsetof(fxDataPointArray, owner), sizeof owner);
    if (owner && Send(Module() ? Module()->hostHandle : nullptr, MSG_HEAD_NODE_INFO, reinterpret_cast<std::intptr_t>(owner),
                      reinterpret_cast<std::intptr_t>(&head)) != 0)
        std::memset(&head, 0, sizeof head);
    node->writeString("InterfaceName", Local8(head.interfaceName, sizeof head.interfaceName));
    node->writeString("ProviderName", Local8(head.provider, sizeof head.provider));
    node->writeString("InterfaceObjectName", Local8(head.name, sizeof head.name));
    const lsPointShape* base = points.empty() ? nullptr : &points[0];
    node->writeInteger("BasePointTime", base ? base->m_xTime : 0);
    node->writeFloat("BasePointTimeOffs", 0.0f);
    node->writeFloat("BasePointValue", base ? float(base->value) : 0.0f);
    node->writeFloat("BasePointValueOffs", 0.0f);
    node->writeInteger("nArea", area ? area->GetIndex() : -1);
    node->writeInteger("nLayer", layer ? layer->GetIndex() : -1);
    node->writeInteger("nIndicator", indicator ? indicator->GetIndex() : -1);
    node->writeInteger("nLine", line_ ? line_->GetIndex() : -1);
    node->writeInteger("nLineCount", indicator ? indicator->GetLineCount() : 0);
    node->writeInteger("ctrlPointCount", static_cast<int>(points.size()));
    node->writeInteger("ObjectCreated", finished_ ? 1 : 0);
    // The study's own parameter: the colour it was created with (0x00RRGGBB).
    node->writeInteger("ObjectColor", static_cast<int>(color_));
    node->writeParameters();
    for (const lsPointShape& p : points) {
        std::unique_ptr<CXMLWorkData> child(node->createNode("ControlPoint"));
        if (!child) break;
        child->writeInteger("m_typePoint", p.m_typePoint);
        child->writeInteger("m_xTime", p.m_xTime);
        child->writeFloat("m_y", p.value);
        child->writeParameters();
        if (p.m_typePoint == LS_POINT_LAST) break;
    }
    return node;
}

boost::shared_ptr<LineStudy> LineStudy::FromXML(const boost::shared_ptr<Line>& line, CXMLWorkData* node) {
    boost::shared_ptr<LineStudy> none;
    if (!line || !node || node->readInteger("ObjectType", -1) != kObjectLineStudy) return none;
    const QString name = node->readString("ObjectName");
    if (name.isEmpty()) return none;
    Chart* chart = line->GetChart();
    PFChartWidget* widget = chart ? chart->GetWidget() : nullptr;
    const CModule* module = widget && widget->GetModule() ? static_cast<const CModule*>(widget->GetModule()) : CModule::Current();
    void* provider = reinterpret_cast<void*>(static_cast<std::uintptr_t>(node->readInt64("ObjectInternalPointer", 0)));
    if (!IsKnownProvider(provider)) provider = FindProvider(module);
    if (!provider) return none;

    std::vector<lsPointShape> points;
    std::unique_ptr<CXMLWorkData> child(node->getFirstNode("ControlPoint"));
    while (child && static_cast<int>(points.size()) < kMaxPoints) {
        lsPointShape p;
        std::memset(&p, 0, sizeof p);
        p.m_typePoint = child->readInteger("m_typePoint", LS_POINT_PLACED);
        p.m_xTime = child->readInteger("m_xTime", 0);
        p.value = child->readFloat("m_y", 0.0f);
        points.push_back(p);
        if (p.m_typePoint == LS_POINT_LAST) break;
        child.reset(node->getNextNode());
    }

    boost::shared_ptr<LineStudy> study;
    try {
        const std::uint32_t color = static_cast<std::uint32_t>(node->readInteger("ObjectColor", 0)) & 0xFFFFFFu;
        study.reset(new LineStudy(line.get(), provider, name, line->GetEngine(), line->Rect(), color));
        // Restored, not placed: finished before its points go to the host, so that their one
        // exchange (4510) carries the finished flag. The terminal's drawing mode is none of
        // its business (no 3501, the cursor left alone: a study tool the trader has chosen
        // stays chosen), it is bound to its data once, by its creation (3068), and it shows
        // unselected without a second focus notice (4517).
        study->finished_ = true;
        study->cps_.finished = 1;
        study->state_ = StateCreated;
        study->Object::Select(false);
        study->RestorePoints(points);
    } catch (const std::exception& e) {
        LogHelper::ShowLogInfo(1, 4, QStringLiteral("Line study \"%1\" not restored: %2").arg(name, QString::fromLocal8Bit(e.what())));
        return none;
    }
    line->AddLineStudy(study);
    return study;
}

void LineStudy::RestorePoints(const std::vector<lsPointShape>& points) {
    const int count = static_cast<int>(std::min(points.size(), in_.size()));
    int placed = 0;
    for (int i = 0; i < count; ++i) {
        lsPointShape& p = in_[std::size_t(i)];
        p.m_typePoint = points[std::size_t(i)].m_typePoint;
        p.m_xTime = points[std::size_t(i)].m_xTime;
        p.value = points[std::size_t(i)].value;
        RecomputePositionByTime(p, p.m_xTime);
        if (p.m_typePoint != LS_POINT_NOT_PLACED) placed = i + 1;
        if (p.m_typePoint == LS_POINT_LAST) break;
    }
    placed_ = std::max(placed_, placed);
    GetListControlPointer();
}

}  // namespace gx
