// The terminal's study dialog, opened when a chart asks for a line study's properties
// (4511): colour, line width and style, the extension to the left and right (a straight
// line), and for a text study its text and font. Apply hands the settings to the line-study
// provider, which tells the chart (3073) so that it draws the study anew; OK applies and
// closes.
#pragma once

#include <QColor>
#include <QDialog>
#include <cstdint>

#include "host/ls/StudyGeometry.h"

class QCheckBox;
class QComboBox;
class QFontComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace host {

class LineStudies;

namespace terminal {

class StudyDialog : public QDialog {
    Q_OBJECT
public:
    // A study id the provider does not know gives a dialog that says so and applies nothing.
    StudyDialog(LineStudies& studies, std::int32_t id, QWidget* parent = nullptr);

    std::int32_t study() const { return id_; }
    // The settings as the fields show them.
    ls::StudyParams params() const;
    void setParams(const ls::StudyParams& params);
    // Hands the fields' settings to the provider; false when the study is gone.
    bool apply();

signals:
    void applied(std::int32_t id);

private:
    LineStudies& studies_;
    std::int32_t id_;
    ls::StudyParams base_;  // what the fields do not show stays as it was
    QColor colour_;
    QPushButton* colourButton_ = nullptr;
    QSpinBox* width_ = nullptr;
    QComboBox* style_ = nullptr;
    QCheckBox* left_ = nullptr;
    QCheckBox* right_ = nullptr;
    QLineEdit* text_ = nullptr;
    QFontComboBox* family_ = nullptr;
    QSpinBox* size_ = nullptr;
    QCheckBox* bold_ = nullptr;
    QCheckBox* italic_ = nullptr;
    QCheckBox* underline_ = nullptr;
    QCheckBox* strikeOut_ = nullptr;
    QLabel* error_ = nullptr;
};

}  // namespace terminal
}  // namespace host
