#include "property/CPropertyHead.h"

#include <QtGlobal>
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "property/CPropertyParamBoolean.h"
#include "property/CPropertyParamColor.h"
#include "property/CPropertyParamDateTime.h"
#include "property/CPropertyParamDouble.h"
#include "property/CPropertyParamFont.h"
#include "property/CPropertyParamInt.h"
#include "property/CPropertyParamList.h"
#include "property/CPropertyParamString.h"
#include "property/CPropertyParamWidget.h"
#include "property/PropertyText.h"

namespace {

// Size of the value buffer of a type; 0 for a type without one.
int ValueSize(int type) {
    switch (type) {
        case PROPERTY_TYPE_INT: return int(sizeof(PROPERTY_VALUE_INT));
        case PROPERTY_TYPE_DOUBLE: return int(sizeof(PROPERTY_VALUE_DOUBLE));
        case PROPERTY_TYPE_BOOL: return 1;
        case PROPERTY_TYPE_TEXT: return int(sizeof(PROPERTY_VALUE_TEXT));
        case PROPERTY_TYPE_COLOR: return 4;
        case PROPERTY_TYPE_FONT: return int(sizeof(PROPERTY_VALUE_FONT));
        case PROPERTY_TYPE_LIST: return int(sizeof(PROPERTY_VALUE_LIST));
        case PROPERTY_TYPE_DATETIME: return 4;
        case PROPERTY_TYPE_WIDGET: return int(sizeof(PROPERTY_VALUE_WIDGET));
        default: return 0;
    }
}

void CopyName(coreWChar* dest, const coreWChar* source) {
    CPropertyHead::eStrCpyUni(dest, PROPERTY_NAME_UNITS, source);
}

// Texts of a list value: a fresh array of `count` items copied from `source` (null source:
// empty texts). Null for no items.
PROPERTY_LIST_ITEM* CopyItems(const PROPERTY_LIST_ITEM* source, int count) {
    if (count <= 0) return nullptr;
    PROPERTY_LIST_ITEM* items = new PROPERTY_LIST_ITEM[std::size_t(count)]();
    if (source)
        for (int i = 0; i < count; ++i) CopyName(items[i].text, source[i].text);
    return items;
}

}  // namespace

CPropertyHead::CPropertyHead() {
    std::memset(&page_, 0, sizeof page_);
}

CPropertyHead::CPropertyHead(const PROPERTY_PAGE& page) : CPropertyHead() { CopyPage(page); }

CPropertyHead::CPropertyHead(const unsigned short* title, const unsigned short* caption,
                             const unsigned short* description, const CORE_OBJECT_SYSTEM& system)
    : CPropertyHead() {
    CopyName(page_.title, title);
    CopyName(page_.caption, caption);
    CopyName(page_.description, description);
    std::memcpy(&page_.system, &system, sizeof system);
}

CPropertyHead::CPropertyHead(const CPropertyHead& other) : CPropertyHead() { CopyPage(other.page_); }

CPropertyHead& CPropertyHead::operator=(const CPropertyHead& other) {
    if (this != &other) {
        // Copied first: `other` may describe a page that this one's groups hold.
        CPropertyHead copy;
        copy.CopyPage(other.page_);
        freeMemoAllGroup();
        std::memcpy(&page_, &copy.page_, sizeof page_);
        groups_.swap(copy.groups_);
        Relink();
    }
    return *this;
}

CPropertyHead::~CPropertyHead() { freeMemoAllGroup(); }

void CPropertyHead::ReInicDatePage(const QString& title, const QString& caption, const QString& description,
                                   const CORE_OBJECT_SYSTEM& system) {
    property::WriteUni(page_.title, PROPERTY_NAME_UNITS, title);
    property::WriteUni(page_.caption, PROPERTY_NAME_UNITS, caption);
    property::WriteUni(page_.description, PROPERTY_NAME_UNITS, description);
    std::memcpy(&page_.system, &system, sizeof system);
}

void CPropertyHead::ReNameDatePage(const QString& title) { property::WriteUni(page_.title, PROPERTY_NAME_UNITS, title); }

void CPropertyHead::Relink(Group* g) {
    g->record.list.count = std::int32_t(g->items.size());
    g->record.list.items = g->items.empty() ? nullptr : g->items.data();
}

void CPropertyHead::Relink() {
    records_.clear();
    for (std::size_t i = 0; i < groups_.size(); ++i) {
        groups_[i]->record.id = std::int32_t(i);
        Relink(groups_[i]);
        records_.push_back(&groups_[i]->record);
    }
    page_.groupCount = std::int32_t(groups_.size());
    page_.groups = records_.empty() ? nullptr : records_.data();
}

