// The terminal's Journal panel, for the module's developers: the message exchange between
// the terminal and the module as the host's journal records it, newest last. A filter of
// message numbers ("3009, 5003-5007"; empty: all) picks what is shown; the panel keeps the
// last few thousand lines so that a long replay costs nothing to show.
#pragma once

#include <QSet>
#include <QWidget>
#include <cstddef>
#include <utility>
#include <vector>

class QLineEdit;
class QPlainTextEdit;

namespace host {

class Journal;

namespace terminal {

class JournalPanel : public QWidget {
    Q_OBJECT
public:
    explicit JournalPanel(const Journal& journal, QWidget* parent = nullptr);

    // Shows the entries added since the last call that pass the filter.
    void refresh();
    // Sets the filter text and shows the journal again through it; false (filter unchanged)
    // for text that is not a list of numbers and ranges.
    bool setFilter(const QString& text);
    // The lines shown.
    QStringList lines() const;

    // "3009, 5003-5007" as ranges; false for anything else. Empty text: no ranges.
    static bool parseFilter(const QString& text, std::vector<std::pair<unsigned, unsigned> >* ranges);

private:
    bool passes(unsigned message) const;

    const Journal& journal_;
    QLineEdit* filter_;
    QPlainTextEdit* view_;
    std::vector<std::pair<unsigned, unsigned> > ranges_;
    std::size_t shown_ = 0;  // entries looked at, counted from the journal's first ever
};

}  // namespace terminal
}  // namespace host
