// `pfhost chart --study NAME:TIME,PRICE[:TIME,PRICE...]`: each study given is placed on the
// window with the mouse before the picture is taken, and a layout saved afterwards holds
// them. Malformed studies are refused before anything starts.
#include <gtest/gtest.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include "PfhostProcess.h"
#include "ModuleHostTest.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/ChartWindows.h"
#include "host/data/ChartObject.h"

namespace {

class PfhostStudies : public ModuleHostTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(work.isValid());
        pfhost = PfhostBeside(QStringLiteral(PF_MODULE_PATH));
        if (pfhost.isEmpty()) GTEST_SKIP() << "pfhost is not built";
        Start();
        // The columns the program's window shows: the same chart made here.
        void* widget = emulator->charts().create(host::data::ChartType::PointAndFigure);
        ASSERT_NE(widget, nullptr);
        ASSERT_EQ(emulator->charts().drop(widget, {"USDCHF"}), 0);
        const auto objects = emulator->data().chartObjects();
        ASSERT_EQ(objects.size(), 1u);
        columns = objects[0]->records();
        ASSERT_GT(columns.size(), 300u);
        emulator->charts().destroyAll();
    }
    // "TIME,PRICE" of column `i`: early in the history, which a first display shows.
    QString At(std::size_t i, double offset = 0.0) const {
        return QStringLiteral("%1,%2").arg(columns[i].time).arg(double(columns[i].value) + offset, 0, 'f', 4);
    }
    QString Run(const QStringList& extra, int* status) {
        return RunPfhost(pfhost,
                         QStringList{"chart", "--data", "USDCHF", "--type", "pf", "--size", "800x500", "--out",
                                     work.filePath("s.png")} + extra,
                         status);
    }
    // The "ObjectName" of every "LineStudy" node of a saved layout, in order.
    static QStringList StudiesIn(const QString& path) {
        QFile file(path);
        QDomDocument doc;
        if (!file.open(QIODevice::ReadOnly) || !doc.setContent(&file)) return {QStringLiteral("<unreadable>")};
        QStringList names;
        const QDomNodeList nodes = doc.elementsByTagName(QStringLiteral("LineStudy"));
        for (int i = 0; i < nodes.size(); ++i) {
            const QDomElement e = nodes.at(i).toElement();
            QString name = e.attribute(QStringLiteral("ObjectName"));
            // Written as a child node where the store keeps attributes so.
            if (name.isEmpty()) name = e.firstChildElement(QStringLiteral("ObjectName")).text();
            names << name + QStringLiteral("/") + QString::number(e.elementsByTagName(QStringLiteral("ControlPoint")).size());
        }
        return names;
    }

    QTemporaryDir work;
    QString pfhost;
    std::vector<fxChartTypeRecord> columns;
};

TEST_F(PfhostStudies, PlacesEveryStudyGivenAndTheSavedLayoutHoldsThem) {
    int status = -1;
    QString out = Run({}, &status);
    ASSERT_EQ(status, 0) << out.toStdString();
    const QImage plain(work.filePath("s.png"));
    ASSERT_FALSE(plain.isNull());

    const QString layout = work.filePath("studies.xml");
    out = Run({"--study", "Line:" + At(20) + ":" + At(80, 0.01), "--study", "HLine:" + At(50), "--study",
               "PolyLine:" + At(30) + ":" + At(60, 0.005) + ":" + At(90),
               "--save-layout", layout},
              &status);
    ASSERT_EQ(status, 0) << out.toStdString();
    EXPECT_TRUE(out.contains("3 line studies placed")) << out.toStdString();
    EXPECT_NE(QImage(work.filePath("s.png")), plain);
    // One node per study, in the order given, with its control points (the polyline's open
    // list ends at its third).
    EXPECT_EQ(StudiesIn(layout), (QStringList{"Line/2", "HLine/1", "PolyLine/3"}));
}

TEST_F(PfhostStudies, RefusesAMalformedStudyWithAMessage) {
    int status = -1;
    // Too few points for the type: named before anything starts.
    QString out = Run({"--study", "Line:" + At(20)}, &status);
    EXPECT_EQ(status, 2);
    EXPECT_TRUE(out.contains("\"Line\" takes 2 points, not 1")) << out.toStdString();
    out = Run({"--study", "Ellipse:" + At(20)}, &status);
    EXPECT_EQ(status, 2);
    EXPECT_TRUE(out.contains("no study named \"Ellipse\"")) << out.toStdString();
    // Not NAME:TIME,PRICE at all.
    for (const QString& bad : {QStringLiteral("Line"), QStringLiteral("Line:12"), QStringLiteral(":1,1"),
                               QStringLiteral("HLine:-5,1.0"), QStringLiteral("HLine:1,abc")}) {
        out = Run({"--study", bad}, &status);
        EXPECT_EQ(status, 2) << bad.toStdString();
        EXPECT_TRUE(out.contains("usage: pfhost chart")) << out.toStdString();
    }
    // Well formed, but out of the window's view: the chart is left and the reason given.
    out = Run({"--study", "HLine:" + At(columns.size() - 1)}, &status);
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(out.contains("--study HLine")) << out.toStdString();
}

}  // namespace
