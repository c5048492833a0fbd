// Line studies in saved layouts and undo commands, in-process against the emulator's
// work-data store with a fake line-study provider; the host's undo stack is played by a small
// stand-in for 3138/3139 that keeps every record in memory. "LineStudy" and "ControlPoint"
// nodes written and read back into a fresh window with the same picture, a move undone to the
// exact times and prices, deleted studies (alone or with their line) and a deleted area
// brought back.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <cstring>
#include <optional>

#include "FakeLsProvider.h"
#include "data/ScaleEngine.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "gx/ls/LineStudy.h"
#include "gx/ls/LsUtil.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/Emulator.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"
#include "module/PFChartModule.h"
#include "undo/CommandFactory.h"
#include "xml/CXMLWorkData.h"

namespace {

using gx::LineStudy;

struct LineStudyLayout : ::testing::Test {
    std::unique_ptr<host::Emulator> emulator{new host::Emulator};
    std::unique_ptr<PFChartModule> module;
    FakeLsProvider provider;
    std::vector<coreUndoStart> records;

    void SetUp() override {
        module.reset(new PFChartModule);
        module->InitializeWrap(&host::Host::callback, &host::Host::callback, emulator->host().coreHandle(), nullptr);
        host::WorkDataStore& store = emulator->workData();
        emulator->host().on(MSG_UNDO_BEGIN, [this, &store](void*, std::intptr_t p1, std::intptr_t, std::string&) {
            coreUndoBegin* begin = reinterpret_cast<coreUndoBegin*>(p1);
            coreSzNode root{};
            if (!store.describe(store.root(store.createDocument(QStringLiteral("UndoRecord"))), &root)) return 1;
            begin->root = root;
            begin->recordId = std::int32_t(records.size() + 1);
            coreUndoStart start{};
            start.document = root.document;
            start.node = root.node;
            start.widget = begin->widget;
            records.push_back(start);
            return 0;
        });
        emulator->host().on(MSG_UNDO_COMMIT, [](void*, std::intptr_t, std::intptr_t, std::string&) { return 0; });
        for (unsigned int m : {MSG_LS_CREATE_OBJECT, MSG_LS_DELETE, MSG_LS_SHAPE_SIZES, MSG_LS_GET_LIST_CONTROLPOINTER,
                               MSG_LS_PROPERTIES, MSG_LS_TITLE, MSG_LS_FOCUS, MSG_LS_ATTACH, MSG_LS_DETACH,
                               MSG_LS_END_DRAWING, MSG_LS_BEFORE_PROPERTIES})
            emulator->host().on(m, [this, m](void* target, std::intptr_t p1, std::intptr_t p2, std::string&) {
                const int r = provider.Handle(target, m, p1, p2);
                return r < 0 ? 1 : r;
            });
        // The provider a layout finds again by interface.
        emulator->core().onRequest(LS_PROVIDER_INTERFACE, [this](coreInterfaceRequest& r, std::string&) {
            if (!r.result || r.count < 1) return 1;
            r.result[0] = provider.handle();
            return 0;
        });
    }
    void TearDown() override { module.reset(); }

