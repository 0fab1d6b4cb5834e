#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/JournalChanges.h"
#include "storage/NotebookPackage.h"
#include "storage/PosixFileSystem.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillery::testing {
namespace {

// A package as a sync tool leaves it: A's notes saved, then files of the tool's own beside them.
class SyncFolderTest : public ::testing::Test {
protected:
    SyncFolderTest() {
        m_a.addNote("one");
        m_a.addNote("two");
        expectOk(package::saveTo(*m_a.document, m_package));
        m_expected = treeText(*m_a.document);
    }

    static void expectOk(const std::optional<StorageError>& error) {
        EXPECT_FALSE(error) << error->message;
    }

    std::string readAs(Client& client, FileSystem& files) {
        client.reopen();
        expectOk(package::read(*client.document, m_package, client.codec, files));
        return treeText(*client.document);
    }

    std::filesystem::path journal(const std::string& client) const {
        return m_package / (client + ".journal");
    }

    diagnostics::ScopedSink m_sink{[](std::string_view) {
    }};
    TemporaryDirectory m_directory;
    std::filesystem::path m_package = m_directory.path() / "Notes.quillery";
    Client m_a{kClientA};
    Client m_b{kClientB};
    PosixFileSystem m_files;
    std::string m_expected;
};

class LeftoverName : public SyncFolderTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(LeftoverName, IsNotReadAsAJournal) {
    writeText(m_package / GetParam(), "{ half a downl");
    EXPECT_EQ(readAs(m_b, m_files), m_expected);
}

INSTANTIATE_TEST_SUITE_P(Names, LeftoverName,
                         ::testing::Values(".syncthing.X.journal.tmp",
                                           ".unison.X.journal.3a1f.unison.tmp", "X.journal.tmp",
                                           "X.journal.part", "X.journal.partial", "~X.journal",
                                           ".X.journal", "X.journal.crdownload"));

class ConflictCopy : public SyncFolderTest, public ::testing::WithParamInterface<const char*> {};

// Read by others, its shared records apply once; A's next save folds it into the journal.
TEST_P(ConflictCopy, IsReadAndThenFoldedIntoTheOwnJournal) {
    // The copy holds A's journal with one more note, the journal the older state: what a second
    // machine of the same identity leaves behind.
    const std::string older = readText(journal(kClientA));
    m_a.addNote("three");
    expectOk(package::saveInPlace(*m_a.document));
    const std::string withThree = treeText(*m_a.document);
    const std::filesystem::path copy = m_package / (kClientA + GetParam());
    std::filesystem::rename(journal(kClientA), copy);
    writeText(journal(kClientA), older);
    EXPECT_EQ(readAs(m_b, m_files), withThree);
    Client laterRun(kClientA);
    expectOk(package::read(*laterRun.document, m_package, laterRun.codec));
    expectOk(package::saveInPlace(*laterRun.document));
    EXPECT_FALSE(std::filesystem::exists(copy));
    EXPECT_EQ(readAs(m_b, m_files), withThree);
}

INSTANTIATE_TEST_SUITE_P(Names, ConflictCopy,
                         ::testing::Values(".sync-conflict-20250101-120000-ABCDEFG.journal",
                                           " (Laptop's conflicted copy 2025-01-01).journal"));

// Lists a journal that is renamed away before it is read, as a sync tool replacing it does.
class VanishingFileSystem : public PosixFileSystem {
public:
    std::error_code readFile(const std::filesystem::path& path, FileContents& contents,
                             std::uint64_t sizeLimit) override {
        if (path.filename() == "Z.journal")
            return std::make_error_code(std::errc::no_such_file_or_directory);
        return PosixFileSystem::readFile(path, contents, sizeLimit);
    }
};

TEST_F(SyncFolderTest, AJournalThatVanishesBeforeItIsReadIsSkipped) {
    writeText(m_package / "Z.journal", "{}");
    VanishingFileSystem files;
    EXPECT_EQ(readAs(m_b, files), m_expected);
}

// A folder, the files in it, and whether it opens as a notebook.
struct FolderCase {
    const char* name;
    const char* folder;
    std::vector<const char*> files;
    bool opens;
};

class NotebookFolder : public ::testing::TestWithParam<FolderCase> {
protected:
    diagnostics::ScopedSink m_sink{[](std::string_view) {
    }};
    TemporaryDirectory m_directory;
};

TEST_P(NotebookFolder, OpensOnlyByItsNameOrAJournalAndIsOtherwiseLeftAlone) {
    const std::filesystem::path folder = m_directory.path() / GetParam().folder;
    std::filesystem::create_directory(folder);
    for (const char* name : GetParam().files)
        writeText(folder / name, "{\"diffs\" : []}");
    Client client(kClientA);
    auto error = package::read(*client.document, folder, client.codec);
    EXPECT_EQ(!error, GetParam().opens);
    if (GetParam().opens)
        return;
    EXPECT_EQ(error->message, "“" + folder.string() + "” is not a Quillery notebook");
    EXPECT_TRUE(package::saveTo(*client.document, folder));
    const std::vector<std::string> expected(GetParam().files.begin(), GetParam().files.end());
    EXPECT_EQ(entryNames(folder), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NotebookFolder,
    ::testing::Values(FolderCase{"Named", "Trip.quillery", {}, true},
                      FolderCase{"HoldsAJournal", "Trip", {"X.journal"}, true},
                      FolderCase{"Empty", "Photos", {}, false},
                      FolderCase{"OtherFiles", "Photos", {"a.txt"}, false},
                      FolderCase{"OnlyALeftover", "Photos", {".X.journal.tmp"}, false}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

// Two processes of one installation (the app and the command-line tool, say) write one journal.
TEST_F(SyncFolderTest, WritersOfOneJournalKeepEachOthersRecordsAndShowThem) {
    Client other(kClientA);
    expectOk(package::read(*other.document, m_package, other.codec));
    other.addNote("from the other");
    expectOk(package::saveInPlace(*other.document));
    m_a.addNote("three");
    expectOk(package::saveInPlace(*m_a.document));
    other.addNote("later");
    expectOk(package::saveInPlace(*other.document));
    expectOk(package::saveInPlace(*m_a.document));
    const std::string all = treeText(*m_a.document);
    for (const char* text : {"one", "two", "three", "from the other", "later"})
        EXPECT_NE(all.find(text), std::string::npos) << text;
    EXPECT_EQ(readAs(m_b, m_files), all);
}

TEST(JournalLock, IsReleasedWhenItsHolderIsKilled) {
    TemporaryDirectory directory;
    const std::filesystem::path lockFile = directory.path() / "locks" / "a.lock";
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = ::fork();
    if (holder == 0) {
        PosixFileSystem files;
        std::unique_ptr<FileLock> lock;
        if (files.lockExclusively(lockFile, lock))
            ::_exit(1);
        (void)!::write(ready[1], "x", 1);
        ::pause();
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    const int fd = ::open(lockFile.c_str(), O_RDWR);
    EXPECT_NE(::flock(fd, LOCK_EX | LOCK_NB), 0) << "held by the other process";
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(::flock(fd, LOCK_EX | LOCK_NB), 0);
    ::close(fd);
}

// The notebook is open in A while B, its clock off by some hours, adds a note; A has an unsaved
// edit of its own.
struct LiveCase {
    const char* name;
    int clockHours;
    Document::MergeOutcome outcome;
};

class LiveMerge : public SyncFolderTest, public ::testing::WithParamInterface<LiveCase> {};

TEST_P(LiveMerge, NewRecordsJoinTheOpenNotebookInPlaceOrByAReplay) {
    Client b(kClientB, [] { return CurrentTime() + std::chrono::hours(GetParam().clockHours); });
    expectOk(package::read(*b.document, m_package, b.codec));
    b.addNote("from B");
    expectOk(package::saveInPlace(*b.document));
    NodePtr mine = m_a.addNote("unsaved");
    std::vector<DocumentUpdate> updates;
    m_a.document->addObserver([&](const DocumentUpdate& update) { updates.push_back(update); });

    JournalChanges changes = readJournalChanges(m_package, m_a.document->journalIdentities(),
                                                m_a.document->journalMarks(), m_files);
    ASSERT_FALSE(changes.error);
    ASSERT_FALSE(changes.needsReplay);
    EXPECT_EQ(m_a.document->mergeRecords(changes.appended), GetParam().outcome);
    if (GetParam().outcome == Document::MergeOutcome::needsReplay) {
        EXPECT_TRUE(updates.empty());
        Client fresh(kClientA);
        expectOk(package::replay(*fresh.document, m_package, fresh.codec,
                                 m_a.document->journalRecords()));
        m_a.document->adoptReplayedTree(*fresh.document);
    }
    m_a.document->setJournalIdentities(changes.identities);
    ASSERT_EQ(updates.size(), 1u);
    const std::string tree = treeText(*m_a.document);
    EXPECT_NE(tree.find("from B"), std::string::npos);
    EXPECT_NE(tree.find("unsaved"), std::string::npos);
    // Undo takes back exactly A's own edit, and nothing new is left to merge.
    m_a.undoManager.undo();
    EXPECT_EQ(treeText(*m_a.document).find("unsaved"), std::string::npos);
    EXPECT_TRUE(readJournalChanges(m_package, m_a.document->journalIdentities(),
                                   m_a.document->journalMarks(), m_files)
                    .appended.empty());
}

INSTANTIATE_TEST_SUITE_P(Cases, LiveMerge,
                         ::testing::Values(LiveCase{"LaterRecordsApplyInPlace", 1,
                                                    Document::MergeOutcome::applied},
                                           LiveCase{"EarlierRecordsNeedAReplay", -1,
                                                    Document::MergeOutcome::needsReplay}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(SyncFolderTest, ADamagedJournalIsNamedAndChangesNothing) {
    writeText(journal(kClientB), "{ \"diffs\" : [");
    JournalChanges changes = readJournalChanges(m_package, m_a.document->journalIdentities(),
                                                m_a.document->journalMarks(), m_files);
    ASSERT_TRUE(changes.error);
    EXPECT_NE(changes.error->message.find(kClientB + ".journal"), std::string::npos);
}

} // namespace
} // namespace quillery::testing
