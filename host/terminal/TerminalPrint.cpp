#include "host/terminal/TerminalPrint.h"

#include <QAbstractSlider>
#include <QFileInfo>
#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>
#include <QToolButton>
#include <QWidget>
#include <algorithm>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/data/ChartObject.h"
#include "host/terminal/ChartDescription.h"

namespace host {
namespace terminal {

namespace {

// The header's height as a share of the page's shorter side (so that a header line fits a
// portrait page as well), and its least height in device pixels.
const double kHeaderShare = 0.04;
const int kMinHeader = 18;

// The chart widget's child that holds `w` (w itself when it is one).
QWidget* topChild(QWidget* chart, QWidget* w) {
    while (w && w->parentWidget() != chart) w = w->parentWidget();
    return w;
}

}  // namespace

QImage TerminalPrint::picture(void* widget) const {
    QWidget* chart = charts_.chartWidget(widget);
    if (!chart) return QImage();
    int top = 0, bottom = chart->height();
    const QList<QToolButton*> buttons = charts_.toolButtons(widget);
    if (!buttons.isEmpty())
        if (QWidget* bar = topChild(chart, buttons.front()))
            if (bar->isVisible() && bar->geometry().center().y() < chart->height() / 2) top = bar->geometry().bottom() + 1;
    if (QAbstractSlider* scroll = charts_.timeScrollBar(widget))
        if (QWidget* bar = topChild(chart, scroll))
            if (bar->isVisible() && bar->geometry().center().y() > chart->height() / 2) bottom = bar->geometry().top();
    if (bottom <= top) return chart->grab().toImage();
    return chart->grab(QRect(0, top, chart->width(), bottom - top)).toImage();
}

QString TerminalPrint::header(void* widget) const {
    const std::vector<data::ChartObject*> charts = windowCharts(data_, widget);
    if (!charts.empty()) return chartHeader(*charts.front());
    const QString title = charts_.title(widget);
    return title.isEmpty() ? QStringLiteral("Chart") : title;
}

QString TerminalPrint::suggestedName(void* widget, const QString& suffix) const {
    QString name;
    const std::vector<data::ChartObject*> charts = windowCharts(data_, widget);
    if (!charts.empty()) {
        const data::ChartObject& c = *charts.front();
        name = QStringLiteral("%1 %2 %3")
                   .arg(QString::fromStdString(c.instrument().name()), periodText(c.instrument().period()),
                        QString::fromLatin1(data::chartTypeName(c.type())));
    } else {
        name = QStringLiteral("chart");
    }
    QString clean;
    for (const QChar ch : name)
        if (ch.isLetterOrNumber() || ch == QLatin1Char(' ') || ch == QLatin1Char('-') || ch == QLatin1Char('_'))
            clean += ch;
    return clean.simplified() + suffix;
}

int TerminalPrint::headerHeight(const QSize& page) {
    return std::max(kMinHeader, int(std::min(page.width(), page.height()) * kHeaderShare));
}

void TerminalPrint::paintPage(QPainter& painter, const QRect& page, int headerHeight, const QString& header,
                              const QImage& picture) {
    QFont font = painter.font();
    font.setPixelSize(std::max(8, headerHeight * 3 / 5));
    font.setBold(true);
    painter.save();
    painter.setFont(font);
    painter.setPen(Qt::black);
    const int margin = headerHeight / 4;
    const QRect line(page.left() + margin, page.top(), page.width() - 2 * margin, headerHeight);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(font).elidedText(header, Qt::ElideRight, line.width()));
    painter.restore();
    if (picture.isNull()) return;
    const QRect room(page.left(), page.top() + headerHeight, page.width(), std::max(1, page.height() - headerHeight));
    const QSize size = picture.size().scaled(room.size(), Qt::KeepAspectRatio);
    const QRect target(room.left() + (room.width() - size.width()) / 2, room.top(), size.width(), size.height());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, picture);
}

bool TerminalPrint::print(void* widget, QPrinter& printer, QString* error) const {
    const QImage image = picture(widget);
    if (image.isNull()) {
        if (error) *error = QStringLiteral("No chart window to print.");
        return false;
    }
    printer.setPageOrientation(image.width() >= image.height() ? QPageLayout::Landscape : QPageLayout::Portrait);
    QPainter painter;
    if (!painter.begin(&printer)) {
        if (error) *error = QStringLiteral("The printer could not be opened.");
        return false;
    }
    // The painter's origin is the printable area's corner.
    const QRect page(QPoint(), printer.pageRect(QPrinter::DevicePixel).toRect().size());
    paintPage(painter, page, headerHeight(page.size()), header(widget), image);
    if (!painter.end()) {
        if (error) *error = QStringLiteral("The page could not be finished.");
        return false;
    }
    return true;
}

bool TerminalPrint::exportTo(void* widget, const QString& path, QString* error) const {
    if (path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(path);
        printer.setDocName(header(widget));
        if (!print(widget, printer, error)) return false;
        if (QFileInfo(path).size() > 0) return true;
        if (error) *error = QStringLiteral("%1 could not be written.").arg(path);
        return false;
    }
    const QImage image = picture(widget);
    if (image.isNull()) {
        if (error) *error = QStringLiteral("No chart window to export.");
        return false;
    }
    // The header gets its own strip above the picture, which keeps the window's size.
    const int strip = headerHeight(image.size());
    QImage page(image.width(), image.height() + strip, QImage::Format_RGB32);
    page.fill(Qt::white);
    {
        QPainter painter(&page);
        paintPage(painter, page.rect(), strip, header(widget), image);
    }
    if (!page.save(path, "PNG")) {
        if (error) *error = QStringLiteral("%1 could not be written.").arg(path);
        return false;
    }
    return true;
}

}  // namespace terminal
}  // namespace host
