#include "xml/CXMLWorkData.h"

#include <QStringList>
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace {

// An 8-bit local text of at most `max` bytes that may lack its terminator.
QString Local8(const char* text, std::size_t max) {
    return text ? QString::fromLocal8Bit(text, static_cast<int>(strnlen(text, max))) : QString();
}

// A 16-bit text of at most `max` units that may lack its terminator.
QString Utf16(const coreWChar* text, std::size_t max) {
    if (!text) return QString();
    std::size_t n = 0;
    while (n < max && text[n] != 0) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), static_cast<int>(n));
}

// Copies `bytes` into an 8-bit field of `size` bytes, terminated when there is room.
void CopyName(char* field, std::size_t size, const QByteArray& bytes) {
    const std::size_t n = std::min<std::size_t>(bytes.size(), size);
    std::memset(field, 0, size);
    std::memcpy(field, bytes.constData(), n);
}

const char kFamily[] = "Family";
const char kSize[] = "Size";
const char kBold[] = "Bold";
const char kItalic[] = "Italic";
const char kStrikeout[] = "Strikeout";
const char kUnderline[] = "Underline";
const char kHeadInterface[] = "FInterface";
const char kHeadProvider[] = "FProvider";
const char kHeadName[] = "FName";
const char kDpaInstrument[] = "DpaInstrument";
const char kDpaSecondName[] = "DpaSecondName";
const char kDpaPeriodChar[] = "DpaPeriodChar";
const char kDpaPeriodLen[] = "DpaPeriodLen";
const char kDpaValue[] = "DpaValue";

const int kHostText = 255;  // bytes of an 8-bit host string field

}  // namespace

CXMLWorkData::CXMLWorkData(void* context, void* document, void* node, HostCallback callback) {
    Init(context, document, callback);
    node_ = node;
    readParameters();
}

CXMLWorkData::CXMLWorkData(void* context, void* document, const char* name, HostCallback callback) {
    Init(context, document, callback);
    BindRoot(name);
}

CXMLWorkData::~CXMLWorkData() = default;

void CXMLWorkData::Init(void* context, void* document, HostCallback callback) {
    context_ = context;
    document_ = document;
    // This host names a document by one handle; both document words carry it.
    document2_ = document;
    callback_ = callback;
}

void CXMLWorkData::BindRoot(const char* name) {
    // The document handle addresses the document node, whose child is the root element.
    node_ = document_;
    readParameters();
    void* root = FindChild(Local8(name, kHostText), 0, nullptr);
    if (!root && node_ && children_.empty()) {
        std::unique_ptr<CXMLWorkData> created(createNode(name, 0));
        if (created) root = created->node();
    }
    node_ = root;
    readParameters();
}

int CXMLWorkData::Send(unsigned int message, std::intptr_t p1, std::intptr_t p2) const {
    return callback_ ? callback_(context_, message, p1, p2) : 1;
}

void CXMLWorkData::fillNodeData(coreSzNode& node) const {
    node.document = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(document_));
    node.document2 = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(document2_));
    node.node = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(node_));
}

// ---------------------------------------------------------------------------------------
// Navigation

CXMLWorkData* CXMLWorkData::OpenChild(void* node) const {
    try {
        return new CXMLWorkData(context_, document_, node, callback_);
    } catch (...) {
        return nullptr;
    }
}

void* CXMLWorkData::FindChild(const QString& name, std::size_t from, std::size_t* at) const {
    for (std::size_t i = from; i < children_.size(); ++i) {
        if (children_[i].name != name) continue;
        if (at) *at = i;
        return children_[i].node;
    }
    return nullptr;
}

CXMLWorkData* CXMLWorkData::createNode(const char* name, int flag) {
    if (!callback_ || !node_) return nullptr;
    coreCreateNode record;
    std::memset(&record, 0, sizeof record);
    record.document = document_;
    record.document2 = document2_;
    record.parent = node_;
    const QString text = Local8(name, kHostText);
    CopyName(record.name, kHostText, text.toLocal8Bit());
    record.flag = flag;
    if (Send(MSG_WD_CREATE_NODE, reinterpret_cast<std::intptr_t>(&record), 0) != 0) return nullptr;
    void* child = record.result;
    if (!child) return nullptr;
    try {
        children_.push_back(ChildEntry{text, child});
    } catch (...) {
        return nullptr;
    }
    return OpenChild(child);
}

CXMLWorkData* CXMLWorkData::getFirstNode(const char* name) {
    searchName_ = Local8(name, kHostText);
    searchPos_ = 0;
    return getNode();
}

