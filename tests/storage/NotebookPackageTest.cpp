#include "storage/NotebookPackage.h"

#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/PosixFileSystem.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillery::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::string journalOf(const std::string& client) {
    return client + ".journal";
}

class NotebookPackageTest : public ::testing::Test {
protected:
    // Captures the diagnostic lines so they neither clutter the output nor go unchecked.
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
    std::vector<std::string> m_lines;
    TemporaryDirectory m_directory;
    std::filesystem::path m_package = m_directory.path() / "Notes.quillery";
    Client m_a{kClientA};

    void save(Client& client, const std::filesystem::path& location) {
        auto error = package::saveTo(*client.document, location);
        ASSERT_FALSE(error) << error->message;
    }
    void saveInPlace(Client& client) {
        auto error = package::saveInPlace(*client.document);
        ASSERT_FALSE(error) << error->message;
    }
    void open(Client& client, const std::filesystem::path& location) {
        client.reopen();
        auto error = package::read(*client.document, location, client.codec);
        ASSERT_FALSE(error) << error->message;
    }
    std::optional<StorageError> tryOpen(Client& client, const std::filesystem::path& location) {
        client.reopen();
        return package::read(*client.document, location, client.codec);
    }
    // A package written by A, then B, then C, each adding notes.
    void makeSharedPackage(Client& b, Client& c) {
        auto first = m_a.addNote("from A");
        m_a.addNote("child of A", first);
        save(m_a, m_package);
        open(b, m_package);
        b.addNote("from B");
        saveInPlace(b);
        open(c, m_package);
        c.addNote("from C");
        saveInPlace(c);
    }
};

TEST_F(NotebookPackageTest, NewNotebookSavesEmptyJournalAndImagesFolder) {
    save(m_a, m_package);

    EXPECT_THAT(entryNames(m_package), ElementsAre(journalOf(kClientA), "images"));
    EXPECT_TRUE(entryNames(m_package / "images").empty());
    std::string journal = readText(m_package / journalOf(kClientA));
    EXPECT_THAT(journal, HasSubstr("\"schema\" : \"1.0\",\n  \"version\" : 0,\n  \"client\" : \"" +
                                   kClientA + "\""));
    EXPECT_THAT(journal, HasSubstr("\"diffs\" : []"));
    EXPECT_FALSE(m_a.document->hasUnsavedChanges());
    EXPECT_EQ(m_a.document->fileLocation(), m_package);
}

TEST_F(NotebookPackageTest, RoundTripGivesSameTreeAndLogWithStampsInWholeSeconds) {
    auto first = m_a.addNote("first");
    auto second = m_a.addNote("second \"quoted\"\nand ünïcödé");
    m_a.addNote("nested", first);
    m_a.document->userDidModify(*first, "first, edited");
    m_a.document->userDidMove(*second, *m_a.document->deletedRootNode());
    std::string tree = treeText(*m_a.document);
    std::vector<DocumentDiff> log = m_a.document->diffs();
    save(m_a, m_package);

    open(m_a, m_package);

    EXPECT_EQ(treeText(*m_a.document), tree);
    const auto& read = m_a.document->diffs();
    ASSERT_EQ(read.size(), log.size());
    for (std::size_t i = 0; i < log.size(); ++i) {
        EXPECT_EQ(read[i].identifier, log[i].identifier);
        EXPECT_EQ(read[i].timestamp, std::chrono::floor<std::chrono::seconds>(log[i].timestamp));
        PlainDictionary payload = log[i].payload;
        payload.erase("identifier");
        EXPECT_EQ(read[i].payload, payload);
    }
    EXPECT_FALSE(m_a.document->hasUnsavedChanges());
}

TEST_F(NotebookPackageTest, UnknownPayloadValuesSurviveASaveVerbatim) {
    std::filesystem::create_directory(m_package);
    writeText(m_package / journalOf(kClientA),
              R"({"diffs": [{"timestamp": "2017-03-04T09:15:02GMT", "identifier": "N1",
                  "text": "t", "parent": "root", "weight": 1.50, "tags": {"a": [1, null]}}]})");
    open(m_a, m_package);
    saveInPlace(m_a);

    std::string journal = readText(m_package / journalOf(kClientA));
    EXPECT_THAT(journal, HasSubstr("\"weight\" : 1.50"));
    EXPECT_THAT(journal, HasSubstr("\"tags\" : {\"a\": [1, null]}"));
    open(m_a, m_package);
    EXPECT_EQ(m_a.document->rootNode()->children().size(), 1u);
}