    std::unique_ptr<PFChartWidget> Window() {
        std::unique_ptr<PFChartWidget> widget(new pf::gui::Guarded<PFChartWidget>(module.get(), PFChartWidget::Renko, nullptr));
        widget->resize(900, 600);
        return widget;
    }
    void AddData(PFChartWidget& widget, const char* instrument = "USDCHF") {
        fxwcDropInstrument drop;
        ASSERT_TRUE(emulator->charts().dropRecord(instrument, std::nullopt, &drop));
        ASSERT_TRUE(widget.AddSecondaryPrimitive(drop.baseHandle, drop.symbol, "", drop.periodType, drop.periodLength,
                                                 0, nullptr, 0));
        // The newest data in view, with the free columns after it.
        widget.GetTimeScrollBar()->setValue(widget.GetTimeScrollBar()->maximum());
        Picture(widget);
    }
    static boost::shared_ptr<gx::Line> FirstLine(PFChartWidget& widget) {
        return widget.GetChart()->GetAreas()[0]->GetLayers()[0]->GetIndicators()[0]->GetLines()[0];
    }
    static QImage Picture(PFChartWidget& widget) {
        QImage image(widget.size(), QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        widget.Draw(painter, true);
        return image;
    }
    // A finished study with its points at these columns (from the right end) and prices.
    boost::shared_ptr<LineStudy> Make(PFChartWidget& widget, const char* name,
                                      const std::vector<std::pair<int, float> >& points) {
        const boost::shared_ptr<gx::Line> line = FirstLine(widget);
        boost::shared_ptr<LineStudy> study =
            widget.StartLineStudy(widget.GetChart()->GetAreas()[0]->Rect().center(), provider.handle(), name, 0x2040C0, false);
        if (!study) return study;
        std::vector<lsPointShape> set;
        for (std::size_t i = 0; i < points.size(); ++i) {
            lsPointShape p{};
            p.m_typePoint = i + 1 == points.size() && std::strcmp(name, "PolyLine") == 0 ? LS_POINT_LAST : LS_POINT_PLACED;
            p.m_xTime = std::int32_t(line->GetIndexVirtualTime(line->Size() - 1 - points[i].first));
            p.value = points[i].second;
            set.push_back(p);
        }
        study->RestorePoints(set);
        study->FinishCreating(true);
        study->SetState(LineStudy::StateCreated);
        study->Select(false);
        return study;
    }
    // Undoes `record` with the command `code`; the refresh answer names the record.
    void Undo(int code, const coreUndoStart& record, PFChartWidget& widget) {
        coreUndoRefresh result{};
        CommandFactory::Instance().Create(code)->UnExecute(0, &widget, const_cast<coreUndoStart*>(&record), &result, nullptr);
        // Packed records: their fields are compared by value.
        const std::uint32_t first = result.first, third = result.third, document = record.document, node = record.node;
        void* const fourth = result.fourth;
        void* const owner = record.widget;
        EXPECT_EQ(first, document);
        EXPECT_EQ(third, node);
        EXPECT_EQ(fourth, owner);
    }
    // A price `f` of the way up the first area's range.
    static float Price(PFChartWidget& widget, float f) {
        const pf::ScaleEngine& e = *widget.GetChart()->GetAreas()[0]->GetEngine();
        return e.GetMinPrice() + (e.GetMaxPrice() - e.GetMinPrice()) * f;
    }
    // The pixel of the first line's column `fromEnd` columns before its last, at `price`.
    static QPoint At(PFChartWidget& widget, int fromEnd, float price) {
        const gx::Line& line = *FirstLine(widget);
        return QPoint(gx::util::LsBase::CalcX(line.GetEngine(), line.Size() - 1 - fromEnd), line.GetEngine()->TranslateY(price));
    }
    // A left-button event at `at` (a move with no button changed, a release with none held).
    static void Mouse(PFChartWidget& widget, QEvent::Type type, const QPoint& at) {
        QMouseEvent event(type, at, widget.mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }
    static std::vector<std::tuple<int, int, int, float> > Points(const LineStudy& study) {
        std::vector<std::tuple<int, int, int, float> > out;
        for (const lsPointShape& p : study.GetInPoints()) out.emplace_back(p.m_typePoint, p.m_xTime, p.index, p.value);
        return out;
    }
};

TEST_F(LineStudyLayout, EveryStudySavedAndRestoredInAFreshWindowWithTheSamePicture) {
    std::unique_ptr<PFChartWidget> first = Window();
    AddData(*first);
    const gx::Line& line = *FirstLine(*first);
    auto price = [&](float f) { return Price(*first, f); };
    ASSERT_TRUE(Make(*first, "HLine", {{20, price(0.5f)}}));
    ASSERT_TRUE(Make(*first, "VLine", {{40, price(0.5f)}}));
    ASSERT_TRUE(Make(*first, "Line", {{80, price(0.2f)}, {-3, price(0.8f)}}));  // the second beyond the data
    ASSERT_TRUE(Make(*first, "Text", {{60, price(0.9f)}}));
    ASSERT_TRUE(Make(*first, "Arc", {{70, price(0.3f)}, {50, price(0.5f)}}));
    ASSERT_TRUE(Make(*first, "PolyLine", {{90, price(0.1f)}, {85, price(0.4f)}, {75, price(0.2f)}, {65, price(0.6f)}}));
    ASSERT_TRUE(Make(*first, "Chanel", {{140, price(0.75f)}, {130, price(0.7f)}, {100, price(0.9f)}, {120, price(0.6f)}}));
    ASSERT_TRUE(Make(*first, "Andrews Pitchfork", {{200, price(0.2f)}, {170, price(0.45f)}, {160, price(0.25f)}}));
    EXPECT_EQ(line.GetLineStudies()[2]->GetInPoints()[1].indexType, 1);
    EXPECT_EQ(line.GetLineStudies()[2]->GetInPoints()[1].index, 3);
    const QImage before = Picture(*first);
    if (const char* dir = std::getenv("PF_PICTURE_DIR")) before.save(QString::fromLocal8Bit(dir) + "/line_studies.png");

    coreSzNode root{};
    host::WorkDataStore& store = emulator->workData();
    ASSERT_TRUE(store.describe(store.root(store.createDocument(QStringLiteral("Layout"))), &root));
    const boost::shared_ptr<CXMLWorkData> tree(new CXMLWorkData(
        emulator->host().coreHandle(), reinterpret_cast<void*>(std::uintptr_t(root.document)),
        reinterpret_cast<void*>(std::uintptr_t(root.node)), &host::Host::callback));
    first->ToXML(tree);
    // The nodes as the layout holds them.
    std::unique_ptr<CXMLWorkData> widgetNode(tree->getFirstNode("PFWidget"));
    std::unique_ptr<CXMLWorkData> chartNode(widgetNode->getFirstNode("PFChart"));
    std::unique_ptr<CXMLWorkData> areaNode(chartNode->getFirstNode("PFArea"));
    std::unique_ptr<CXMLWorkData> layerNode(areaNode->getFirstNode("PFLayer"));
    std::unique_ptr<CXMLWorkData> indicatorNode(layerNode->getFirstNode("PFIndicator"));
    std::unique_ptr<CXMLWorkData> lineNode(indicatorNode->getFirstNode("PFLine"));
    std::unique_ptr<CXMLWorkData> studyNode(lineNode->getFirstNode("LineStudy"));
    ASSERT_TRUE(studyNode);
    for (const char* key : {"ObjHandle", "SourceArea", "ObjectInternalPointer", "ObjectName", "ObjectType",
                            "ObjectLineIndex", "InterfaceName", "ProviderName", "InterfaceObjectName", "BasePointTime",
                            "BasePointTimeOffs", "BasePointValue", "BasePointValueOffs", "nArea", "nLayer", "nIndicator",
                            "nLine", "nLineCount", "ctrlPointCount", "ObjectCreated"})
        EXPECT_TRUE(studyNode->hasAttribute(key)) << key;
    EXPECT_EQ(studyNode->readString("ObjectName"), QStringLiteral("HLine"));
    EXPECT_EQ(studyNode->readInteger("ObjectType"), 2);
    std::unique_ptr<CXMLWorkData> point(studyNode->getFirstNode("ControlPoint"));
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->hasAttribute("m_typePoint") && point->hasAttribute("m_xTime") && point->hasAttribute("m_y"));

    std::vector<std::vector<std::tuple<int, int, int, float> > > saved;
    for (const auto& s : line.GetLineStudies()) saved.push_back(Points(*s));
    first.reset();  // the window goes; its studies leave the host only when deleted by hand
    std::unique_ptr<PFChartWidget> second = Window();
    second->FromXML(tree);
    Picture(*second);  // the caption takes its line's colour on the first paint
    const QImage after = Picture(*second);
    if (const char* dir = std::getenv("PF_PICTURE_DIR")) after.save(QString::fromLocal8Bit(dir) + "/line_studies_restored.png");
    const gx::Line& restored = *FirstLine(*second);
    ASSERT_EQ(restored.GetLineStudies().size(), saved.size());
    for (std::size_t i = 0; i < saved.size(); ++i) EXPECT_EQ(Points(*restored.GetLineStudies()[i]), saved[i]) << i;
    EXPECT_EQ(restored.GetLineStudies()[5]->GetName(), QStringLiteral("PolyLine"));
    // Pixel for pixel; on a difference, where it lies.
    QRect differ;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (before.pixel(x, y) != after.pixel(x, y)) differ |= QRect(x, y, 1, 1);
    EXPECT_TRUE(differ.isNull()) << differ.x() << "," << differ.y() << " " << differ.width() << "x" << differ.height();
}

TEST_F(LineStudyLayout, AMoveIsUndoneToTheExactTimesAndPrices) {
    std::unique_ptr<PFChartWidget> widget = Window();
    AddData(*widget);
    PFChartWidget& w = *widget;
    const boost::shared_ptr<LineStudy> study = Make(w, "Line", {{40, Price(w, 0.3f)}, {20, Price(w, 0.5f)}});
    ASSERT_TRUE(study);
    const auto before = Points(*study);
    const QPoint middle = At(w, 30, Price(w, 0.4f));
    ASSERT_TRUE(study->PtInLS(middle));
    Mouse(w, QEvent::MouseButtonPress, middle);
    EXPECT_EQ(study->GetState(), LineStudy::StateMoving);
    Mouse(w, QEvent::MouseMove, middle);
    Mouse(w, QEvent::MouseMove, At(w, 25, Price(w, 0.45f)));
    Mouse(w, QEvent::MouseMove, At(w, 22, Price(w, 0.5f)));
    Mouse(w, QEvent::MouseButtonRelease, At(w, 22, Price(w, 0.5f)));
    ASSERT_NE(Points(*study), before);
    ASSERT_EQ(records.size(), 1u);
    // The record: the study's node with the points from before the move, marked as a move.
    const host::workdata::Node* root = emulator->workData().node(reinterpret_cast<void*>(std::uintptr_t(records[0].node)));
    ASSERT_NE(root, nullptr);
    const host::workdata::Node* saved = root->children.at(0)->children.at(0).get();
    EXPECT_EQ(saved->name, QStringLiteral("LineStudy"));
    EXPECT_EQ(*saved->attribute(QStringLiteral("MoveLS")), QStringLiteral("1"));
    EXPECT_EQ(*saved->attribute(QStringLiteral("ctrlPointCount")), QStringLiteral("2"));

    Undo(CommandFactory::LineStudyMove, records[0], *widget);
    EXPECT_EQ(Points(*study), before);
    // The other commands find nothing of their kind in the record.
    Undo(CommandFactory::LineDelete, records[0], *widget);
    Undo(CommandFactory::AreaDelete, records[0], *widget);
    EXPECT_EQ(FirstLine(*widget)->GetLineStudies().size(), 1u);
}

TEST_F(LineStudyLayout, DeletedStudiesComeBackWithOneUndoAloneOrWithTheirLine) {
    std::unique_ptr<PFChartWidget> widget = Window();
    AddData(*widget);
    ASSERT_TRUE(Make(*widget, "HLine", {{10, 0.94f}}));
    ASSERT_TRUE(Make(*widget, "Line", {{40, 0.93f}, {20, 0.95f}}));
    std::vector<std::vector<std::tuple<int, int, int, float> > > before;
    for (const auto& s : FirstLine(*widget)->GetLineStudies()) before.push_back(Points(*s));
    auto now = [&] {
        std::vector<std::vector<std::tuple<int, int, int, float> > > out;
        for (const auto& s : FirstLine(*widget)->GetLineStudies()) out.push_back(Points(*s));
        return out;
    };

    // One study through its menu: it leaves the host and comes back as a new host study.
    const std::int32_t oldId = FirstLine(*widget)->GetLineStudies()[1]->GetId();
    widget->DeleteLineStudy(FirstLine(*widget)->GetLineStudies()[1].get());
    EXPECT_EQ(FirstLine(*widget)->GetLineStudies().size(), 1u);
    EXPECT_TRUE(provider.studies[oldId].deleted);
    Undo(CommandFactory::LineDelete, records.back(), *widget);
    EXPECT_EQ(now(), before);

    // The line with its studies: one undo brings all back.
    const QString title = widget->UpdateTitle();
    FirstLine(*widget)->Select(true);
    widget->OnDelete();
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 0);
    Undo(CommandFactory::LineDelete, records.back(), *widget);
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 1);
    EXPECT_EQ(now(), before);
    EXPECT_EQ(widget->UpdateTitle(), title);
}