CXMLWorkData* CXMLWorkData::getNextNode() { return getNode(); }

CXMLWorkData* CXMLWorkData::getNode() {
    std::size_t at = 0;
    void* child = FindChild(searchName_, searchPos_, &at);
    if (!child) {
        searchPos_ = children_.size();
        return nullptr;
    }
    searchPos_ = at + 1;
    return OpenChild(child);
}

int CXMLWorkData::clearNode() {
    if (!callback_ || !node_) return 1;
    coreSzNode self;
    fillNodeData(self);
    const int result = Send(MSG_WD_CLEAR_NODE, reinterpret_cast<std::intptr_t>(&self), 0);
    if (result == 0) {
        attrs_.clear();
        children_.clear();
        searchPos_ = 0;
    }
    return result;
}

// ---------------------------------------------------------------------------------------
// Host exchange

int CXMLWorkData::getCountParamsInTag() {
    if (!callback_ || !node_) return 0;
    coreSzNode self;
    fillNodeData(self);
    // Terminals answer the count either in the slot or as the callback's result: the slot
    // starts at -1, and a host that wrote it answers 0 for success.
    std::int32_t count = kCountUnwritten;
    const int result = Send(MSG_WD_PARAM_COUNT, reinterpret_cast<std::intptr_t>(&self),
                            reinterpret_cast<std::intptr_t>(&count));
    if (count != kCountUnwritten) return result == 0 ? count : 0;
    return result;
}

int CXMLWorkData::readParameters() {
    attrs_.clear();
    children_.clear();
    searchPos_ = 0;
    const int count = getCountParamsInTag();
    if (count < 1 || count > kMaxEntries) return 0;
    coreSzNode self;
    fillNodeData(self);
    try {
        std::vector<coreSzParam> params(count);
        coreSzParamList list{count, params.data()};
        if (Send(MSG_WD_PARAM_LENGTHS, reinterpret_cast<std::intptr_t>(&self),
                 reinterpret_cast<std::intptr_t>(&list)) != 0)
            return 0;
        // Every buffer holds at least the terminator; a length out of bounds gives an
        // empty value.
        std::vector<std::vector<coreWChar> > buffers(count);
        for (int i = 0; i < count; ++i) {
            std::int32_t units = params[i].valueLength;
            if (units < 1 || units > kMaxValueUnits) units = 1;
            buffers[i].assign(units, 0);
            params[i].value = buffers[i].data();
            params[i].valueLength = units;
        }
        if (Send(MSG_WD_READ_PARAMS, reinterpret_cast<std::intptr_t>(&self),
                 reinterpret_cast<std::intptr_t>(&list)) != 0)
            return 0;
        int taken = 0;
        for (int i = 0; i < count; ++i) {
            const coreSzParam& p = params[i];
            // Every entry the host gives is kept, one with an empty name too.
            const QString name = Local8(p.name, sizeof p.name);
            if (p.kind == CORE_SZ_PARAM_CHILD) {
                children_.push_back(ChildEntry{name, p.node});
            } else {
                buffers[i].back() = 0;
                CCoreSzItem item(name, Utf16(buffers[i].data(), buffers[i].size()), node_);
                attrs_.erase(item);
                attrs_.insert(item);
            }
            ++taken;
        }
        return taken;
    } catch (...) {
        attrs_.clear();
        children_.clear();
        return 0;
    }
}

int CXMLWorkData::writeParameters() {
    if (!callback_ || !node_) return 1;
    coreSzNode self;
    fillNodeData(self);
    try {
        const int count = static_cast<int>(attrs_.size());
        std::vector<coreSzParam> params(count);
        std::vector<std::vector<coreWChar> > buffers(count);
        int i = 0;
        for (const CCoreSzItem& item : attrs_) {
            coreSzParam& p = params[i];
            CopyName(p.name, sizeof p.name, item.name.toLocal8Bit());
            const ushort* units = item.value.utf16();
            buffers[i].assign(units, units + item.value.size() + 1);
            p.value = buffers[i].data();
            p.valueLength = static_cast<std::int32_t>(buffers[i].size());
            p.kind = 0;
            p.node = node_;
            ++i;
        }
        coreSzParamList list{count, count ? params.data() : nullptr};
        return Send(MSG_WD_WRITE_PARAMS, reinterpret_cast<std::intptr_t>(&self),
                    reinterpret_cast<std::intptr_t>(&list));
    } catch (...) {
        return 1;
    }
}

// ---------------------------------------------------------------------------------------
// The attribute set

