#include "host/cli/ChartPicture.h"

#include <QPainter>
#include <algorithm>
#include <boost/shared_ptr.hpp>
#include <cstring>

#include "data/DataSource.h"
#include "data/PointDataFactory.h"
#include "data/ScaleEngine.h"
#include "gx/Line.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/data/ChartObject.h"
#include "module/CModule.h"

namespace host {
namespace cli {

namespace {

// The module side of the requests: a module object whose callback is the emulated host's,
// as the terminal hands it over at Initialize.
class RequestModule : public CModule {
public:
    explicit RequestModule(Host& host)
        : CModule("PFChart render", 1, 1, 9, "PFChartModule", "CTranslatePFgraph") {
        InitializeWrap(&Host::callback, &Host::callback, host.coreHandle(), host.coreHandle2());
    }
};

const int kCaptionHeight = 28;
const int kMargin = 8;

}  // namespace

QString ChartPicture::Describe() const {
    // Renko always reverses after two bricks, so its reversal says nothing.
    const QString reverses =
        type == data::ChartType::Renko ? QString() : QStringLiteral(", reversal %1").arg(reversal);
    return QStringLiteral("%1 %2, box %3%4: columns %5..%6 of %7, prices %8..%9")
        .arg(QString::fromStdString(instrument), QString::fromLatin1(data::chartTypeName(type)))
        .arg(box)
        .arg(reverses)
        .arg(first)
        .arg(first + columns - 1)
        .arg(records)
        .arg(double(low))
        .arg(double(high));
}

bool DrawChart(Emulator& emulator, ChartPicture& picture, std::string* error) {
    DataCore& core = emulator.data();
    data::Instrument* instrument = core.instrument(picture.instrument);
    if (!instrument) {
        *error = "no instrument " + picture.instrument;
        return false;
    }
    RequestModule module(emulator.host());
    coreNameInstrument name = instrument->nameRecord();
    void* handle = pf::DataSource::Create(&module, core.providerInterface(picture.type), name.name, "",
                                          name.period, 1, nullptr);
    if (!handle) {
        *error = "the data core created no " + std::string(data::chartTypeName(picture.type)) + " object";
        return false;
    }
    const data::ChartSettings& s = picture.settings;
    if ((s.box != 0 || s.reversal != 0 || s.percent != 0) && !core.configure(handle, s, error)) return false;
    const data::ChartObject* chart = core.chart(handle);
    picture.box = chart->settings().box;
    picture.reversal = chart->settings().reversal;

    // As the chart window does: a data source on the object, refreshed by an update.
    pf::DataSource source(&module, nullptr, handle, name, core.baseHandle(instrument->name()));
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.handle = handle;
    source.UpdateData(&update);
    fxDataPointArray* array = source.GetArray(0);
    picture.records = pf::PointData::RecordCount(array);
    if (picture.records == 0) {
        *error = "the chart object has no records";
        return false;
    }

    // The most recent columns that fit at the requested width.
    const QRect area(kMargin, kCaptionHeight + kMargin, picture.size.width() - 2 * kMargin,
                     picture.size.height() - kCaptionHeight - 2 * kMargin);
    picture.columns = std::max(1, std::min(picture.records, area.width() / std::max(1, picture.columnWidth)));
    picture.first = picture.records - picture.columns;
    picture.low = picture.high = pf::PointData::Record(array, picture.first).value;
    for (int i = picture.first; i < picture.records; ++i) {
        const fxChartTypeRecord r = pf::PointData::Record(array, i);
        picture.low = std::min({picture.low, r.value, r.end});
        picture.high = std::max({picture.high, r.value + r.step, r.end + r.step});
    }

    const boost::shared_ptr<pf::ScaleEngine> engine(new pf::ScaleEngine);
    engine->SetColumnCount(picture.columns);
    engine->SetFirstColumn(picture.first);
    engine->Update(area, 0.0f, float(picture.records - 1), picture.low, picture.high);
    gx::Line line;
    boost::shared_ptr<pf::PointData> renderer;
    try {
        renderer = pf::PointDataFactory::Instance().Create(array->name.name, engine, &line);
    } catch (const std::exception& e) {
        *error = e.what();
        return false;
    }

    picture.image = QImage(picture.size, QImage::Format_ARGB32_Premultiplied);
    picture.image.fill(Qt::white);
    QPainter painter(&picture.image);
    painter.setPen(QColor(90, 90, 90));
    painter.drawText(QRect(kMargin, 0, area.width(), kCaptionHeight), Qt::AlignVCenter | Qt::AlignLeft,
                     picture.Describe());
    renderer->Draw(painter, array);
    return true;
}

bool SaveChart(Emulator& emulator, ChartPicture& picture, const QString& path, std::string* error) {
    if (!DrawChart(emulator, picture, error)) return false;
    if (picture.image.save(path, "PNG")) return true;
    *error = "cannot write " + path.toStdString();
    return false;
}

}  // namespace cli
}  // namespace host