// The release records a move only when a point changed by more than 1e-5 in price (or at
// all in time or place); the step waits as the window's pending step while the chart handles
// the release and is on the stack once the release is done.
TEST_F(LineStudyLayout, AReleaseRecordsAMoveOnlyBeyondTheTolerance) {
    std::unique_ptr<PFChartWidget> widget = Window();
    AddData(*widget);
    const float price = Price(*widget, 0.5f);
    const boost::shared_ptr<LineStudy> study = Make(*widget, "HLine", {{30, price}});
    ASSERT_TRUE(study);
    const QPoint on = At(*widget, 39, price);
    ASSERT_TRUE(study->PtInLS(on));
    auto mouse = [&](QEvent::Type type) { Mouse(*widget, type, on); };
    // Pressed, its price changed as a drag would change it, released.
    auto moveBy = [&](float change) {
        mouse(QEvent::MouseButtonPress);
        std::vector<lsPointShape> points = study->GetInPoints();
        points[0].value += change;
        study->RestorePoints(points);
        mouse(QEvent::MouseButtonRelease);
        EXPECT_FALSE(widget->HasPendingUndo());
    };
    moveBy(4e-6f);
    EXPECT_TRUE(records.empty()) << "within 1e-5";
    moveBy(3e-5f);
    EXPECT_EQ(records.size(), 1u) << "beyond 1e-5";
}