const CCoreSzItem* CXMLWorkData::FindAttr(const char* name) const {
    if (!name) return nullptr;
    auto it = attrs_.find(CCoreSzItem(QString::fromLocal8Bit(name), QString()));
    return it == attrs_.end() ? nullptr : &*it;
}

const QString* CXMLWorkData::Value(const char* name) const {
    const CCoreSzItem* item = FindAttr(name);
    return item ? &item->value : nullptr;
}

void CXMLWorkData::SetAttr(const char* name, const QString& value) {
    if (!name) return;
    CCoreSzItem item(QString::fromLocal8Bit(name), value, node_);
    attrs_.erase(item);
    attrs_.insert(item);
}

// ---------------------------------------------------------------------------------------
// Typed attributes

void CXMLWorkData::writeInteger(const char* name, int value) {
    SetAttr(name, QString::number(value, 10));
}

int CXMLWorkData::readInteger(const char* name, int defaultValue) const {
    const QString* v = Value(name);
    return v ? v->toInt(nullptr, 10) : defaultValue;
}

void CXMLWorkData::writeInt64(const char* name, qint64 value) {
    SetAttr(name, QString::number(value, 10));
}

qint64 CXMLWorkData::readInt64(const char* name, qint64 defaultValue) const {
    const QString* v = Value(name);
    return v ? v->toLongLong(nullptr, 10) : defaultValue;
}

void CXMLWorkData::writeBool(const char* name, bool value) {
    SetAttr(name, QString(value ? QLatin1String("1") : QLatin1String("0")));
}

bool CXMLWorkData::readBool(const char* name, bool defaultValue) const {
    const QString* v = Value(name);
    return v ? v->toInt(nullptr, 10) != 0 : defaultValue;
}

void CXMLWorkData::writeFloat(const char* name, float value, int precision) {
    SetAttr(name, QString::number(value, 'g', precision));
}

float CXMLWorkData::readFloat(const char* name, float defaultValue) const {
    const QString* v = Value(name);
    return v ? v->toFloat() : defaultValue;
}

void CXMLWorkData::writeDouble(const char* name, double value, int precision) {
    SetAttr(name, QString::number(value, 'g', precision));
}

double CXMLWorkData::readDouble(const char* name, double defaultValue) const {
    const QString* v = Value(name);
    return v ? v->toDouble() : defaultValue;
}

void CXMLWorkData::writeString(const char* name, const QString& value) { SetAttr(name, value); }

void CXMLWorkData::writeString(const char* name, const char* value) {
    SetAttr(name, QString::fromLocal8Bit(value ? value : ""));
}

void CXMLWorkData::writeString(const char* name, const coreWChar* value, int maxUnits) {
    SetAttr(name, Utf16(value, maxUnits < 0 ? kMaxValueUnits : maxUnits));
}

QString CXMLWorkData::readString(const char* name, const QString& defaultValue) const {
    const QString* v = Value(name);
    return v ? *v : defaultValue;
}

bool CXMLWorkData::readString(const char* name, char* buffer, int size,
                              const char* defaultValue) const {
    const QString* v = Value(name);
    if (!buffer || size < 1) return v != nullptr;
    const QByteArray bytes =
        v ? v->toLocal8Bit()
          : QByteArray(defaultValue ? defaultValue : "",
                       defaultValue ? static_cast<int>(strnlen(defaultValue, size - 1)) : 0);
    const int n = std::min(int(bytes.size()), size - 1);
    std::memcpy(buffer, bytes.constData(), n);
    buffer[n] = 0;
    return v != nullptr;
}

bool CXMLWorkData::readString(const char* name, coreWChar* buffer, int size,
                              const coreWChar* defaultValue) const {
    const QString* v = Value(name);
    if (!buffer || size < 1) return v != nullptr;
    const QString text = v ? *v : Utf16(defaultValue, size - 1);
    const int n = std::min(int(text.size()), size - 1);
    std::memcpy(buffer, text.utf16(), n * sizeof(coreWChar));
    buffer[n] = 0;
    return v != nullptr;
}

void CXMLWorkData::writeColor(const char* name, const QColor& value) {
    writeInteger(name, static_cast<int>(value.rgb()));
}

QColor CXMLWorkData::readColor(const char* name, const QColor& defaultValue) const {
    const QString* v = Value(name);
    return v ? QColor(static_cast<QRgb>(v->toInt(nullptr, 10))) : defaultValue;
}

