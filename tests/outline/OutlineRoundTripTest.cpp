#include "document/Document.h"
#include "document/InMemoryPreferences.h"
#include "document/UndoManager.h"
#include "outline/NoteWalk.h"
#include "outline/OutlineExport.h"
#include "outline/OutlineImport.h"
#include "outline/OutlineInsertion.h"
#include "storage/HeaderPictureCodec.h"

#include <gtest/gtest.h>
#include <sstream>

namespace quillery {
namespace {

const std::string kPng("\x89PNG\r\n\x1A\n", 8);

// Lines that look like markup in every format, Unicode, and texts that are empty or all breaks.
const std::vector<std::string> kTexts = {
    "Plain",
    "",
    "Ünïcødé 漢字 🎉 עברית",
    "- looks like an item\n* another\n1. numbered\n2) too",
    "# heading\n> quote\n```\n~~~\n---\n===\n[ref]: /x",
    "\n\nstarts and ends with breaks\n\n",
    "  leading spaces\n\tand a tab\n   ",
    "\\\n\\- escaped already\n\\\\# twice",
    "<b>&amp;</b> \"quoted\" 'single'",
    "*emphasis* **bold** `code` [link](https://example.org)",
    "[a label over\ntwo lines]: /target",
    "[](https://example.org/no-text)",
    "`\n`",
};

// A generated outline: every text at several depths, a chain 40 deep, pictures and addresses.
Outline generatedOutline() {
    Outline outline;
    std::size_t depth = 0;
    for (std::size_t i = 0; i < 3 * kTexts.size(); ++i) {
        const std::size_t added = outline.add(depth, kTexts[i % kTexts.size()]);
        if (i % 4 == 1)
            outline.back().url = "https://example.org/" + std::to_string(i);
        depth = (added * 7 + i) % 5;
    }
    for (std::size_t level = 0; level < 40; ++level)
        outline.add(level, "level " + std::to_string(level));
    outline.add(1, "", std::nullopt,
                OutlinePicture{std::vector<std::uint8_t>(kPng.begin(), kPng.end()), {}, "png"});
    outline.add(2, "caption", std::nullopt,
                OutlinePicture{std::vector<std::uint8_t>(kPng.begin(), kPng.end()), {}, "png"});
    return outline;
}

class OutlineFixture : public ::testing::Test {
protected:
    OutlineFixture() { m_document.setUndoManager(&m_undo); }
    ~OutlineFixture() override { m_undo.removeAllActions(); }

    InMemoryPreferences m_preferences;
    HeaderPictureCodec m_codec;
    Document m_document{m_preferences, &m_codec};
    UndoManager m_undo;
};

std::string formatName(ExportFormat format);
class OutlineRoundTripTest : public OutlineFixture,
                             public ::testing::WithParamInterface<ExportFormat> {
protected:
    std::string exported(const Document& document) {
        std::ostringstream out;
        exportNotes(document, nullptr, GetParam(), {}, out);
        return out.str();
    }

    ImportFormat importFormat() const {
        switch (GetParam()) {
        case ExportFormat::opml:
            return ImportFormat::opml;
        case ExportFormat::markdown:
            return ImportFormat::markdown;
        default:
            return ImportFormat::text;
        }
    }
};

TEST_P(OutlineRoundTripTest, ExportImportExportGivesTheSameFile) {
    insertOutline(m_document, generatedOutline(), *m_document.rootNode(), 0, "Import");
    const std::string first = exported(m_document);

    const ParsedOutline parsed = parseOutline(first, importFormat());
    ASSERT_FALSE(parsed.error) << parsed.error->line << ": " << parsed.error->message;
    Document again(m_preferences, &m_codec);
    insertOutline(again, parsed.outline, *again.rootNode(), 0, "Import");
    EXPECT_EQ(exported(again), first);

    // OPML and markdown keep every text exactly (markdown with the address after it); text keeps
    // them up to blank last lines.
    if (GetParam() == ExportFormat::text)
        return;
    const Outline original = note_walk::outlineFromNotes(m_document, *m_document.rootNode());
    const Outline read = note_walk::outlineFromNotes(again, *again.rootNode());
    ASSERT_EQ(read.size(), original.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        if (original.notes()[i].picture)
            continue; // a picture comes back as a link to its file
        const OutlineNote& note = original.notes()[i];
        const std::string address = GetParam() == ExportFormat::markdown && note.url
                                        ? " <" + *note.url + ">"
                                        : std::string();
        EXPECT_EQ(read.notes()[i].text, note.text + address) << "note " << i;
        EXPECT_EQ(read.notes()[i].depth, original.notes()[i].depth) << "note " << i;
    }
}

std::string formatName(ExportFormat format) {
    return format == ExportFormat::opml       ? "opml"
           : format == ExportFormat::markdown ? "markdown"
                                              : "text";
}

INSTANTIATE_TEST_SUITE_P(Formats, OutlineRoundTripTest,
                         ::testing::Values(ExportFormat::opml, ExportFormat::markdown,
                                           ExportFormat::text),
                         [](const auto& test) { return formatName(test.param); });

TEST_F(OutlineFixture, AnInsertionIsOneUndoStepWithNewIdentifiers) {
    const NodePtr existing = NotebookNode::create(Identifier("root"), "existing");
    m_document.userDidAdd(*existing, *m_document.rootNode(), 0);
    const Outline outline = generatedOutline();
    const std::vector<Identifier> top =
        insertOutline(m_document, outline, *m_document.rootNode(), 0, "Paste");
    const std::size_t notes = m_document.nodeCount();
    ASSERT_EQ(m_document.rootNode()->children().back()->text(), "existing");
    EXPECT_EQ(m_document.rootNode()->children().front()->identifier(), top.front());
    EXPECT_EQ(m_undo.undoActionName(), "Paste");

    m_undo.undo();
    EXPECT_EQ(m_document.rootNode()->children().size(), 1u);
    EXPECT_EQ(m_undo.redoActionName(), "Paste");
    m_undo.redo();
    EXPECT_EQ(m_document.nodeCount(), notes);
    EXPECT_EQ(m_document.rootNode()->children().front()->identifier(), top.front());
    m_undo.undo();
    m_undo.undo();
    EXPECT_TRUE(m_document.rootNode()->children().empty());
}

TEST_F(OutlineFixture, APictureThatCannotBeReadBecomesANoteNamingIt) {
    Outline outline;
    outline.add(0, "", std::nullopt, OutlinePicture{{}, "/nowhere/lost.png", "png"});
    outline.add(0, "", std::nullopt, OutlinePicture{{1, 2, 3}, "junk.png", "png"});
    insertOutline(m_document, outline, *m_document.rootNode(), 0, "Paste");
    const auto& notes = m_document.rootNode()->children();
    EXPECT_EQ(notes[0]->text(), "Missing picture: lost.png");
    EXPECT_EQ(notes[1]->text(), "Missing picture: junk.png");
    EXPECT_FALSE(notes[0]->imageIdentifier());
}

} // namespace
} // namespace quillery
