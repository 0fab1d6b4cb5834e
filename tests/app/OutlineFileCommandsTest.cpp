#include "app/AppFixture.h"

#include <fstream>
#include <sstream>

namespace quillery {
namespace {

class OutlineFileCommandsTest : public OutlineWindowFixture {
protected:
    std::filesystem::path writeFile(const std::string& name, const std::string& content) {
        const std::filesystem::path file = path(name);
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    static std::string readFile(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }
};

// File → Import… with A selected in the first column.
struct ImportCase {
    const char* name;
    const char* file;
    const char* content;
    const char* outline;
    const char* warning; // the warning's details, or null for none
};

const ImportCase kImports[] = {
    {"Opml", "plan.opml",
     "<?xml version=\"1.0\"?>\n<opml version=\"2.0\"><head/><body>\n"
     "<outline text=\"x\" _note=\"y\"/><outline text=\"z\"/></body></opml>\n",
     "A(a1 a2) x(y) z B C", nullptr},
    {"Markdown", "plan.md", "# x\n\n- y\n\n# z\n", "A(a1 a2) x(y) z B C", nullptr},
    {"TextWhateverTheExtension", "plan.outline", "x\n  y\nz\n", "A(a1 a2) x(y) z B C", nullptr},
    {"BadOpml", "plan.opml", "<opml version=\"2.0\">\n<body>\n<outline text=\"x\">\n</body>\n",
     "A(a1 a2) B C", "plan.opml, line 4: "},
    {"NoNotes", "plan.txt", "\n\n", "A(a1 a2) B C", "plan.txt holds no notes."},
    {"Missing", "gone.md", nullptr, "A(a1 a2) B C", "gone.md: "},
};

class Imports : public OutlineFileCommandsTest, public ::testing::WithParamInterface<ImportCase> {};

TEST_P(Imports, AddTheOutlineAfterTheSelectedNoteAsOneStepOrNothing) {
    const ImportCase& test = GetParam();
    prompts.outlineToImport = test.content ? writeFile(test.file, test.content) : path(test.file);
    action(*window, "actionImportOutline").trigger();
    EXPECT_EQ(notebookOutline(), test.outline);
    if (test.warning) {
        ASSERT_EQ(prompts.warnings.size(), 1u);
        EXPECT_TRUE(prompts.warnings[0].details.startsWith(QString::fromUtf8(test.warning)))
            << prompts.warnings[0].details.toStdString();
        EXPECT_EQ(action(*window, "actionUndo").text(), QStringLiteral("&Undo"));
    } else {
        EXPECT_TRUE(prompts.warnings.empty());
        EXPECT_EQ(selectedText(), "x");
        EXPECT_EQ(action(*window, "actionUndo").text(), QStringLiteral("&Undo Import"));
    }
}

INSTANTIATE_TEST_SUITE_P(Files, Imports, ::testing::ValuesIn(kImports),
                         [](const auto& caseInfo) { return std::string(caseInfo.param.name); });

// Export Note… writes the selected note's subtree, Export Notebook… everything, in the format the
// dialog chose; a file that cannot be written is reported.
TEST_F(OutlineFileCommandsTest, ExportsTheNoteOrTheNotebookInTheChosenFormat) {
    prompts.exportTarget = {path("A.md"), ExportFormat::markdown};
    action(*window, "actionExportNote").trigger();
    EXPECT_EQ(readFile(path("A.md")), "- A\n  - a1\n  - a2\n");

    prompts.exportTarget = {path("all.txt"), ExportFormat::text};
    action(*window, "actionExportNotebook").trigger();
    EXPECT_EQ(readFile(path("all.txt")), "- A\n  - a1\n  - a2\n- B\n- C\n");
    EXPECT_EQ(prompts.exportNamesSuggested,
              (std::vector<QString>{QStringLiteral("A"), window->displayName()}));

    prompts.exportTarget = {path("no such folder") / "A.opml", ExportFormat::opml};
    action(*window, "actionExportNote").trigger();
    ASSERT_EQ(prompts.warnings.size(), 1u);
    EXPECT_EQ(prompts.warnings[0].text,
              QStringLiteral("The notes could not be exported to “A.opml”."));
}

} // namespace
} // namespace quillery
