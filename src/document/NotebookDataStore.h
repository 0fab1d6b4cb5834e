#pragma once

#include "model/NotebookNode.h"

#include <string>

namespace quillery {

// The data operations a notebook offers its views: lookup, text change, addition and indexing.
class NotebookDataStore {
public:
    virtual ~NotebookDataStore() = default;
    virtual NodePtr node(const Identifier& identifier) const = 0;
    virtual void modify(NotebookNode& node, std::string text) = 0;
    virtual void add(const NotebookNode& child, const NotebookNode& toNode, long at) = 0;
    virtual void addLookup(NodePtr node) = 0;
};

} // namespace quillery