TEST_F(NotebookPackageTest, OtherClientsJournalsAreCarriedByteForByte) {
    Client b(kClientB), c(kClientC);
    makeSharedPackage(b, c);
    std::string journalB = readText(m_package / journalOf(kClientB));
    std::string journalC = readText(m_package / journalOf(kClientC));

    open(m_a, m_package);
    EXPECT_EQ(m_a.document->rootNode()->children().size(), 3u);
    m_a.addNote("A again");
    saveInPlace(m_a);
    std::filesystem::path copy = m_directory.path() / "Copy.quillery";
    save(m_a, copy);

    for (const auto& package : {m_package, copy}) {
        EXPECT_EQ(readText(package / journalOf(kClientB)), journalB);
        EXPECT_EQ(readText(package / journalOf(kClientC)), journalC);
        open(b, package);
        EXPECT_EQ(b.document->rootNode()->children().size(), 4u);
    }
    EXPECT_EQ(m_a.document->fileLocation(), copy);
}

TEST_F(NotebookPackageTest, PackageOpenedByNewClientReplaysAllAndStartsEmptyLog) {
    Client b(kClientB), c(kClientC);
    makeSharedPackage(b, c);
    Client newcomer("DDDDDDDD-0000-4000-8000-000000000004");

    open(newcomer, m_package);
    EXPECT_EQ(newcomer.document->rootNode()->children().size(), 3u);
    EXPECT_TRUE(newcomer.document->diffs().empty());
    newcomer.addNote("D");
    saveInPlace(newcomer);
    EXPECT_THAT(entryNames(m_package), Contains(journalOf("DDDDDDDD-0000-4000-8000-000000000004")));
    EXPECT_EQ(entryNames(m_package).size(), 5u);
}

TEST_F(NotebookPackageTest, OwnJournalRecordsAreReplayedOnceAndAdoptedAsLog) {
    m_a.addNote("one");
    m_a.addNote("two");
    save(m_a, m_package);
    open(m_a, m_package);
    EXPECT_EQ(m_a.document->rootNode()->children().size(), 2u);
    EXPECT_EQ(m_a.document->diffs().size(), 2u);
}

TEST_F(NotebookPackageTest, JournalsMergeInByteOrderOfNamesForRecordsOfTheSameSecond) {
    std::filesystem::create_directory(m_package);
    auto journal = [](const std::string& id, const std::string& text) {
        return R"({"diffs": [{"timestamp": "2017-03-04T09:15:02GMT", "identifier": ")" + id +
               R"(", "text": ")" + text + R"(", "parent": "root"}]})";
    };
    // Written in reverse, so directory order is unlikely to be the byte order by chance.
    writeText(m_package / "b.journal", journal("NB", "from b"));
    writeText(m_package / "B.journal", journal("NBB", "from B"));
    writeText(m_package / "a.journal", journal("NA", "from a"));

    open(m_a, m_package);

    const auto& children = m_a.document->rootNode()->children();
    ASSERT_EQ(children.size(), 3u);
    EXPECT_EQ(children[0]->text(), "from B");
    EXPECT_EQ(children[1]->text(), "from a");
    EXPECT_EQ(children[2]->text(), "from b");
}

TEST_F(NotebookPackageTest, RecordsOutOfTimeOrderAreSortedByTime) {
    std::filesystem::create_directory(m_package);
    auto record = [](const std::string& second, const std::string& id) {
        return R"({"timestamp": "2017-03-04T10:00:)" + second + R"(GMT", "identifier": ")" + id +
               R"(", "text": ")" + id + R"(", "parent": "root"})";
    };
    writeText(m_package / "a.journal",
              "{\"diffs\": [" + record("03", "third") + ", " + record("01", "first") + "]}");
    writeText(m_package / "b.journal", "{\"diffs\": [" + record("02", "second") + "]}");

    open(m_a, m_package);

    std::vector<std::string> texts;
    for (const NodePtr& child : m_a.document->rootNode()->children())
        texts.push_back(child->text());
    EXPECT_THAT(texts, ElementsAre("first", "second", "third"));
}

TEST_F(NotebookPackageTest, OnlyTheFirstBadJournalIsReported) {
    std::filesystem::create_directory(m_package);
    const char* badRecord = R"({"diffs": [{"identifier": "N"}]})";
    writeText(m_package / "a.journal", badRecord);
    writeText(m_package / "b.journal", badRecord);

    auto error = tryOpen(m_a, m_package);

    ASSERT_TRUE(error);
    EXPECT_THAT(error->message, HasSubstr("“a.journal”"));
    EXPECT_THAT(m_lines, ElementsAre("Bad diff."));
}

