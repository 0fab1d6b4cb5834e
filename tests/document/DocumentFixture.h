#pragma once

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "model/PlainDictionaryPrinter.h"

#include <gtest/gtest.h>
#include <map>
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

    // Applies a record as one from another installation is applied, with notification.
    void apply(const Identifier& identifier, PlainDictionary payload) {
        m_document.applyDiff(DocumentDiff(m_time, identifier, std::move(payload)), true);
    }

    // The texts of the node's children, in order.
    static Lines texts(const NodePtr& parent) {
        Lines result;
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
    UndoManager m_undoManager;
    Lines m_lines;
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
    std::vector<DocumentUpdate> m_updates;
};

// "P" with children a, b, c and an empty "Q" under the root. Texts of tables name these notes as
// "@P", "@a" and so on; any other "@x" is a note the fixture lacks, a new identifier per case.
class SmallNotebook : public DocumentFixture {
public:
    SmallNotebook() {
        P = addNote(m_document.rootNode(), "P");
        a = addNote(P, "a");
        b = addNote(P, "b");
        c = addNote(P, "c");
        Q = addNote(m_document.rootNode(), "Q");
        m_named = {{"P", P->identifier()},
                   {"Q", Q->identifier()},
                   {"a", a->identifier()},
                   {"b", b->identifier()},
                   {"c", c->identifier()},
                   {"root", Identifier("root")},
                   {"deleted", Identifier("deleted")}};
    }

    Identifier named(std::string_view name) {
        auto [entry, added] = m_named.try_emplace(std::string(name), Identifier::makeRandom());
        return entry->second;
    }

    // The text with every "@x" replaced by the identifier of x.
    std::string resolved(std::string_view text) {
        std::string out;
        for (std::size_t at = 0; at < text.size();) {
            if (text[at] != '@' || at + 1 == text.size()) {
                out += text[at++];
                continue;
            }
            std::size_t end = at + 1;
            while (end < text.size() && std::isalnum(static_cast<unsigned char>(text[end])))
                ++end;
            out += named(text.substr(at + 1, end - at - 1)).toString();
            at = end;
        }
        return out;
    }

    // The payload with its texts resolved; "deleted" and "root" stay the roots.
    PlainDictionary resolved(const PlainDictionary& payload) {
        PlainDictionary out;
        for (const auto& [key, value] : payload) {
            const std::optional<std::string> text = value.text();
            out.set(key, text && text->starts_with('@') ? PlainValue(Identifier(resolved(*text)))
                                                        : value);
        }
        return out;
    }

    NodePtr P, a, b, c, Q;
    std::map<std::string, Identifier, std::less<>> m_named;
};

} // namespace quillery::testing_support
