// A Point and Figure chart window in-process, its module attached to a FakeHost that serves
// one synthetic array per instrument it knows (3001, 3008, 3043, 3042), describes dragged
// instruments by name (3119) and answers 3012; and a helper that answers the next modal
// dialog from the event loop, so that no test waits for a person.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QPainter>
#include <QTimer>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>

#include "FakeHost.h"
#include "abi/messages.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "module/PFChartModule.h"

// Runs `answer` on the modal dialog as soon as one is open, looking every 10 ms for about
// five seconds; a dialog the answer leaves open is rejected, so a test never hangs on it.
inline void AnswerModal(std::function<void(QWidget*)> answer, int tries = 500, int delay = 0) {
    QTimer::singleShot(delay, [answer, tries] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal) {
            if (tries > 1) AnswerModal(answer, tries - 1, 10);
            return;
        }
        answer(modal);
        if (QApplication::activeModalWidget() != modal) return;
        if (QDialog* dialog = qobject_cast<QDialog*>(modal)) dialog->reject();
        else modal->close();
    });
}

struct ChartWindowFixture : ::testing::Test {
    struct Series {
        QString name;
        std::vector<fxChartTypeRecord> records;
        std::vector<fxDataPointField> fields;
        fxDataPointArray array{};
    };

    FakeHost host;
    PFChartModule module;
    std::deque<Series> series;  // the host's data objects; their addresses are the handles
    std::unique_ptr<PFChartWidget> widget;

    void SetUp() override {
        host.attach(module);
        host.on(MSG_GET_INTERFACE, [](void*, std::intptr_t p1, std::intptr_t) {
            coreInterfaceRequest* r = reinterpret_cast<coreInterfaceRequest*>(p1);
            if (std::strcmp(r->kind, "CHARTTYPE") != 0 || r->count < 1) return 1;
            r->result[0] = reinterpret_cast<void*>(std::intptr_t(0x2000));
            return 0;
        });
        host.on(MSG_CREATE_DPA, [this](void*, std::intptr_t p1, std::intptr_t) {
            coreCreateDpaData* r = reinterpret_cast<coreCreateDpaData*>(p1);
            coreWChar name[255];
            std::memcpy(name, r->name.name, sizeof name);
            for (Series& s : series)
                if (QString::fromUtf16(reinterpret_cast<const char16_t*>(name)) == s.name) r->handle = &s;
            return 0;
        });
        host.on(MSG_DPA_COUNT, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            const std::int32_t count = Known(p1) ? 1 : 0;
            std::memcpy(reinterpret_cast<void*>(p2), &count, sizeof count);
            return 0;
        });
        host.on(MSG_DPA_LIST, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            coreListCreateData* list = reinterpret_cast<coreListCreateData*>(p2);
            if (Series* s = Known(p1)) list->arrays[0] = &s->array;
            return 0;
        });
        host.on(MSG_DESCRIBE_DRAG, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            const coreDragData drag = *reinterpret_cast<const coreDragData*>(p1);
            const QByteArray symbol(drag.bytes, drag.length);
            if (!Find(QString::fromLatin1(symbol))) return 1;
            fxwcDropInstrument* r = reinterpret_cast<fxwcDropInstrument*>(p2);
            std::memcpy(r->symbol, symbol.constData(), std::size_t(symbol.size()));
            r->periodType = 'I';
            r->periodLength = 60;
            return 0;
        });
        host.on(MSG_HEAD_NODE_INFO, [](void*, std::intptr_t, std::intptr_t) { return 0; });
        widget.reset(new pf::gui::Guarded<PFChartWidget>(&module, PFChartWidget::PointFigure, nullptr));
        widget->resize(900, 600);
        host.clear();
    }
    void TearDown() override { widget.reset(); }

    // The host names a main window interface (0x3000) too, which receives the requests to
    // show an indicator's or a study's properties.
    void AnswerMainWindow() {
        host.on(MSG_GET_INTERFACE, [](void*, std::intptr_t p1, std::intptr_t) {
            coreInterfaceRequest* r = reinterpret_cast<coreInterfaceRequest*>(p1);
            if (r->count < 1) return 1;
            if (std::strcmp(r->kind, "CHARTTYPE") == 0) r->result[0] = reinterpret_cast<void*>(std::intptr_t(0x2000));
            else if (std::strcmp(r->kind, "MAINWINDOW") == 0) r->result[0] = reinterpret_cast<void*>(std::intptr_t(0x3000));
            else return 1;
            return 0;
        });
    }

    Series* Known(std::intptr_t handle) {
        for (Series& s : series)
            if (reinterpret_cast<std::intptr_t>(&s) == handle) return &s;
        return nullptr;
    }
    Series* Find(const QString& name) {
        for (Series& s : series)
            if (s.name == name) return &s;
        return nullptr;
    }

    // An instrument the host knows: `n` columns rising and falling around `base`.
    void Serve(const QString& name, int n = 60, float base = 1.0f) {
        series.emplace_back();
        Series& s = series.back();
        s.name = name;
        for (int i = 0; i < n; ++i) {
            const float low = base + 0.001f * float(i % 20);
            s.records.push_back(fxChartTypeRecord{946684800 + 3600 * i, 0.001f, low, i % 2, low + 0.005f, 0.0f});
        }
        for (const char* field : {"TIME", "STEP", "VALUE", "TYPE", "END", "SOLID"}) {
            fxDataPointField d{};
            d.type = (std::strcmp(field, "TIME") == 0 || std::strcmp(field, "TYPE") == 0) ? DPT_INT32 : DPT_FLOAT;
            std::strncpy(d.name, field, sizeof d.name - 1);
            s.fields.push_back(d);
        }
        const QString type = QStringLiteral("Point and Figure");
        std::memcpy(s.array.name.name, type.utf16(), sizeof(coreWChar) * std::size_t(type.size()));
        s.array.name.period.type = 'I';
        s.array.fields = s.fields.data();
        s.array.fieldCount = std::int32_t(s.fields.size());
        s.array.points = reinterpret_cast<unsigned char*>(s.records.data());
        s.array.pointCount = std::int32_t(s.records.size());
        s.array.pointSize = sizeof(fxChartTypeRecord);
        s.array.precision = 4;
    }

    // Adds an instrument the host knows as an area, and lays the window out.
    void Show(const QString& name) {
        if (!Find(name)) Serve(name);
        ASSERT_TRUE(widget->AddSecondaryPrimitive(nullptr, name.toLatin1().constData(), "", 'I', 60, 0, nullptr, 0));
        Paint();
    }
    void Paint() {
        QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        widget->Draw(painter, true);
    }
    QPoint MiddleOfArea(int index) const { return widget->GetChart()->GetAreas()[std::size_t(index)]->Rect().center(); }
};
