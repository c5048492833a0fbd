// The owner of a property page: the page record handed to the terminal's property dialog,
// its groups, their entries and the entries' value buffers, all owned here and kept in the
// host's record layout (abi/records/property_records.h) so the dialog can read and write
// them in place.
//
// Entries are added by copying a PROPERTY record together with its value buffer; the copy
// receives its group's id and its index in the group. Values are read and written through
// the typed wrappers (CPropertyParamItem), which throw PropertyException for what does not
// fit. A page that comes from the host is copied defensively: counts are bounded, null
// groups and entries are skipped, strings are read no further than their fields.
#pragma once

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <vector>

#include "abi/records/property_records.h"

class CPropertyParamItem;

class CPropertyHead {
public:
    // Most groups and entries per group taken from a page the host hands over.
    static constexpr int kMaxGroups = 256;
    static constexpr int kMaxEntries = 1024;
    // Most texts of a list entry.
    static constexpr int kMaxListItems = 4096;

    CPropertyHead();
    explicit CPropertyHead(const PROPERTY_PAGE& page);
    CPropertyHead(const unsigned short* title, const unsigned short* caption, const unsigned short* description,
                  const CORE_OBJECT_SYSTEM& system);
    CPropertyHead(const CPropertyHead& other);
    CPropertyHead& operator=(const CPropertyHead& other);
    virtual ~CPropertyHead();

    // The page's three strings and its object, anew; the groups stay.
    void ReInicDatePage(const QString& title, const QString& caption, const QString& description,
                        const CORE_OBJECT_SYSTEM& system);
    void ReNameDatePage(const QString& title);

    // A new empty group at the end of the page.
    PROPERTY_GROUP* CreatePropertyGroup(QString name);
    // A copy of `group` (its entries and values) at the end of the page; its id.
    int addGroup(const PROPERTY_GROUP& group);
    PROPERTY_GROUP* getPropertyGroup(int group) const;
    int getCountGroups() const { return int(groups_.size()); }
    // Entries of the group; 0 for a group that does not exist.
    int getCountPropertyInGroup(int group) const;

    // Adds a copy of `property` (and of its value buffer) to the group: the new index, or -1
    // when the group does not exist or memory runs out.
    int addProperty(int group, PROPERTY& property);
    // The entry's record; null when it does not exist.
    PROPERTY* getPropertyItem(int group, int index) const;
    // The entry's value through the wrapper of its type; an invalid variant for an entry
    // that does not exist or has a type without a wrapper. Wrappers may throw.
    QVariant GetPropertyItem(int group, int index) const;
    // Stores `value` into the entry through the wrapper of its type. 0 when stored, 1 when
    // the entry does not exist or its type has no wrapper. Wrappers may throw.
    int SetProperty(int group, int index, QVariant value);
    // Replaces the texts of a list entry and selects `selected` (0 when out of range).
    // False for an entry that is not a list.
    bool ChangePropertyListItem(int group, int index, QStringList items, int selected);
    // Takes the values of a page of the same shape (the dialog's copy of this one): for every
    // entry both pages have, at the same group and index and of the same type, the value is
    // copied; a list keeps its texts and takes the selection when it is in range. Returns
    // the number of values taken.
    int CopyWidgetParam(const PROPERTY_PAGE& page);
    // The wrapper of the entry's type on its value buffer (the caller owns it); null for a
    // null record or a type without a wrapper. With `allocate`, the entry first gets a new
    // zeroed buffer of the wrapper's size (throws "Error Memo int CPropertyParamItem" when
    // memory runs out). Throws the wrapper's "Error in ..." text never: the type is matched.
    static CPropertyParamItem* createData(PROPERTY* property, bool allocate);

    // ---- typed adders: the new entry's index, -1 when it could not be added ----
    int AddPropertyIntItem(int group, const unsigned short* name, const unsigned short* description, int value,
                           int minimum, int maximum, bool readOnly);
    // `allowNegative`: the value may be below 0; `decimals`: digits after the point.
    int AddPropertyDoubleItem(int group, const unsigned short* name, const unsigned short* description, double value,
                              bool allowNegative, int decimals, bool readOnly);
    int AddPropertyBoolItem(int group, const unsigned short* name, const unsigned short* description, bool value);
    int AddPropertyTextItem(int group, const unsigned short* name, const unsigned short* description,
                            const unsigned short* text);
    int AddPropertyColorItem(int group, const unsigned short* name, const unsigned short* description, QColor value);
    int AddPropertyFontItem(int group, const unsigned short* name, const unsigned short* description, QFont value);
    int AddPropertyListItem(int group, const unsigned short* name, const unsigned short* description,
                            const QStringList& items, int selected);
    int AddPropertyDateTimeItem(int group, const unsigned short* name, const unsigned short* description,
                                QDateTime value);
    int AddPropertyWidget(int group, const unsigned short* name, const unsigned short* description, int first,
                          int second);

    // ---- strings ----
    // Copies at most size - 1 characters of `source` and terminates; returns `dest`. Nothing
    // is written for a null destination or a size below 1; a null source gives "".
    static char* eStrCpyP(char* dest, int size, const char* source);
    static unsigned short* eStrCpyUni(unsigned short* dest, int size, const unsigned short* source);
    // Upper-cases the ASCII letters of `text` in place; returns it.
    static char* StruprP(char* text);

    // The page record handed to the terminal.
    PROPERTY_PAGE* GetPage() { return &page_; }
    const PROPERTY_PAGE* GetPage() const { return &page_; }

    // Stores the object's current settings as the defaults of its kind ("Save as default");
    // nothing for an object that has none.
    virtual void setStartParam() {}

    // Frees every entry of a group (the group stays, empty) / every group.
    void freeMemoAllProperty(int group);
    void freeMemoAllGroup();
    // Replaces this page by a deep copy of `page` / appends a deep copy of `group`.
    void CopyPage(const PROPERTY_PAGE& page);
    void CopyGroup(const PROPERTY_GROUP& group);

private:
    struct Group {
        PROPERTY_GROUP record;
        std::vector<PROPERTY*> items;
    };
    // Points the records at the vectors again after they changed.
    void Relink();
    void Relink(Group* group);
    int AddNew(int group, int type, const unsigned short* name, const unsigned short* description, int flag,
               const void* value);
    static void FreeProperty(PROPERTY* property);
    static void FreeValue(int type, void* value);

    PROPERTY_PAGE page_;
    std::vector<Group*> groups_;
    std::vector<PROPERTY_GROUP*> records_;
};
