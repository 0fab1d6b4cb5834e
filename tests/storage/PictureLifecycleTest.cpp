#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/NotebookPackage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_F(PictureLifecycleTest, AddUndoSaveWritesNothingRedoSaveWritesTheFile) {
    saveTo(m_package);
    Identifier key = m_a.addPictureNote("one");
    m_a.undoManager.undo();
    EXPECT_THAT(m_a.document->images().newImageData(), IsEmpty());
    saveInPlace();
    EXPECT_THAT(pictures(), IsEmpty());

    m_a.undoManager.redo();
    saveInPlace();

    std::string name = key.toString() + ".png";
    EXPECT_THAT(pictures(), ElementsAre(name));
    EXPECT_EQ(readText(m_package / "images" / name), "PICone");
    EXPECT_THAT(m_a.document->images().newImageData(), IsEmpty());
}

TEST_F(PictureLifecycleTest, AddSaveUndoSaveKeepsTheFile) {
    saveTo(m_package);
    Identifier key = m_a.addPictureNote("two", "jpg");
    saveInPlace();
    m_a.undoManager.undo();
    saveInPlace();
    EXPECT_THAT(pictures(), ElementsAre(key.toString() + ".jpg"));

    m_a.reopen();
    ASSERT_FALSE(package::read(*m_a.document, m_package, m_a.codec));
    EXPECT_EQ(m_a.document->image(key)->width(), 6);
    EXPECT_TRUE(m_a.document->rootNode()->children().empty());
}

TEST_F(PictureLifecycleTest, DeletedPictureNoteIsStillSaved) {
    saveTo(m_package);
    Identifier key = m_a.addPictureNote("three");
    m_a.document->userDidMove(*m_a.document->rootNode()->children().back(),
                              *m_a.document->deletedRootNode());
    saveInPlace();
    EXPECT_THAT(pictures(), ElementsAre(key.toString() + ".png"));
}

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

TEST_F(PictureLifecycleTest, SameBytesTwiceGiveTwoKeysAndTwoFiles) {
    saveTo(m_package);
    Identifier first = m_a.addPictureNote("same");
    Identifier second = m_a.addPictureNote("same");
    EXPECT_NE(first, second);
    saveInPlace();
    EXPECT_EQ(pictures().size(), 2u);
}

TEST_F(PictureLifecycleTest, UrlIsKnownOnlyAfterReopening) {
    saveTo(m_package);
    Identifier key = m_a.addPictureNote("five");
    EXPECT_EQ(m_a.document->image(key)->width(), 7);
    EXPECT_FALSE(m_a.document->url(key));
    saveInPlace();
    EXPECT_FALSE(m_a.document->url(key));

    m_a.reopen();
    ASSERT_FALSE(package::read(*m_a.document, m_package, m_a.codec));
    EXPECT_EQ(m_a.document->url(key), m_package / "images" / (key.toString() + ".png"));
    EXPECT_EQ(m_a.document->image(Identifier("unknown"))->width(), -1); // the placeholder
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
