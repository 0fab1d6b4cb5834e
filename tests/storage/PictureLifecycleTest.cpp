#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/NotebookPackage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace quillery::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PictureLifecycleTest : public ::testing::Test {
protected:
    diagnostics::ScopedSink m_quiet{[](std::string_view) {
    }};
    TemporaryDirectory m_directory;
    std::filesystem::path m_package = m_directory.path() / "Notes.quillery";
    Client m_a{kClientA};

    void saveInPlace() {
        auto error = package::saveInPlace(*m_a.document);
        ASSERT_FALSE(error) << error->message;
    }
    void saveTo(const std::filesystem::path& location) {
        auto error = package::saveTo(*m_a.document, location);
        ASSERT_FALSE(error) << error->message;
    }
    std::vector<std::string> pictures() const { return entryNames(m_package / "images"); }
};

// Steps on a saved notebook ("add" a picture note, "delete" it, "undo", "redo", "save" in place)
// and how many picture files the package then holds. Bytes of a note whose addition was undone
// are not written; a file once written stays while its note is deleted or undone.
struct StepsCase {
    const char* steps;
    std::size_t files;
};

class PictureSteps : public PictureLifecycleTest,
                     public ::testing::WithParamInterface<StepsCase> {};

TEST_P(PictureSteps, WriteEachPictureThatANoteShowedAtASave) {
    saveTo(m_package);
    std::istringstream steps(GetParam().steps);
    for (std::string step; steps >> step;) {
        if (step == "add")
            m_a.addPictureNote("bytes");
        else if (step == "delete")
            m_a.document->userDidDelete(*m_a.document->rootNode()->children().back());
        else if (step == "undo")
            m_a.undoManager.undo();
        else if (step == "redo")
            m_a.undoManager.redo();
        else
            saveInPlace();
    }
    EXPECT_EQ(pictures().size(), GetParam().files);
    EXPECT_THAT(m_a.document->images().newImageData(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Steps, PictureSteps,
                         ::testing::Values(StepsCase{"add undo save", 0},
                                           StepsCase{"add undo save redo save", 1},
                                           StepsCase{"add save undo save", 1},
                                           StepsCase{"add delete save", 1},
                                           StepsCase{"add add save", 2}));

TEST_F(PictureLifecycleTest, FirstSaveOfUntitledNotebookKeepsPicturesAndDiskCopyWinsNextTime) {
    Identifier key = m_a.addPictureNote("four");
    saveTo(m_package);
    std::string name = key.toString() + ".png";
    EXPECT_THAT(pictures(), ElementsAre(name));
    EXPECT_EQ(m_a.document->images().newImageData().size(), 1u);

    // The copy on disk wins over the one in memory, which is dropped.
    writeText(m_package / "images" / name, "PIC changed on disk");
    saveInPlace();
    EXPECT_EQ(readText(m_package / "images" / name), "PIC changed on disk");
    EXPECT_THAT(m_a.document->images().newImageData(), IsEmpty());
}

TEST_F(PictureLifecycleTest, SaveAsCarriesStoredPicturesAndWritesNewOnes) {
    saveTo(m_package);
    Identifier stored = m_a.addPictureNote("stored");
    saveInPlace();
    Identifier fresh = m_a.addPictureNote("fresh", "tiff");
    std::filesystem::path copy = m_directory.path() / "Copy.quillery";
    saveTo(copy);

    EXPECT_THAT(
        entryNames(copy / "images"),
        ::testing::UnorderedElementsAre(stored.toString() + ".png", fresh.toString() + ".tiff"));
    EXPECT_EQ(readText(copy / "images" / (stored.toString() + ".png")), "PICstored");
    EXPECT_THAT(m_a.document->images().newImageData(), IsEmpty());
}

} // namespace
} // namespace quillery::testing
