#include "host/terminal/JournalPanel.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>

#include "host/Journal.h"

namespace host {
namespace terminal {

namespace {

// Lines the panel keeps; older ones scroll away.
const int kMaxLines = 5000;

QString line(const Journal::Entry& e) {
    char head[160];
    std::snprintf(head, sizeof head, "%s %5u  target=%#llx p1=%#llx p2=%#llx = %d",
                  e.direction == Journal::ToModule ? "->" : "<-", e.message,
                  static_cast<unsigned long long>(e.target), static_cast<unsigned long long>(e.param1),
                  static_cast<unsigned long long>(e.param2), e.result);
    QString text = QString::fromLatin1(head);
    if (!e.detail.empty()) text += QStringLiteral("  ") + QString::fromStdString(e.detail);
    return text;
}

}  // namespace

JournalPanel::JournalPanel(const Journal& journal, QWidget* parent) : QWidget(parent), journal_(journal) {
    setObjectName(QStringLiteral("journalPanel"));
    filter_ = new QLineEdit;
    filter_->setObjectName(QStringLiteral("journalFilter"));
    filter_->setPlaceholderText(tr("Message numbers, e.g. 3009, 5003-5007 (empty: all)"));
    filter_->setClearButtonEnabled(true);
    view_ = new QPlainTextEdit;
    view_->setReadOnly(true);
    view_->setMaximumBlockCount(kMaxLines);
    view_->setLineWrapMode(QPlainTextEdit::NoWrap);
    view_->setFont(QFont(QStringLiteral("Monospace"), 8));
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(filter_);
    layout->addWidget(view_);
    connect(filter_, &QLineEdit::editingFinished, this, [this] {
        if (!setFilter(filter_->text())) filter_->setStyleSheet(QStringLiteral("color: red"));
    });
    connect(filter_, &QLineEdit::textChanged, this, [this] { filter_->setStyleSheet(QString()); });
}

bool JournalPanel::parseFilter(const QString& text, std::vector<std::pair<unsigned, unsigned> >* ranges) {
    ranges->clear();
    const QRegularExpression item(QStringLiteral("^(\\d{1,9})(?:-(\\d{1,9}))?$"));
    QString compact = text;
    compact.replace(QRegularExpression(QStringLiteral("\\s*-\\s*")), QStringLiteral("-"));
    for (const QString& part : compact.split(QRegularExpression(QStringLiteral("[,;\\s]+")), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch m = item.match(part);
        if (!m.hasMatch()) return false;
        const unsigned from = m.captured(1).toUInt();
        const unsigned to = m.captured(2).isEmpty() ? from : m.captured(2).toUInt();
        if (to < from) return false;
        ranges->push_back({from, to});
    }
    return true;
}

bool JournalPanel::passes(unsigned message) const {
    if (ranges_.empty()) return true;
    return std::any_of(ranges_.begin(), ranges_.end(),
                       [message](const std::pair<unsigned, unsigned>& r) { return message >= r.first && message <= r.second; });
}

bool JournalPanel::setFilter(const QString& text) {
    std::vector<std::pair<unsigned, unsigned> > ranges;
    if (!parseFilter(text, &ranges)) return false;
    if (filter_->text() != text) filter_->setText(text);
    ranges_ = ranges;
    view_->clear();
    // Shown again from the newest entries backwards, as many as the view keeps.
    const auto& all = journal_.entries();
    std::size_t start = all.size();
    int kept = 0;
    while (start > 0 && kept < kMaxLines)
        if (passes(all[--start].message)) ++kept;
    shown_ = journal_.dropped() + start;
    refresh();
    return true;
}

void JournalPanel::refresh() {
    const auto& all = journal_.entries();
    const std::size_t first = journal_.dropped(), end = first + all.size();
    if (shown_ < first) shown_ = first;  // entries forgotten before they were shown
    if (shown_ >= end) return;
    QStringList add;
    for (; shown_ < end; ++shown_)
        if (passes(all[shown_ - first].message)) add << line(all[shown_ - first]);
    if (add.size() > kMaxLines) add = add.mid(add.size() - kMaxLines);
    if (!add.isEmpty()) view_->appendPlainText(add.join(QLatin1Char('\n')));
}

QStringList JournalPanel::lines() const {
    return view_->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

}  // namespace terminal
}  // namespace host