QColor CXMLWorkData::readColorString(const char* name, const QColor& defaultValue) const {
    const QString* v = Value(name);
    if (!v) return defaultValue;
    const QStringList parts = v->split(QLatin1Char(','));
    if (parts.size() != 3) return defaultValue;
    int rgb[3];
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        rgb[i] = parts[i].toInt(&ok, 10);
        if (!ok || rgb[i] < 0 || rgb[i] > 255) return defaultValue;
    }
    return QColor(rgb[0], rgb[1], rgb[2], 255);
}

void CXMLWorkData::writeFont(const char* name, const QFont& value) {
    void* existing = FindChild(Local8(name, kHostText), 0, nullptr);
    std::unique_ptr<CXMLWorkData> node(existing ? OpenChild(existing) : createNode(name, 0));
    if (!node) return;
    node->writeString(kFamily, value.family());
    node->writeInteger(kSize, value.pointSize());
    node->writeBool(kBold, value.bold());
    node->writeBool(kItalic, value.italic());
    node->writeBool(kStrikeout, value.strikeOut());
    node->writeBool(kUnderline, value.underline());
    node->writeParameters();
}

QFont CXMLWorkData::readFont(const char* name, const QFont& defaultValue) const {
    void* child = FindChild(Local8(name, kHostText), 0, nullptr);
    std::unique_ptr<CXMLWorkData> node(child ? OpenChild(child) : nullptr);
    if (!node) return defaultValue;
    QFont font(node->readString(kFamily, defaultValue.family()),
               node->readInteger(kSize, defaultValue.pointSize()));
    font.setBold(node->readBool(kBold, defaultValue.bold()));
    font.setItalic(node->readBool(kItalic, defaultValue.italic()));
    font.setStrikeOut(node->readBool(kStrikeout, defaultValue.strikeOut()));
    font.setUnderline(node->readBool(kUnderline, defaultValue.underline()));
    return font;
}

// ---------------------------------------------------------------------------------------
// Head node and data point array description

void CXMLWorkData::writeHeadNode(void* handle) {
    coreHeadNodeInfo info;
    std::memset(&info, 0, sizeof info);
    if (Send(MSG_HEAD_NODE_INFO, reinterpret_cast<std::intptr_t>(handle),
             reinterpret_cast<std::intptr_t>(&info)) != 0)
        return;
    writeString(kHeadInterface, Local8(info.interfaceName, sizeof info.interfaceName));
    writeString(kHeadProvider, Local8(info.provider, sizeof info.provider));
    writeString(kHeadName, Local8(info.name, sizeof info.name));
}

void CXMLWorkData::readHeadNode(char* interfaceName, char* provider, char* name) const {
    readString(kHeadInterface, interfaceName, kHostText);
    readString(kHeadProvider, provider, kHostText);
    readString(kHeadName, name, kHostText);
}

void CXMLWorkData::writeDpaInfo(const fxDataPointArray* dpa) {
    if (!dpa) return;
    // The record is packed: copy the wide name out before reading it as 16-bit units.
    coreWChar instrument[sizeof dpa->name.name / sizeof(coreWChar)];
    std::memcpy(instrument, dpa->name.name, sizeof instrument);
    writeString(kDpaInstrument, instrument, static_cast<int>(sizeof instrument / sizeof(coreWChar)));
    writeString(kDpaSecondName, Local8(dpa->name.secondName, sizeof dpa->name.secondName));
    writeInteger(kDpaPeriodChar, static_cast<unsigned char>(dpa->name.period.type));
    writeInteger(kDpaPeriodLen, dpa->name.period.length);
    writeInteger(kDpaValue, dpa->name.value);
    if (dpa->owner) writeHeadNode(dpa->owner);
}

bool CXMLWorkData::readDpaInfo(coreDemandsIndicator* info, int* found) const {
    const bool present = hasAttribute(kDpaInstrument);
    if (found) *found = present ? 1 : 0;
    if (!info) return present;
    std::memset(info, 0, sizeof *info);
    coreWChar instrument[sizeof info->instrument.name / sizeof(coreWChar)] = {};
    readString(kDpaInstrument, instrument, static_cast<int>(sizeof instrument / sizeof(coreWChar)));
    std::memcpy(info->instrument.name, instrument, sizeof instrument);
    readString(kDpaSecondName, info->instrument.secondName, sizeof info->instrument.secondName);
    info->instrument.period.type = static_cast<char>(readInteger(kDpaPeriodChar, 0));
    info->instrument.period.length = readInteger(kDpaPeriodLen, 0);
    info->instrument.value = readInteger(kDpaValue, 0);
    readHeadNode(info->head.interfaceName, info->head.provider, info->head.name);
    return present;
}
