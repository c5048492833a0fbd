#include "host/DragData.h"

#include <QMimeData>

namespace host {
namespace drag {

const char kInstrumentType[] = "kovar/symbol-indicator";
const char kPrimitiveType[] = "kovar/primitive";

namespace {

// The chart type words of primitive drag data, by chart type value.
const char* const kTypeWords[] = {"pf", "renko", "kagi"};
// The word that ends the drag data of a line study tool.
const char kStudyWord[] = "study";

// The text of drag data: trailing NULs dropped; false when empty, too long, not UTF-8 or
// holding a NUL inside.
bool readText(QByteArray bytes, QString* text) {
    while (bytes.endsWith('\0')) bytes.chop(1);
    if (bytes.isEmpty() || bytes.size() > kMaxBytes || bytes.contains('\0')) return false;
    // Bytes that are not UTF-8 decode to replacement characters, which encode differently.
    const QString decoded = QString::fromUtf8(bytes);
    if (decoded.toUtf8() != bytes) return false;
    *text = decoded;
    return true;
}

}  // namespace

QByteArray instrumentBytes(const std::string& instrument) { return QByteArray::fromStdString(instrument); }

QByteArray primitiveBytes(const std::string& instrument, data::ChartType type) {
    return QByteArray::fromStdString(instrument) + ';' + kTypeWords[int(type)];
}

QByteArray studyBytes(const std::string& study) { return QByteArray::fromStdString(study) + ';' + kStudyWord; }

std::unique_ptr<QMimeData> studyDrag(const std::string& study) {
    std::unique_ptr<QMimeData> mime(new QMimeData);
    mime->setData(QString::fromLatin1(kPrimitiveType), studyBytes(study));
    return mime;
}

std::unique_ptr<QMimeData> instrumentDrag(const std::string& instrument) {
    std::unique_ptr<QMimeData> mime(new QMimeData);
    mime->setData(QString::fromLatin1(kInstrumentType), instrumentBytes(instrument));
    return mime;
}

std::unique_ptr<QMimeData> primitiveDrag(const std::string& instrument, data::ChartType type) {
    std::unique_ptr<QMimeData> mime(new QMimeData);
    mime->setData(QString::fromLatin1(kPrimitiveType), primitiveBytes(instrument, type));
    return mime;
}

bool readInstrument(const QByteArray& bytes, std::string* instrument) {
    QString text;
    if (!readText(bytes, &text)) return false;
    *instrument = text.toStdString();
    return true;
}

bool readPrimitive(const QByteArray& bytes, std::string* instrument, data::ChartType* type) {
    QString text;
    if (!readText(bytes, &text)) return false;
    const int split = text.lastIndexOf(QLatin1Char(';'));
    if (split < 1) return false;
    const QString word = text.mid(split + 1);
    for (int t = 0; t < 3; ++t) {
        if (word != QLatin1String(kTypeWords[t])) continue;
        *instrument = text.left(split).toStdString();
        *type = data::ChartType(t);
        return true;
    }
    return false;
}

bool readStudy(const QByteArray& bytes, std::string* study) {
    QString text;
    if (!readText(bytes, &text)) return false;
    const int split = text.lastIndexOf(QLatin1Char(';'));
    if (split < 1 || text.mid(split + 1) != QLatin1String(kStudyWord)) return false;
    *study = text.left(split).toStdString();
    return true;
}

}  // namespace drag
}  // namespace host
