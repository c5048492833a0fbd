// A chart window through the real entry points against what a careless or hostile host may
// send: null records, impossible counts, unterminated texts, unknown instruments and
// messages about windows that are gone. Nothing may crash, read past a record or change
// the window. Also the window's title and the switch of its price type.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>
#include <QRegularExpression>
#include <cstring>
#include <memory>
#include <vector>

#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"

using host::data::ChartType;

namespace {

class HostileWindow : public ModuleHostTest {
protected:
    void SetUp() override {
        Start();
        widget = emulator->charts().create(ChartType::PointAndFigure);
        ASSERT_NE(widget, nullptr);
        pf = emulator->core().componentObject("Points and Figures");
    }
    host::ChartWindows& Charts() { return emulator->charts(); }
    QImage Picture() { return Charts().grab(widget, QSize(640, 480)); }
    std::size_t Count(unsigned int message) { return H().journal().find(message).size(); }
    // 5007 with `count` claimed for the records given.
    int Drop(std::int32_t count, fxwcDropInstrument* records) {
        fxwcDropList list;
        list.count = count;
        list.records = records;
        return H().send(pf, MSG_WC_DROP_INSTRUMENTS, P(widget), P(&list));
    }

    void* widget = nullptr;
    void* pf = nullptr;
};

TEST_F(HostileWindow, BadDropsAndCreatesChangeNothing) {
    const QImage empty = Picture();
    const std::size_t widgets = Charts().widgets().size();
    EXPECT_EQ(H().send(pf, MSG_WC_CREATE, 0), 0);  // the module switch's answer reaches the host
    EXPECT_EQ(Charts().widgets().size(), widgets);

    // Null list, null records, negative and absurd counts: the records are never read.
    fxwcDropInstrument one;
    ASSERT_TRUE(Charts().dropRecord("USDCHF", std::nullopt, &one));
    EXPECT_EQ(H().send(pf, MSG_WC_DROP_INSTRUMENTS, P(widget), 0), 0);
    EXPECT_EQ(Drop(1, nullptr), 0);
    EXPECT_EQ(Drop(-1, &one), 0);
    EXPECT_EQ(Drop(0x7fffffff, &one), 0);
    EXPECT_EQ(Drop(1 << 20, &one), 0);
    EXPECT_EQ(Count(MSG_HEAD_NODE_INFO), 0u);
    EXPECT_EQ(Count(MSG_CREATE_DPA), 0u);

    // An instrument the host does not know: asked about, no data object, no area.
    fxwcDropInstrument unknown = one;
    unknown.baseHandle = reinterpret_cast<void*>(std::intptr_t(0x7777));
    std::memset(unknown.name, 0, sizeof unknown.name);
    std::memset(unknown.symbol, 'Z', sizeof unknown.symbol);  // not terminated
    std::memset(unknown.providerName, 'Q', sizeof unknown.providerName);
    EXPECT_EQ(Drop(1, &unknown), 0);
    EXPECT_EQ(Count(MSG_HEAD_NODE_INFO), 1u);
    EXPECT_EQ(Count(MSG_DPA_SUBSCRIBE), 0u);
    EXPECT_EQ(Picture(), empty);

    // A drop for a widget the interface never made is not read at all.
    EXPECT_EQ(H().send(pf, MSG_WC_DROP_INSTRUMENTS, 0x5150, P(&one)), 0);
    EXPECT_EQ(Count(MSG_HEAD_NODE_INFO), 1u);
}

TEST_F(HostileWindow, EveryRecordOfADropIsTakenAndAnEmptyDropStillFocusesTheWindow) {
    fxwcDropInstrument one;
    ASSERT_TRUE(Charts().dropRecord("USDCHF", std::nullopt, &one));
    // Far more instruments than a window shows at once: each is asked about.
    std::vector<fxwcDropInstrument> many(100, one);
    for (fxwcDropInstrument& r : many) r.baseHandle = reinterpret_cast<void*>(std::intptr_t(0x7777));
    EXPECT_EQ(Drop(std::int32_t(many.size()), many.data()), 0);
    EXPECT_EQ(Count(MSG_HEAD_NODE_INFO), many.size());

    // A drop with nothing in it: the window takes the focus all the same.
    QWidget* chart = Charts().chartWidget(widget);
    ASSERT_NE(chart, nullptr);
    for (std::int32_t count : {0, 1}) {
        chart->clearFocus();
        ASSERT_NE(chart->window()->focusWidget(), chart);
        EXPECT_EQ(Drop(count, count ? nullptr : &one), 0);
        EXPECT_EQ(chart->window()->focusWidget(), chart) << count;
    }
    chart->clearFocus();
    EXPECT_EQ(H().send(pf, MSG_WC_DROP_INSTRUMENTS, P(widget), 0), 0);
    EXPECT_EQ(chart->window()->focusWidget(), chart);
    EXPECT_EQ(Count(MSG_HEAD_NODE_INFO), many.size());
}

TEST_F(HostileWindow, MessagesForAWindowThatIsGoneTouchNothing) {
    ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
    void* gone = widget;
    void* other = Charts().create(ChartType::PointAndFigure);
    ASSERT_TRUE(Charts().destroy(gone));
    const std::size_t announced = Charts().destroyedRecords().size();
    for (unsigned int m : {MSG_WC_DESTROY, MSG_WC_RESIZE, MSG_WC_SHOW, MSG_WC_PRINT})
        EXPECT_EQ(H().send(pf, m, P(gone)), 0) << m;
    // The host hears of the second destroy too, without the gone window's handle (the
    // module does not read an address it no longer lists).
    ASSERT_EQ(Charts().destroyedRecords().size(), announced + 1);
    EXPECT_EQ(Charts().destroyedRecords().back().widget, gone);
    EXPECT_EQ(Charts().destroyedRecords().back().hostHandle, nullptr);
    fxwcDropInstrument one;
    ASSERT_TRUE(Charts().dropRecord("USDCHF", std::nullopt, &one));
    fxwcDropList list{1, &one};
    EXPECT_EQ(H().send(pf, MSG_WC_DROP_INSTRUMENTS, P(gone), P(&list)), 0);
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.subscriber = gone;
    EXPECT_EQ(H().send(pf, MSG_DATA_UPDATED, P(&update)), 0);
    EXPECT_EQ(H().send(pf, MSG_DATA_UPDATED, 0), 0);
    EXPECT_EQ(Charts().destroyedRecords().size(), announced + 1);
    // The window that is left still works.
    EXPECT_EQ(Charts().drop(other, {"TTRC"}), 0);
    EXPECT_EQ(Charts().title(other), QStringLiteral("PFChartModule, TTRC/Day"));
}

TEST_F(HostileWindow, TitleNamesTheInstrumentsAndTheHostHearsEachChange) {
    const std::size_t before = Count(MSG_TITLE_CHANGED);
    ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
    EXPECT_EQ(Charts().title(widget), QStringLiteral("PFChartModule, USDCHF/30 Min"));
    ASSERT_EQ(Charts().drop(widget, {"TTRC"}), 0);
    EXPECT_EQ(Charts().title(widget), QStringLiteral("PFChartModule, USDCHF/30 Min, TTRC/Day"));
    // Only changes are told: the repaint timer and later messages repeat nothing.
    EXPECT_EQ(Count(MSG_TITLE_CHANGED), before + 2);
    EXPECT_EQ(Charts().show(widget), 0);
    EXPECT_EQ(Count(MSG_TITLE_CHANGED), before + 2);
}

TEST_F(HostileWindow, PriceTypeSwitchAsksForNewDataAndIsCounted) {
    ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
    struct {
        std::int32_t count = 0;
        std::int32_t entries[4][2] = {};
    } list;
    // No line is shown as bid or ask yet: the module asks to switch to bid.
    EXPECT_EQ(H().send(nullptr, MSG_NEED_TO_CONVERT, P(&list)), 0);
    ASSERT_EQ(list.count, 1);
    EXPECT_EQ(list.entries[0][0], 1);
    EXPECT_EQ(list.entries[0][1], 1);
    const std::size_t created = Count(MSG_CREATE_DPA);
    const std::size_t released = Count(MSG_DPA_UNSUBSCRIBE);
    EXPECT_EQ(H().send(nullptr, MSG_CONVERT_TO_TYPE, 1), 0);  // bid
    EXPECT_EQ(Count(MSG_CREATE_DPA), created + 1);
    EXPECT_EQ(Count(MSG_DPA_UNSUBSCRIBE), released + 1);
    // Now a bid line is shown and none in the middle price: the answer is "switch to middle".
    EXPECT_EQ(H().send(nullptr, MSG_NEED_TO_CONVERT, P(&list)), 0);
    ASSERT_EQ(list.count, 2);
    EXPECT_EQ(list.entries[1][0], 1);
    EXPECT_EQ(list.entries[1][1], 0);
    EXPECT_EQ(Charts().title(widget), QStringLiteral("PFChartModule, USDCHF/30 Min"));
}

// Not hostile: a user moving the mouse over the window and switching the cross cursor on.
using WindowUse = HostileWindow;

TEST_F(WindowUse, MouseOverTheAreaShowsTimeAndPriceAndTheCrossCursorFollowsIt) {
    ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
    const QImage plain = Picture();
    QWidget* container = Charts().container(widget);
    const auto children = container->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(children.size(), 1);
    QWidget* chart = children[0];
    const QPoint at(chart->width() / 2, chart->height() / 2);
    auto send = [&](QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, chart->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(chart, &event);
    };
    send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
    const QString time = emulator->mainWindow().timeLabel()->text();
    const QString price = emulator->mainWindow().priceLabel()->text();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d\\d\\.\\d\\d\\.(199[6-9]|200[01]) \\d\\d:\\d\\d:\\d\\d$")).match(time).hasMatch())
        << time.toStdString();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^1\\.\\d{4}$")).match(price).hasMatch()) << price.toStdString();

    // The middle button switches the cross cursor on: a dark line runs down through the mouse.
    send(QEvent::MouseButtonPress, Qt::MiddleButton, Qt::MiddleButton);
    send(QEvent::MouseButtonRelease, Qt::MiddleButton, Qt::NoButton);
    const QImage cross = Picture();
    ASSERT_NE(cross, plain);
    int dark = 0;
    const QPoint in = chart->mapTo(container, at);
    for (int y = 0; y < cross.height(); ++y)
        if (qGray(cross.pixel(in.x(), y)) < 40) ++dark;
    EXPECT_GT(dark, cross.height() / 2);
    // And off again.
    send(QEvent::MouseButtonPress, Qt::MiddleButton, Qt::MiddleButton);
    send(QEvent::MouseButtonRelease, Qt::MiddleButton, Qt::NoButton);
    EXPECT_EQ(Picture(), plain);
}

TEST_F(WindowUse, StatusBarTimeIsThatOfTheLineUnderTheMouse) {
    // Two instruments of different periods and years, one area each.
    ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
    ASSERT_EQ(Charts().drop(widget, {"TTRC"}), 0);
    Picture();
    QWidget* chart = Charts().chartWidget(widget);
    ASSERT_NE(chart, nullptr);
    for (int area : {0, 1}) {
        QPoint at;
        QString tip;
        ASSERT_TRUE(Charts().figureIn(widget, area, &at, &tip)) << area;
        QMouseEvent event(QEvent::MouseMove, at, chart->mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(chart, &event);
        // The tip's last line is the time of the figure under the mouse.
        const QString tipTime = tip.section(QLatin1Char('\n'), -1);
        EXPECT_EQ(emulator->mainWindow().timeLabel()->text(), tipTime) << area;
    }
}

TEST_F(WindowUse, CaptionMarksAnInstrumentInADealingDayOff) {
    // A dealing with one account, found by the module when the dealing is ready (3066).
    void* dealing = emulator->dealing().addDealing("Dealer");
    ASSERT_TRUE(emulator->dealing().addAccount(dealing, 7, QStringLiteral("Main")));
    H().send(nullptr, MSG_DEALING_READY);
    ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
    // Red pixels that `image` has and `plain` has not, in the caption strip under the tool bar.
    auto redAdded = [](const QImage& image, const QImage& plain) {
        int red = 0;
        for (int y = 24; y < 24 + 16; ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QRgb p = image.pixel(x, y);
                if (p != plain.pixel(x, y) && qRed(p) > 180 && qGreen(p) < 90 && qBlue(p) < 90) ++red;
            }
        return red;
    };
    const QImage trading = Picture();
    ASSERT_TRUE(emulator->dealing().setDayOff(dealing, 7, "USDCHF", true));
    ASSERT_GT(emulator->dealing().raiseDayOff(dealing, 7), 0);
    EXPECT_GT(redAdded(Picture(), trading), 20);  // "Non-trading time" in red after the caption
    ASSERT_TRUE(emulator->dealing().setDayOff(dealing, 7, "USDCHF", false));
    emulator->dealing().raiseDayOff(dealing, 7);
    EXPECT_EQ(Picture(), trading);
}

}  // namespace
