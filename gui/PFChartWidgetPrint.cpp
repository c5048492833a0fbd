// Printing the chart window (5012). The page carries only the footer line: the window is
// laid out once at the page's size and back, but its chart is not drawn onto the printer.
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <boost/scoped_ptr.hpp>
#include <cmath>

#include "gui/PFChartWidget.h"

namespace {

// Two centimetres in inches: the margin is half of that, one centimetre.
const double kTwoCentimetresInInches = 0.7874015748031495;

const char kFooter[] = "Printing by KOVAR";

}  // namespace

void PFChartWidget::Print() {
    if (busy_) return;
    boost::scoped_ptr<QPrinter> printer(new QPrinter(QPrinter::ScreenResolution));
    // On the heap: should the host close the window while the dialog is open, the dialog
    // goes with it and must not be deleted a second time here.
    const QPointer<PFChartWidget> self(this);
    QPointer<QPrintDialog> dialog(new QPrintDialog(printer.get(), this));
    const int result = dialog->exec();
    if (!self) return;
    delete dialog.data();
    if (result != QDialog::Accepted) return;

    printer->setPageOrientation(QPageLayout::Landscape);
    QPainter painter;
    if (!painter.begin(printer.get())) return;
    const int margin = static_cast<int>(std::trunc(printer->logicalDpiY() * kTwoCentimetresInInches)) / 2;
    // The window is laid out for the page less a margin on every side, as if it were
    // drawn at (margin, margin); the footer's baseline is 6 pixels above that frame's
    // bottom edge.
    const QSize pageSize(printer->width() - 2 * margin, printer->height() - 2 * margin);
    const QSize screenSize = size();
    resize(pageSize);
    update();
    resize(screenSize);
    painter.drawText(0, margin + pageSize.height() - 6, QString::fromLatin1(kFooter));
    painter.end();
}
