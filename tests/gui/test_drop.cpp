// Drag and drop onto the chart window: which drags are offered the window and what a drop
// asks the host.
#include <QDragEnterEvent>
#include <QMimeData>

#include "ChartWindowFixture.h"
#include "data/DataSource.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"

namespace {

struct Drop : ChartWindowFixture {
    bool Drag(QEvent::Type type, const QMimeData& data) {
        const QPoint at = widget->rect().center();
        std::unique_ptr<QDropEvent> event(
            type == QEvent::DragEnter ? new QDragEnterEvent(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier)
            : type == QEvent::DragMove ? new QDragMoveEvent(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier)
                                       : new QDropEvent(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier));
        // Straight to the window: QApplication would route moves and drops to the target of
        // the last accepted enter, which is a drag manager's state, not the window's.
        static_cast<QObject*>(widget.get())->event(event.get());
        return event->isAccepted();
    }
    void DropInstrument(const QString& symbol, const QString& type = "kovar/symbol-indicator") {
        QMimeData data;
        data.setData(type, symbol.toLatin1());
        Drag(QEvent::Drop, data);
    }
    QStringList Instruments() {
        QStringList out;
        for (const auto& area : widget->GetChart()->GetAreas())
            out << area->GetLayers()[0]->GetIndicators()[0]->GetDataSource()->GetBaseName();
        return out;
    }
};

}  // namespace

TEST_F(Drop, OnlyInstrumentsAreOfferedWhileDragging) {
    QMimeData instrument, primitive, text;
    instrument.setData("kovar/symbol-indicator", "EURUSD");
    primitive.setData("kovar/primitive", "P");
    text.setText("EURUSD");
    for (QEvent::Type type : {QEvent::DragEnter, QEvent::DragMove}) {
        EXPECT_TRUE(Drag(type, instrument));
        EXPECT_FALSE(Drag(type, primitive));
        EXPECT_FALSE(Drag(type, text));
    }
    EXPECT_TRUE(host.calls().empty());  // dragging asks the host nothing
}

TEST_F(Drop, DescribedInstrumentBecomesAnAreaAndAnythingElseChangesNothing) {
    Serve("EURUSD");
    DropInstrument("EURUSD");
    EXPECT_EQ(Instruments(), QStringList{"EURUSD"});
    ASSERT_EQ(host.find(MSG_DESCRIBE_DRAG).size(), 1u);
    EXPECT_EQ(host.find(MSG_HEAD_NODE_INFO).size(), 1u);

    host.clear();
    DropInstrument("GBPJPY");  // the host does not know it
    EXPECT_EQ(host.messages(), std::vector<unsigned>{MSG_DESCRIBE_DRAG});
    host.clear();
    DropInstrument("P", "kovar/primitive");
    EXPECT_EQ(host.messages(), std::vector<unsigned>{MSG_DESCRIBE_PRIMITIVE});
    host.clear();
    QMimeData text;
    text.setText("EURUSD");
    EXPECT_FALSE(Drag(QEvent::Drop, text));
    EXPECT_TRUE(host.calls().empty());
    EXPECT_EQ(Instruments(), QStringList{"EURUSD"});
}