PROPERTY_GROUP* CPropertyHead::CreatePropertyGroup(QString name) {
    Group* g = new Group;
    std::memset(&g->record, 0, sizeof g->record);
    property::WriteUni(g->record.name, PROPERTY_NAME_UNITS, name);
    groups_.push_back(g);
    Relink();
    return &g->record;
}

int CPropertyHead::addGroup(const PROPERTY_GROUP& group) {
    CopyGroup(group);
    return int(groups_.size()) - 1;
}

PROPERTY_GROUP* CPropertyHead::getPropertyGroup(int group) const {
    if (group < 0 || group >= int(groups_.size())) return nullptr;
    return &groups_[std::size_t(group)]->record;
}

int CPropertyHead::getCountPropertyInGroup(int group) const {
    if (group < 0 || group >= int(groups_.size())) return 0;
    return int(groups_[std::size_t(group)]->items.size());
}

int CPropertyHead::addProperty(int group, PROPERTY& property) {
    if (group < 0 || group >= int(groups_.size())) return -1;
    Group* g = groups_[std::size_t(group)];
    PROPERTY* copy = nullptr;
    try {
        copy = new PROPERTY;
        std::memset(copy, 0, sizeof *copy);
        copy->type = property.type;
        CopyName(copy->name, property.name);
        CopyName(copy->description, property.description);
        copy->flag = property.flag;
        copy->group = std::int32_t(group);
        copy->index = std::int32_t(g->items.size());
        const int size = ValueSize(property.type);
        if (property.value && size > 0) {
            copy->value = new std::uint8_t[std::size_t(size)]();
            std::memcpy(copy->value, property.value, std::size_t(size));
            if (property.type == PROPERTY_TYPE_LIST) {
                // The texts are the page's own: the source's are copied, at most kMaxListItems.
                PROPERTY_VALUE_LIST list;
                std::memcpy(&list, copy->value, sizeof list);
                list.count = std::max(0, std::min<std::int32_t>(list.count, kMaxListItems));
                list.items = list.items ? CopyItems(list.items, list.count) : nullptr;
                if (!list.items) list.count = 0;
                if (list.selected < 0 || list.selected >= list.count) list.selected = 0;
                std::memcpy(copy->value, &list, sizeof list);
            }
        }
        g->items.push_back(copy);
    } catch (const std::bad_alloc&) {
        if (copy) FreeProperty(copy);
        return -1;
    }
    Relink(g);
    return int(g->items.size()) - 1;
}

PROPERTY* CPropertyHead::getPropertyItem(int group, int index) const {
    if (group < 0 || group >= int(groups_.size())) return nullptr;
    const Group* g = groups_[std::size_t(group)];
    if (index < 0 || index >= int(g->items.size())) return nullptr;
    return g->items[std::size_t(index)];
}

QVariant CPropertyHead::GetPropertyItem(int group, int index) const {
    std::unique_ptr<CPropertyParamItem> item(createData(getPropertyItem(group, index), false));
    return item ? item->GetPropertyItem() : QVariant();
}

int CPropertyHead::SetProperty(int group, int index, QVariant value) {
    std::unique_ptr<CPropertyParamItem> item(createData(getPropertyItem(group, index), false));
    if (!item) return 1;
    item->SetProperty(value);
    return 0;
}

bool CPropertyHead::ChangePropertyListItem(int group, int index, QStringList items, int selected) {
    PROPERTY* p = getPropertyItem(group, index);
    if (!p || p->type != PROPERTY_TYPE_LIST) return false;
    PROPERTY_VALUE_LIST list;
    std::memset(&list, 0, sizeof list);
    if (!p->value) p->value = new std::uint8_t[sizeof list]();
    else std::memcpy(&list, p->value, sizeof list);
    delete[] list.items;
    const int count = std::min(int(items.size()), int(kMaxListItems));
    list.items = CopyItems(nullptr, count);
    for (int i = 0; i < count; ++i) property::WriteUni(list.items[i].text, PROPERTY_NAME_UNITS, items[i]);
    list.count = count;
    list.selected = selected >= 0 && selected < count ? selected : 0;
    std::memcpy(p->value, &list, sizeof list);
    return true;
}