// A move waits as the pending step: one at a time, recorded before any later step, and not
// at all when its study went in between.
TEST_F(LineStudyLayout, APendingMoveIsRecordedOnceAndBeforeLaterSteps) {
    std::unique_ptr<PFChartWidget> widget = Window();
    AddData(*widget);
    const float price = Price(*widget, 0.5f);
    boost::shared_ptr<LineStudy> a = Make(*widget, "HLine", {{30, price}});
    const boost::shared_ptr<LineStudy> b = Make(*widget, "VLine", {{60, price}});
    ASSERT_TRUE(a && b);
    auto press = [&] {
        Mouse(*widget, QEvent::MouseButtonPress, At(*widget, 39, price));
        ASSERT_NE(a->GetMoveSnapshot(), nullptr);
    };
    auto record = [&](std::size_t n) {
        const host::workdata::Node* root =
            emulator->workData().node(reinterpret_cast<void*>(std::uintptr_t(records.at(n).node)));
        return root ? root->children.at(0).get() : nullptr;
    };

    press();
    widget->RecordLineStudyMove(a.get());
    widget->RecordLineStudyMove(b.get());  // one step per release: this one adds nothing
    EXPECT_TRUE(widget->HasPendingUndo());
    EXPECT_TRUE(records.empty());
    widget->RecordScaleUndo(0);  // a later step: the move goes first
    ASSERT_EQ(records.size(), 2u);
    const host::workdata::Node* moved = record(0)->children.at(0).get();
    EXPECT_EQ(*moved->attribute(QStringLiteral("MoveLS")), QStringLiteral("1"));
    EXPECT_EQ(*moved->attribute(QStringLiteral("ObjectName")), QStringLiteral("HLine"));
    EXPECT_EQ(*moved->attribute(QStringLiteral("nodeIndex")), QStringLiteral("0"));
    for (const auto& child : record(1)->children) EXPECT_NE(child->name, QStringLiteral("LineStudy"));
    widget->ExecutePendingUndo();
    EXPECT_EQ(records.size(), 2u) << "recorded once";

    press();
    widget->RecordLineStudyMove(a.get());
    FirstLine(*widget)->DeleteLineStudy(a.get());
    a.reset();
    widget->ExecutePendingUndo();
    EXPECT_EQ(records.size(), 2u) << "the study went before its move was recorded";
}