TEST_F(NotebookPackageTest, BackupOfOwnJournalIsNotCarriedButIsReadAsJournal) {
    m_a.addNote("note");
    save(m_a, m_package);
    std::filesystem::copy_file(m_package / journalOf(kClientA),
                               m_package / (journalOf(kClientA) + ".bak"));
    package::PackageSummary summary;
    PosixFileSystem files;
    m_a.reopen();
    ASSERT_FALSE(package::read(*m_a.document, m_package, m_a.codec, files, &summary));
    ASSERT_EQ(summary.journals.size(), 2u);
    EXPECT_EQ(summary.journals[1].fileName, journalOf(kClientA) + ".bak");
    // Both journals replay the same creation: one note, then the same note placed again.
    EXPECT_EQ(m_a.document->rootNode()->children().size(), 1u);

    std::filesystem::path copy = m_directory.path() / "Copy.quillery";
    save(m_a, copy);
    EXPECT_THAT(entryNames(copy), ElementsAre(journalOf(kClientA), "images"));

    writeText(m_package / (journalOf(kClientA) + ".bak"), "not a journal");
    auto error = tryOpen(m_a, m_package);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, 3840);
    EXPECT_THAT(error->message, HasSubstr(journalOf(kClientA) + ".bak"));
}

TEST_F(NotebookPackageTest, HiddenFilesAreCarriedSubdirectoriesAndLinksAreNot) {
    save(m_a, m_package);
    TemporaryDirectory outside;
    writeText(outside.path() / "secret.txt", "secret");
    writeText(m_package / ".hidden", "hidden bytes");
    writeText(m_package / "README", "readme");
    std::filesystem::create_directory(m_package / "attachments");
    writeText(m_package / "attachments" / "a.txt", "a");
    std::filesystem::create_symlink(outside.path() / "secret.txt", m_package / "link.txt");
    std::filesystem::create_symlink(outside.path() / "secret.txt",
                                    m_package / "images" / "link.png");

    open(m_a, m_package);
    std::filesystem::path copy = m_directory.path() / "Copy.quillery";
    save(m_a, copy);

    EXPECT_THAT(entryNames(copy), ElementsAre(".hidden", journalOf(kClientA), "README", "images"));
    EXPECT_EQ(readText(copy / ".hidden"), "hidden bytes");
    EXPECT_TRUE(entryNames(copy / "images").empty());
}

TEST_F(NotebookPackageTest, LinksInsideThePackageAreNeverRead) {
    TemporaryDirectory outside;
    writeText(outside.path() / "evil.journal", "not even JSON");
    writeText(outside.path() / "picture.png", "PIC outside");
    std::filesystem::create_directory(m_package);
    std::filesystem::create_symlink(outside.path() / "evil.journal", m_package / "x.journal");
    std::filesystem::create_symlink(outside.path(), m_package / "images");

    open(m_a, m_package);

    EXPECT_FALSE(m_a.document->url(Identifier("picture")));
    // Saving in place must not write through the linked folder either.
    EXPECT_TRUE(package::saveInPlace(*m_a.document));
    EXPECT_THAT(entryNames(outside.path()), ElementsAre("evil.journal", "picture.png"));
}

TEST_F(NotebookPackageTest, PicturesAreIndexedByFileNameWithoutKnownExtensions) {
    std::filesystem::create_directories(m_package / "images");
    for (const char* name : {"3F2A.png", "3F2B.PNG", "a.png.jpg", "photo.jpeg", "b.tiff"})
        writeText(m_package / "images" / name, "PIC");
    writeText(m_package / "images" / "broken.png", "not a picture");
    std::filesystem::create_directory(m_package / "images" / "folder.png");

    open(m_a, m_package);

    EXPECT_FALSE(m_a.document->url(Identifier("broken")));
    EXPECT_FALSE(m_a.document->url(Identifier("folder")));
    for (const auto& [key, name] :
         std::vector<std::pair<const char*, const char*>>{{"3F2A", "3F2A.png"},
                                                          {"3F2B.PNG", "3F2B.PNG"},
                                                          {"a", "a.png.jpg"},
                                                          {"photo.jpeg", "photo.jpeg"},
                                                          {"b", "b.tiff"}})
        EXPECT_EQ(m_a.document->url(Identifier(key)), m_package / "images" / name);
}

TEST_F(NotebookPackageTest, MissingPackageIsAClearError) {
    auto error = tryOpen(m_a, m_directory.path() / "Gone.quillery");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, "NSCocoaErrorDomain");
    EXPECT_EQ(error->code, 260);
    EXPECT_EQ(error->message, "The notebook “Gone.quillery” doesn't exist.");
}