int CPropertyHead::CopyWidgetParam(const PROPERTY_PAGE& page) {
    if (&page == &page_) return 0;
    int taken = 0;
    const int groups = std::min({int(page.groupCount), int(groups_.size()), int(kMaxGroups)});
    for (int gi = 0; gi < groups && page.groups; ++gi) {
        const PROPERTY_GROUP* source = page.groups[gi];
        if (!source) continue;
        const Group* g = groups_[std::size_t(gi)];
        const int entries = std::min({int(source->list.count), int(g->items.size()), int(kMaxEntries)});
        for (int i = 0; i < entries && source->list.items; ++i) {
            const PROPERTY* from = source->list.items[i];
            PROPERTY* to = g->items[std::size_t(i)];
            if (!from || !from->value || !to->value || from->type != to->type) continue;
            if (to->type == PROPERTY_TYPE_LIST) {
                PROPERTY_VALUE_LIST a, b;
                std::memcpy(&a, from->value, sizeof a);
                std::memcpy(&b, to->value, sizeof b);
                if (a.selected < 0 || a.selected >= b.count) continue;
                b.selected = a.selected;
                std::memcpy(to->value, &b, sizeof b);
            } else {
                const int size = ValueSize(to->type);
                if (size <= 0) continue;
                std::memcpy(to->value, from->value, std::size_t(size));
            }
            ++taken;
        }
    }
    return taken;
}

CPropertyParamItem* CPropertyHead::createData(PROPERTY* property, bool allocate) {
    if (!property) return nullptr;
    const int size = ValueSize(property->type);
    if (size <= 0) return nullptr;
    if (allocate) {
        try {
            std::uint8_t* buffer = new std::uint8_t[std::size_t(size)]();
            FreeValue(property->type, property->value);
            property->value = buffer;
        } catch (const std::bad_alloc&) {
            throw PropertyException("Error Memo int CPropertyParamItem");
        }
    }
    switch (property->type) {
        case PROPERTY_TYPE_INT: return new CPropertyParamInt(property);
        case PROPERTY_TYPE_DOUBLE: return new CPropertyParamDouble(property);
        case PROPERTY_TYPE_BOOL: return new CPropertyParamBoolean(property);
        case PROPERTY_TYPE_TEXT: return new CPropertyParamString(property);
        case PROPERTY_TYPE_COLOR: return new CPropertyParamColor(property);
        case PROPERTY_TYPE_FONT: return new CPropertyParamFont(property);
        case PROPERTY_TYPE_LIST: return new CPropertyParamList(property);
        case PROPERTY_TYPE_DATETIME: return new CPropertyParamDateTime(property);
        case PROPERTY_TYPE_WIDGET: return new CPropertyParamWidget(property);
        default: return nullptr;
    }
}

// ---- typed adders ----

int CPropertyHead::AddNew(int group, int type, const unsigned short* name, const unsigned short* description, int flag,
                          const void* value) {
    PROPERTY p;
    std::memset(&p, 0, sizeof p);
    p.type = type;
    CopyName(p.name, name);
    CopyName(p.description, description);
    p.flag = flag;
    p.value = const_cast<void*>(value);
    return addProperty(group, p);
}

int CPropertyHead::AddPropertyIntItem(int group, const unsigned short* name, const unsigned short* description,
                                      int value, int minimum, int maximum, bool readOnly) {
    const PROPERTY_VALUE_INT v = {value, minimum, maximum};
    return AddNew(group, PROPERTY_TYPE_INT, name, description, readOnly ? PROPERTY_FLAG_READONLY : 0, &v);
}

int CPropertyHead::AddPropertyDoubleItem(int group, const unsigned short* name, const unsigned short* description,
                                         double value, bool allowNegative, int decimals, bool readOnly) {
    PROPERTY_VALUE_DOUBLE v;
    v.value = value;
    v.minimum = allowNegative ? -1e308 : 0.0;
    v.maximum = 1e308;
    v.decimals = std::max(0, std::min(decimals, 15));
    v.allowNegative = allowNegative ? 1 : 0;
    v.readOnly = readOnly ? 1 : 0;
    return AddNew(group, PROPERTY_TYPE_DOUBLE, name, description, readOnly ? PROPERTY_FLAG_READONLY : 0, &v);
}

int CPropertyHead::AddPropertyBoolItem(int group, const unsigned short* name, const unsigned short* description,
                                       bool value) {
    const std::uint8_t v = value ? 1 : 0;
    return AddNew(group, PROPERTY_TYPE_BOOL, name, description, 0, &v);
}

int CPropertyHead::AddPropertyTextItem(int group, const unsigned short* name, const unsigned short* description,
                                       const unsigned short* text) {
    std::unique_ptr<PROPERTY_VALUE_TEXT> v(new PROPERTY_VALUE_TEXT);
    property::FillUni(v->text, PROPERTY_TEXT_UNITS, text);
    return AddNew(group, PROPERTY_TYPE_TEXT, name, description, 0, v.get());
}

int CPropertyHead::AddPropertyColorItem(int group, const unsigned short* name, const unsigned short* description,
                                        QColor value) {
    const std::uint32_t v = value.rgb() & 0xFFFFFFu;
    return AddNew(group, PROPERTY_TYPE_COLOR, name, description, 0, &v);
}