// An area deleted and undone comes back in its place: the first area again.
TEST_F(LineStudyLayout, AnAreaDeletedAndUndoneComesBackInItsPlace) {
    std::unique_ptr<PFChartWidget> widget = Window();
    AddData(*widget);
    AddData(*widget, "TTRC");
    const QString title = widget->UpdateTitle();
    widget->RecordAreaDelete(0);
    ASSERT_EQ(records.size(), 1u);
    widget->GetChart()->DeleteArea(widget->GetChart()->GetAreas()[0]);
    EXPECT_EQ(widget->UpdateTitle(), QStringLiteral("PFChartModule, TTRC/Day"));
    Undo(CommandFactory::AreaDelete, records[0], *widget);
    EXPECT_EQ(widget->UpdateTitle(), title);  // USD/CHF first again
}

// A point whose time falls between two candles comes back, from a layout or an undone move,
// at the position the time scale gives for the line's interval: intraday the candle after
// the time, daily and longer the candle at or before it.
TEST_F(LineStudyLayout, PointBetweenCandlesComesBackAtTheCandleOfItsInterval) {
    for (const char type : {'I', 'D', 'W'}) {
        std::unique_ptr<PFChartWidget> widget = Window();
        AddData(*widget);
        const boost::shared_ptr<gx::Line> line = FirstLine(*widget);
        // The host's array names the interval; its times stay those of the data.
        line->GetArray()->name.period.type = type;
        ASSERT_EQ(line->GetPeriodType(), type);
        const boost::shared_ptr<LineStudy> study = Make(*widget, "VLine", {{20, Price(*widget, 0.5f)}});
        ASSERT_TRUE(study);
        const int k = line->Size() - 10;
        ASSERT_LT(line->GetTime(k) + 1, line->GetTime(k + 1));
        lsPointShape p = study->GetInPoints()[0];
        p.m_xTime = std::int32_t(line->GetTime(k) + 1);
        study->RestorePoints({p});
        EXPECT_EQ(study->GetInPoints()[0].index, type == 'I' ? k + 1 : k) << type;
        EXPECT_EQ(study->GetInPoints()[0].indexType, 0) << type;
        // A time exactly on a candle is that candle for every interval.
        p.m_xTime = std::int32_t(line->GetTime(k));
        study->RestorePoints({p});
        EXPECT_EQ(study->GetInPoints()[0].index, k) << type;
    }
}

