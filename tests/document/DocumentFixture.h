#pragma once

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "model/PlainDictionaryPrinter.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillery::testing_support {

// A document with a fixed clock, its diagnostic lines and its announcements captured.
class DocumentFixture : public testing::Test {
protected:
    DocumentFixture() {
        m_document.addObserver(
            [this](const DocumentUpdate& update) { m_updates.push_back(update); });
    }

    // Adds a note by applying its creation record, without journaling or announcing it.
    NodePtr addNote(const NodePtr& parent, std::string text) {
        const Identifier identifier = Identifier::makeRandom();
        m_document.applyDiff(DocumentDiff(
            m_time, identifier, {{"text", std::move(text)}, {"parent", parent->identifier()}}));
        return m_document.node(identifier);
    }

    void apply(const Identifier& identifier, PlainDictionary payload) {
        m_document.applyDiff(DocumentDiff(m_time, identifier, std::move(payload)), true);
    }

    // The texts of the node's children, in order.
    static std::vector<std::string> texts(const NodePtr& parent) {
        std::vector<std::string> result;
        for (const auto& child : parent->children())
            result.push_back(child->text());
        return result;
    }

    // The tree under both roots as one line, e.g. "root(a(b) c) deleted()".
    std::string outline() const {
        return describe(*m_document.rootNode()) + " " + describe(*m_document.deletedRootNode());
    }

    static std::string describe(const NotebookNode& node) {
        std::string out = node.identifier().isUuid() ? node.text() : node.identifier().toString();
        out += '(';
        for (std::size_t i = 0; i < node.children().size(); ++i) {
            if (i > 0)
                out += ' ';
            out += describe(*node.children()[i]);
        }
        out += ')';
        return out;
    }

    TimePoint m_time = std::chrono::sys_days{std::chrono::year{2017} / 3 / 4};
    InMemoryPreferences m_preferences;
    Document m_document{m_preferences, nullptr, [this] {
                            return m_time;
                        }};
    std::vector<std::string> m_lines;
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
    std::vector<DocumentUpdate> m_updates;
};

} // namespace quillery::testing_support
