#pragma once

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "model/PlainDictionaryPrinter.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace quillery::testing_support {

using Lines = std::vector<std::string>;

// A document with a fixed clock and an undo manager, its diagnostic lines and its announcements
// captured.
class DocumentFixture : public testing::Test {
public:
    DocumentFixture() {
        m_document.setUndoManager(&m_undoManager);
        m_document.addObserver(
            [this](const DocumentUpdate& update) { m_updates.push_back(update); });
    }
    ~DocumentFixture() override { m_undoManager.removeAllActions(); }

    // Adds a note by applying its creation record, without journaling or announcing it.
    NodePtr addNote(const NodePtr& parent, std::string text) {
        const Identifier identifier = Identifier::makeRandom();
        m_document.applyDiff(DocumentDiff(
            m_time, identifier, {{"text", std::move(text)}, {"parent", parent->identifier()}}));
        return m_document.node(identifier);
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

    // Tables name notes "@x": the roots "@root" and "@deleted", the notes a fixture names, and any
    // other x a new identifier kept for the test.
    Identifier named(std::string_view name) {
        return m_named.try_emplace(std::string(name), Identifier::makeRandom()).first->second;
    }

    // The text with every "@x" replaced by the identifier of x.
    std::string resolved(std::string_view text) {
        std::string out;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find_first_of(" ,.@", at + 1);
            const std::string_view word = text.substr(at, end - at);
            out += word.starts_with('@') ? named(word.substr(1)).toString() : std::string(word);
            at = std::min(end, text.size());
        }
        return out;
    }

    // A record written "@x key=value ...": a value "@y" names a note, "true" and "false" are truth
    // values, one starting with "#" is the JSON after it, anything else a text (no spaces).
    DocumentDiff record(std::string_view text) {
        std::istringstream words{std::string(text)};
        std::string note;
        words >> note;
        PlainDictionary payload;
        for (std::string word; words >> word;) {
            const std::size_t equals = word.find('=');
            const std::string value = word.substr(equals + 1);
            payload.set(word.substr(0, equals),
                        value == "true" || value == "false" ? PlainValue(value == "true")
                        : value.starts_with('#')            ? PlainValue(RawJson{value.substr(1)})
                        : value.starts_with('@')
                            ? PlainValue(named(std::string_view(value).substr(1)))
                            : PlainValue(value));
        }
        return DocumentDiff(m_time, named(std::string_view(note).substr(1)), std::move(payload));
    }

    TimePoint m_time = std::chrono::sys_days{std::chrono::year{2017} / 3 / 4};
    InMemoryPreferences m_preferences;
    Document m_document{m_preferences, nullptr, [this] {
                            return m_time;
                        }};
    UndoManager m_undoManager;
    Lines m_lines;
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
    std::vector<DocumentUpdate> m_updates;
    std::map<std::string, Identifier, std::less<>> m_named{{"root", Identifier("root")},
                                                           {"deleted", Identifier("deleted")}};
};

// "P" with children a, b, c and an empty "Q" under the root, named "@P", "@a" and so on.
class SmallNotebook : public DocumentFixture {
public:
    SmallNotebook() {
        P = addNote(m_document.rootNode(), "P");
        a = addNote(P, "a");
        b = addNote(P, "b");
        c = addNote(P, "c");
        Q = addNote(m_document.rootNode(), "Q");
        for (const NodePtr& node : {P, Q, a, b, c})
            m_named.emplace(node->text(), node->identifier());
    }

    NodePtr P, a, b, c, Q;
};

} // namespace quillery::testing_support
