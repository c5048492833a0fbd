// Walks the "Node" children of an undo record's root and hands each to a visitor's
// Visit(CXMLWorkData*); a visitor acts only on the nodes of its own kind ("ObjectType").
#pragma once

#include <memory>

#include "xml/CXMLWorkData.h"

template <class V>
class XMLTreeWalker {
public:
    XMLTreeWalker(CXMLWorkData* root, V& visitor) : root_(root), visitor_(visitor) {}

    // The number of nodes visited; at most `limit` (a record edited by hand may hold any
    // number of nodes).
    int Walk(int limit = 4096) {
        if (!root_) return 0;
        int n = 0;
        std::unique_ptr<CXMLWorkData> node(root_->getFirstNode("Node"));
        for (; node && n < limit; ++n) {
            visitor_.Visit(node.get());
            node.reset(root_->getNextNode());
        }
        return n;
    }

private:
    CXMLWorkData* root_;
    V& visitor_;
};