// The line-delete record: one "Node" under the root; in it a "PFIndicator" per indicator
// that loses lines, carrying "nodeIndex", and a "LineStudy" per study, marked "DeleteLS".
// Undoing it always ends with 3142, also when nothing in it fits this window any more.
TEST_F(LineStudyLayout, LineDeleteRecordKeepsItsContentInOneNode) {
    std::unique_ptr<PFChartWidget> widget = Window();
    AddData(*widget);
    ASSERT_TRUE(Make(*widget, "HLine", {{10, Price(*widget, 0.5f)}}));
    FirstLine(*widget)->Select(true);
    widget->OnDelete();
    ASSERT_EQ(records.size(), 1u);
    const host::workdata::Node* root = emulator->workData().node(reinterpret_cast<void*>(std::uintptr_t(records[0].node)));
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->children.size(), 1u);
    const host::workdata::Node& content = *root->children[0];
    EXPECT_EQ(content.name, QStringLiteral("Node"));
    std::vector<QString> names;
    for (const auto& child : content.children) names.push_back(child->name);
    EXPECT_EQ(names, (std::vector<QString>{QStringLiteral("PFIndicator"), QStringLiteral("LineStudy")}));
    EXPECT_EQ(*content.children[0]->attribute(QStringLiteral("nodeIndex")), QStringLiteral("0"));
    EXPECT_EQ(*content.children[0]->attribute(QStringLiteral("ObjectType")), QStringLiteral("0"));
    EXPECT_EQ(*content.children[1]->attribute(QStringLiteral("DeleteLS")), QStringLiteral("1"));
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 0);

    int refreshed = 0;
    emulator->host().on(MSG_UNDO_REFRESHED, [&refreshed](void*, std::intptr_t, std::intptr_t, std::string&) {
        ++refreshed;
        return 0;
    });
    Undo(CommandFactory::LineDelete, records[0], *widget);
    EXPECT_EQ(refreshed, 1);
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 1);
    EXPECT_EQ(FirstLine(*widget)->GetLineStudies().size(), 1u);
    // A record without any of its nodes restores nothing; the host still hears the end.
    const coreUndoStart empty{};
    Undo(CommandFactory::LineDelete, empty, *widget);
    EXPECT_EQ(refreshed, 2);
    EXPECT_EQ(FirstLine(*widget)->GetLineStudies().size(), 1u);
}

}  // namespace