TEST_F(NotebookPackageTest, PlainFileOpensAsEmptyNotebook) {
    writeText(m_package, "just a file");
    open(m_a, m_package);
    EXPECT_TRUE(m_a.document->rootNode()->children().empty());
    EXPECT_TRUE(m_a.document->diffs().empty());
}

TEST_F(NotebookPackageTest, EmptyJournalsAndMissingImagesAreSkipped) {
    std::filesystem::create_directory(m_package);
    writeText(m_package / journalOf(kClientB), "");
    writeText(m_package / "images", "a file, not a folder");
    open(m_a, m_package);
    EXPECT_TRUE(m_a.document->rootNode()->children().empty());
}

TEST_F(NotebookPackageTest, MalformedJournalOfAnyClientFailsTheOpen) {
    m_a.addNote("note");
    save(m_a, m_package);
    writeText(m_package / journalOf(kClientB), R"({"diffs": [3]})");

    auto error = tryOpen(m_a, m_package);

    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, "NSOSStatusErrorDomain");
    EXPECT_EQ(error->code, -4);
    EXPECT_THAT(error->message, HasSubstr("“" + journalOf(kClientB) + "”"));
}

TEST_F(NotebookPackageTest, UnreadablePackageIsAPermissionError) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "permissions do not apply to root";
    save(m_a, m_package);
    std::filesystem::permissions(m_package, std::filesystem::perms::none);
    auto error = tryOpen(m_a, m_package);
    std::filesystem::permissions(m_package, std::filesystem::perms::owner_all);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, 257);
    EXPECT_THAT(error->message, HasSubstr("“Notes.quillery”"));
}

TEST_F(NotebookPackageTest, SavingWritesTheLocationLines) {
    save(m_a, m_package);
    writeText(m_package / "images" / "K.png", "PIC");
    m_lines.clear();
    saveInPlace(m_a);

    std::string images = (m_package / "images").string();
    EXPECT_THAT(m_lines,
                ElementsAre("imagesURL = " + images, images + "/K.png",
                            "fileURL = " + m_package.string(), ::testing::_, ::testing::_));
    EXPECT_THAT(m_lines, Contains((m_package / journalOf(kClientA)).string()));
}

TEST_F(NotebookPackageTest, LeftoverTemporaryFilesNeverBreakOpenOrSave) {
    save(m_a, m_package);
    std::string ownLeftover = "." + kClientA + ".quillery-tmp";
    std::string othersLeftover = "." + kClientB + ".quillery-tmp";
    writeText(m_package / ownLeftover, "{ half a journ");
    writeText(m_package / othersLeftover, "{ being written");
    writeText(m_package / "images" / ("." + kClientA + ".K.png.quillery-tmp"), "PIC half");

    open(m_a, m_package);
    EXPECT_FALSE(m_a.document->url(Identifier("." + kClientA + ".K.quillery-tmp")));
    saveInPlace(m_a);

    EXPECT_THAT(entryNames(m_package), Not(Contains(ownLeftover)));
    EXPECT_THAT(entryNames(m_package), Contains(othersLeftover));
    EXPECT_TRUE(entryNames(m_package / "images").empty());
    std::filesystem::path copy = m_directory.path() / "Copy.quillery";
    save(m_a, copy);
    EXPECT_THAT(entryNames(copy), ElementsAre(journalOf(kClientA), "images"));
}

TEST_F(NotebookPackageTest, SaveToExistingPackageReplacesItWhole) {
    Client b(kClientB);
    b.addNote("old content");
    std::filesystem::path target = m_directory.path() / "Target.quillery";
    save(b, target);
    writeText(target / "stray", "x");

    m_a.addNote("new content");
    save(m_a, target);

    EXPECT_THAT(entryNames(target), ElementsAre(journalOf(kClientA), "images"));
    EXPECT_EQ(entryNames(m_directory.path()), std::vector<std::string>{"Target.quillery"});
}

TEST_F(NotebookPackageTest, SaveInPlaceWithoutLocationFails) {
    auto error = package::saveInPlace(*m_a.document);
    ASSERT_TRUE(error);
    EXPECT_THAT(error->message, HasSubstr("not been saved"));
}

TEST_F(NotebookPackageTest, TextThatIsNotUtf8FailsTheSaveAndKeepsTheOldJournal) {
    m_a.addNote("fine");
    save(m_a, m_package);
    std::string before = readText(m_package / journalOf(kClientA));
    m_a.addNote("bad \xFF byte");

    auto error = package::saveInPlace(*m_a.document);

    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, 3851);
    EXPECT_EQ(readText(m_package / journalOf(kClientA)), before);
    EXPECT_THAT(entryNames(m_package), ElementsAre(journalOf(kClientA), "images"));
}

} // namespace
} // namespace quillery::testing