int CPropertyHead::AddPropertyFontItem(int group, const unsigned short* name, const unsigned short* description,
                                       QFont value) {
    std::unique_ptr<PROPERTY_VALUE_FONT> v(new PROPERTY_VALUE_FONT);
    std::memset(v.get(), 0, sizeof *v);
    CPropertyParamFont::FromFont(value, v.get());
    return AddNew(group, PROPERTY_TYPE_FONT, name, description, 0, v.get());
}

int CPropertyHead::AddPropertyListItem(int group, const unsigned short* name, const unsigned short* description,
                                       const QStringList& items, int selected) {
    PROPERTY_VALUE_LIST v;
    std::memset(&v, 0, sizeof v);
    const int index = AddNew(group, PROPERTY_TYPE_LIST, name, description, 0, &v);
    if (index >= 0) ChangePropertyListItem(group, index, items, selected);
    return index;
}

int CPropertyHead::AddPropertyDateTimeItem(int group, const unsigned short* name, const unsigned short* description,
                                           QDateTime value) {
    const std::int32_t v = value.isValid() ? std::int32_t(value.toSecsSinceEpoch()) : 0;
    return AddNew(group, PROPERTY_TYPE_DATETIME, name, description, 0, &v);
}

int CPropertyHead::AddPropertyWidget(int group, const unsigned short* name, const unsigned short* description,
                                     int first, int second) {
    const PROPERTY_VALUE_WIDGET v = {first, second, 0};
    return AddNew(group, PROPERTY_TYPE_WIDGET, name, description, 0, &v);
}

// ---- strings ----

char* CPropertyHead::eStrCpyP(char* dest, int size, const char* source) {
    if (!dest || size < 1) return dest;
    int n = 0;
    if (source)
        while (n < size - 1 && source[n]) {
            dest[n] = source[n];
            ++n;
        }
    dest[n] = 0;
    return dest;
}

unsigned short* CPropertyHead::eStrCpyUni(unsigned short* dest, int size, const unsigned short* source) {
    if (!dest || size < 1) return dest;
    int n = 0;
    if (source)
        while (n < size - 1 && source[n]) {
            dest[n] = source[n];
            ++n;
        }
    dest[n] = 0;
    return dest;
}

char* CPropertyHead::StruprP(char* text) {
    if (!text) return text;
    for (char* c = text; *c; ++c)
        if (*c >= 'a' && *c <= 'z') *c = char(*c - 'a' + 'A');
    return text;
}

// ---- memory ----

void CPropertyHead::FreeValue(int type, void* value) {
    if (!value) return;
    if (type == PROPERTY_TYPE_LIST) {
        PROPERTY_VALUE_LIST list;
        std::memcpy(&list, value, sizeof list);
        delete[] list.items;
    }
    delete[] static_cast<std::uint8_t*>(value);
}

void CPropertyHead::FreeProperty(PROPERTY* property) {
    FreeValue(property->type, property->value);
    delete property;
}

void CPropertyHead::freeMemoAllProperty(int group) {
    if (group < 0 || group >= int(groups_.size())) return;
    Group* g = groups_[std::size_t(group)];
    for (PROPERTY* p : g->items) FreeProperty(p);
    g->items.clear();
    Relink(g);
}

void CPropertyHead::freeMemoAllGroup() {
    for (std::size_t i = 0; i < groups_.size(); ++i) {
        freeMemoAllProperty(int(i));
        delete groups_[i];
    }
    groups_.clear();
    Relink();
}

void CPropertyHead::CopyPage(const PROPERTY_PAGE& page) {
    if (&page == &page_) return;
    CPropertyHead copy;
    CopyName(copy.page_.title, page.title);
    CopyName(copy.page_.caption, page.caption);
    CopyName(copy.page_.description, page.description);
    std::memcpy(&copy.page_.system, &page.system, sizeof page.system);
    const int groups = std::max(0, std::min<int>(page.groupCount, kMaxGroups));
    for (int i = 0; i < groups && page.groups; ++i)
        if (page.groups[i]) copy.CopyGroup(*page.groups[i]);
    // The copy is complete before this page lets go of its own.
    freeMemoAllGroup();
    std::memcpy(&page_, &copy.page_, sizeof page_);
    groups_.swap(copy.groups_);
    Relink();
}

void CPropertyHead::CopyGroup(const PROPERTY_GROUP& group) {
    // Read before the page changes: `group` may be one of this page's own.
    const QString name = property::ReadUni(group.name, PROPERTY_NAME_UNITS);
    std::vector<PROPERTY> entries;
    const int count = std::max(0, std::min<int>(group.list.count, kMaxEntries));
    for (int i = 0; i < count && group.list.items; ++i)
        if (group.list.items[i]) entries.push_back(*group.list.items[i]);
    const int id = CreatePropertyGroup(name)->id;
    for (PROPERTY& p : entries) addProperty(id, p);
}
