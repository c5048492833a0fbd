// The chart window's property page on a real X server: a QTest double click on empty chart
// space opens the terminal's property dialog; unchecking "Right scale" and pressing Apply
// with the mouse repaints the window without its right scale; OK with the box checked again
// brings the old picture back and closes the dialog.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "OnScreenChart.h"
#include "host/PropertyDialog.h"
#include "host/PropertyService.h"

namespace {

class PropertyDialogOnScreen : public OnScreenChart {
protected:
    void SetUp() override {
        Start();
        ShowChart(QSize(1000, 700));
    }
    void TearDown() override {
        if (emulator) emulator->properties().closeAll();
        OnScreenChart::TearDown();
    }
    // The editor beside the label `name` in the dialog.
    static QWidget* Editor(QDialog* dialog, const QString& name) {
        for (QLabel* label : dialog->findChildren<QLabel*>())
            if (label->text() == name) return label->buddy();
        return nullptr;
    }
    // The chart below its tool bar (the tool bar's own look is not the page's business).
    QImage Picture() {
        QTest::qWait(30);
        const QImage image = chart->grab().toImage();
        return image.copy(0, kToolBar, image.width(), image.height() - kToolBar);
    }
    static constexpr int kToolBar = 24;
};

}  // namespace

TEST_F(PropertyDialogOnScreen, TheMouseEditsAndAppliesThePage) {
    const QImage before = Picture();
    // Empty chart space: the chart widget itself, where no figure shows a tool tip.
    QPoint spot(-1, -1);
    for (int y = 40; spot.x() < 0 && y < chart->height() - 40; y += 17)
        for (int x = 10; spot.x() < 0 && x < chart->width() / 2; x += 23)
            if (!chart->childAt(x, y) && emulator->charts().toolTipAt(handle, QPoint(x, y)).isEmpty()) spot = QPoint(x, y);
    ASSERT_GE(spot.x(), 0);
    QTest::mouseDClick(chart, Qt::LeftButton, Qt::NoModifier, spot);
    host::PropertyDialog* dialog = emulator->properties().dialogFor(handle);
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));

    QCheckBox* right = qobject_cast<QCheckBox*>(Editor(dialog, QStringLiteral("Right scale")));
    ASSERT_NE(right, nullptr);
    EXPECT_TRUE(right->isChecked());
    QTest::mouseClick(right, Qt::LeftButton, Qt::NoModifier, QPoint(5, right->height() / 2));
    EXPECT_FALSE(right->isChecked());
    QDialogButtonBox* buttons = dialog->findChild<QDialogButtonBox*>();
    ASSERT_NE(buttons, nullptr);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Apply), Qt::LeftButton);
    EXPECT_EQ(emulator->properties().applied(), std::vector<int>{0});
    EXPECT_NE(Picture(), before);

    QTest::mouseClick(right, Qt::LeftButton, Qt::NoModifier, QPoint(5, right->height() / 2));
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
    EXPECT_EQ(emulator->properties().applied(), (std::vector<int>{0, 0}));
    EXPECT_EQ(Picture(), before);
    QTest::qWait(20);
    EXPECT_EQ(emulator->properties().dialogFor(handle), nullptr);
}
