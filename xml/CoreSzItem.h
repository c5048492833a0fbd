// One attribute of a work-data node as the module caches it: name, text value and the host
// handle of the node it belongs to. The attribute set orders and identifies entries by name.
#pragma once

#include <QString>

class CCoreSzItem {
public:
    CCoreSzItem() = default;
    CCoreSzItem(const QString& name, const QString& value, void* node = nullptr)
        : name(name), value(value), node(node) {}

    bool operator<(const CCoreSzItem& other) const { return name < other.name; }

    QString name;
    QString value;
    void* node = nullptr;
};
