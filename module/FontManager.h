// Font families for the user interface's font elements, by the host's selected language.
#pragma once

#include <QString>
#include <map>

namespace font {

// Font element of the user interface, 0 to 21.
enum elementCode : int {
    ELEMENT_FIRST = 0,
    ELEMENT_LAST = 21
};

struct Element {
    QString family;
    int size;
    int weight;
};

class Manager {
public:
    virtual ~Manager() {}
    virtual int getFontSize(int n) const = 0;

    // The family of the code; "Arial" for a code not in the map.
    QString GetFont(elementCode code) const;

protected:
    std::map<elementCode, Element> elements_;
};

class DefaultManager : public Manager {
public:
    DefaultManager();
    int getFontSize(int n) const override { return n; }
};

// Chinese (Simplified): SimSun throughout, two points larger.
class ChinaManager : public Manager {
public:
    ChinaManager();
    int getFontSize(int n) const override { return n + 2; }
};

// "Chinese (Simplified)" gives a ChinaManager, every other language a DefaultManager.
Manager* CreateManager(const QString& language);

}  // namespace font
