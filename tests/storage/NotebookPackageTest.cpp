#include "storage/NotebookPackage.h"

#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/PosixFileSystem.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>

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
    std::filesystem::path m_copy = m_directory.path() / "Copy.quillery";
    Client m_a{kClientA};

    void save(Client& client, const std::filesystem::path& location) {
        auto error = package::saveTo(*client.document, location);
        ASSERT_FALSE(error) << error->message;
    }
    void saveInPlace(Client& client) {
        auto error = package::saveInPlace(*client.document);
        ASSERT_FALSE(error) << error->message;
    }
    std::optional<StorageError> tryOpen(Client& client, const std::filesystem::path& location) {
        client.reopen();
        return package::read(*client.document, location, client.codec);
    }
    void open(Client& client, const std::filesystem::path& location) {
        auto error = tryOpen(client, location);
        ASSERT_FALSE(error) << error->message;
    }
    std::vector<std::string> topLevelTexts(const Client& client) {
        std::vector<std::string> texts;
        for (const NodePtr& child : client.document->rootNode()->children())
            texts.push_back(child->text());
        return texts;
    }
};

std::string record(const std::string& second, const std::string& id) {
    return R"({"timestamp": "2017-03-04T10:00:)" + second + R"(GMT", "identifier": ")" + id +
           R"(", "text": ")" + id + R"(", "parent": "root"})";
}

std::string journal(const std::vector<std::string>& records) {
    std::string text = R"({"diffs": [)";
    for (const std::string& one : records)
        text += (one == records.front() ? "" : ", ") + one;
    return text + "]}";
}

// Files in the package (no name: the package itself is a file), and what opening it gives: the
// texts of the top-level notes, or "!" and an error's code and the start of its message; and how
// many diagnostic lines it writes ("Bad diff." for the first journal rejected for a record).
struct OpenCase {
    const char* name;
    std::vector<std::pair<std::string, std::string>> files;
    std::string outcome;
    std::size_t lines = 0;

    friend void PrintTo(const OpenCase& c, std::ostream* out) { *out << c.name; }
};

class Opening : public NotebookPackageTest, public ::testing::WithParamInterface<OpenCase> {};

TEST_P(Opening, GivesTheNotesOrAClearError) {
    if (!GetParam().files.empty() && !GetParam().files.front().first.empty())
        std::filesystem::create_directory(m_package);
    for (const auto& [name, content] : GetParam().files)
        writeText(name.empty() ? m_package : m_package / name, content);
    std::string outcome;
    if (auto error = tryOpen(m_a, m_package))
        outcome = "!" + std::to_string(error->code) + " " + error->message;
    for (const std::string& text : topLevelTexts(m_a))
        outcome += (outcome.empty() ? "" : " ") + text;
    EXPECT_THAT(outcome, ::testing::StartsWith(GetParam().outcome));
    EXPECT_EQ(m_lines.size(), GetParam().lines);
}

const std::string kBadRecord = R"({"diffs": [{"identifier": "N"}]})";

INSTANTIATE_TEST_SUITE_P(
    Packages, Opening,
    ::testing::Values(
        OpenCase{"Missing", {}, "!260 The notebook “Notes.quillery” doesn't exist."},
        OpenCase{"PlainFileIsAnEmptyNotebook", {{"", "just a file"}}, ""},
        OpenCase{
            "EmptyJournalAndAFileForImages", {{journalOf(kClientB), ""}, {"images", "a file"}}, ""},
        // Written in reverse, so directory order is unlikely to be the byte order by chance.
        OpenCase{"JournalsMergeInByteOrderOfNamesWithinASecond",
                 {{"b.journal", journal({record("00", "b")})},
                  {"B.journal", journal({record("00", "B")})},
                  {"a.journal", journal({record("00", "a")})}},
                 "B a b"},
        OpenCase{"AMalformedJournalOfAnyClient",
                 {{"a.journal", journal({record("00", "a")})},
                  {journalOf(kClientB), R"({"diffs": [3]})"}},
                 "!-4 The journal “" + journalOf(kClientB) + "”"},
        OpenCase{"OnlyTheFirstBadJournalIsReported",
                 {{"a.journal", kBadRecord}, {"b.journal", kBadRecord}},
                 "!-4 The journal “a.journal” is not a notebook journal: record 1",
                 1}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST_F(NotebookPackageTest, ASaveAsThenOpenGivesTheSameTreeAndLogWithStampsInWholeSeconds) {
    auto first = m_a.addNote("first");
    auto second = m_a.addNote("second \"quoted\"\nand ünïcödé");
    m_a.addNote("nested", first);
    m_a.document->userDidModify(*first, "first, edited");
    m_a.document->userDidMove(*second, *m_a.document->deletedRootNode());
    std::string tree = treeText(*m_a.document);
    std::vector<DocumentDiff> log = m_a.document->diffs();
    auto untitled = package::saveInPlace(*m_a.document);
    ASSERT_TRUE(untitled);
    EXPECT_THAT(untitled->message, HasSubstr("not been saved"));
    save(m_a, m_package);
    EXPECT_THAT(entryNames(m_package), ElementsAre(journalOf(kClientA), "images"));
    EXPECT_EQ(m_a.document->fileLocation(), m_package);

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

// A package written by A, then B, then C, each adding a note: every client, a new one too, reads
// all of them, and each save carries the other clients' journals byte for byte.
TEST_F(NotebookPackageTest, EachClientWritesItsOwnJournalAndCarriesTheOthers) {
    Client b(kClientB), c(kClientC), d("DDDDDDDD-0000-4000-8000-000000000004");
    m_a.addNote("from A");
    save(m_a, m_package);
    for (Client* client : {&b, &c}) {
        open(*client, m_package);
        client->addNote("from another");
        saveInPlace(*client);
    }
    const std::string journalB = readText(m_package / journalOf(kClientB));
    const std::string journalC = readText(m_package / journalOf(kClientC));
    open(d, m_package);
    EXPECT_TRUE(d.document->diffs().empty());
    d.addNote("from D");
    saveInPlace(d);
    save(d, m_copy);
    for (const auto& package : {m_package, m_copy}) {
        EXPECT_EQ(readText(package / journalOf(kClientB)), journalB);
        EXPECT_EQ(readText(package / journalOf(kClientC)), journalC);
        EXPECT_EQ(entryNames(package).size(), 5u);
        open(m_a, package);
        EXPECT_EQ(topLevelTexts(m_a).size(), 4u);
        EXPECT_EQ(m_a.document->diffs().size(), 1u);
    }
}

TEST_F(NotebookPackageTest, ABackupOfTheOwnJournalIsReadAsAJournalButNotCarried) {
    m_a.addNote("note");
    save(m_a, m_package);
    const std::string backup = journalOf(kClientA) + ".bak";
    std::filesystem::copy_file(m_package / journalOf(kClientA), m_package / backup);
    package::PackageSummary summary;
    PosixFileSystem files;
    m_a.reopen();
    ASSERT_FALSE(package::read(*m_a.document, m_package, m_a.codec, files, &summary));
    ASSERT_EQ(summary.journals.size(), 2u);
    EXPECT_EQ(summary.journals[1].fileName, backup);
    // Both journals hold the same creation: one note.
    EXPECT_EQ(topLevelTexts(m_a).size(), 1u);
    save(m_a, m_copy);
    EXPECT_THAT(entryNames(m_copy), ElementsAre(journalOf(kClientA), "images"));

    writeText(m_package / backup, "not a journal");
    auto error = tryOpen(m_a, m_package);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, 3840);
    EXPECT_THAT(error->message, HasSubstr(backup));
}

// Links inside the package are never read, written through or carried; nor are folders.
TEST_F(NotebookPackageTest, HiddenFilesAreCarriedButFoldersAndLinksAreNot) {
    save(m_a, m_package);
    TemporaryDirectory outside;
    writeText(outside.path() / "evil.journal", "not even JSON");
    writeText(outside.path() / "picture.png", "PIC outside");
    writeText(m_package / ".hidden", "hidden bytes");
    writeText(m_package / "README", "readme");
    std::filesystem::create_directory(m_package / "attachments");
    writeText(m_package / "attachments" / "a.txt", "a");
    std::filesystem::create_symlink(outside.path() / "evil.journal", m_package / "x.journal");
    std::filesystem::create_symlink(outside.path() / "picture.png",
                                    m_package / "images" / "link.png");

    open(m_a, m_package);
    save(m_a, m_copy);

    EXPECT_FALSE(m_a.document->url(Identifier("link")));
    EXPECT_THAT(entryNames(m_copy),
                ElementsAre(".hidden", journalOf(kClientA), "README", "images"));
    EXPECT_EQ(readText(m_copy / ".hidden"), "hidden bytes");
    EXPECT_TRUE(entryNames(m_copy / "images").empty());
    std::filesystem::remove_all(m_package / "images");
    std::filesystem::create_symlink(outside.path(), m_package / "images");
    open(m_a, m_package);
    EXPECT_FALSE(m_a.document->url(Identifier("picture")));
    EXPECT_TRUE(package::saveInPlace(*m_a.document));
    EXPECT_THAT(entryNames(outside.path()), ElementsAre("evil.journal", "picture.png"));
}

TEST_F(NotebookPackageTest, PicturesAreIndexedByFileNameWithoutKnownExtensions) {
    std::filesystem::create_directories(m_package / "images");
    const std::string uuid = "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9";
    for (const std::string& name :
         std::vector<std::string>{"3F2A.png", "3F2B.PNG", "a.png.jpg", "photo.jpeg", "b.tiff",
                                  uuid + ".gif", "note.gif"})
        writeText(m_package / "images" / name, "PIC");
    writeText(m_package / "images" / "broken.png", "not a picture");
    std::filesystem::create_directory(m_package / "images" / "folder.png");

    open(m_a, m_package);

    for (const auto& [key, name] :
         std::vector<std::pair<std::string, std::string>>{{"3F2A", "3F2A.png"},
                                                          {"3F2B.PNG", "3F2B.PNG"},
                                                          {"a", "a.png.jpg"},
                                                          {"photo.jpeg", "photo.jpeg"},
                                                          {"b", "b.tiff"},
                                                          {uuid, uuid + ".gif"},
                                                          {"note.gif", "note.gif"}})
        EXPECT_EQ(m_a.document->url(Identifier(key)), m_package / "images" / name);
    EXPECT_FALSE(m_a.document->url(Identifier("broken")));
    EXPECT_FALSE(m_a.document->url(Identifier("folder")));
}

TEST_F(NotebookPackageTest, AnUnreadablePackageIsAPermissionError) {
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

// Leftovers of a stopped save: this client's files go, another client's stay (it may be writing
// them), and a folder in the way of a temporary file is moved aside. The journal keeps its
// permission bits.
TEST_F(NotebookPackageTest, LeftoversNeverBreakOpenOrSaveAndTheJournalKeepsItsPermissions) {
    using std::filesystem::perms;
    save(m_a, m_package);
    const std::filesystem::path journal = m_package / journalOf(kClientA);
    std::filesystem::permissions(journal, perms::owner_read | perms::owner_write);
    std::string othersLeftover = "." + kClientB + ".quillery-tmp";
    writeText(m_package / othersLeftover, "{ being written");
    writeText(m_package / "images" / ("." + kClientA + ".K.png.quillery-tmp"), "PIC half");
    open(m_a, m_package);
    EXPECT_FALSE(m_a.document->url(Identifier("." + kClientA + ".K.quillery-tmp")));
    const Identifier key = m_a.addPictureNote("PIC new");
    for (const auto& stray :
         {m_package / ("." + kClientA + ".quillery-tmp"),
          m_package / "images" / ("." + kClientA + "." + key.toString() + ".png.quillery-tmp")}) {
        std::filesystem::create_directory(stray);
        writeText(stray / "kept", "someone's");
    }

    saveInPlace(m_a);

    EXPECT_EQ(std::filesystem::status(journal).permissions() & perms::all,
              perms::owner_read | perms::owner_write);
    EXPECT_THAT(entryNames(m_package), Contains(othersLeftover));
    EXPECT_EQ(entryNames(m_package / "images").size(), 2u); // the picture and the folder aside
    for (const auto& folder : {m_package, m_package / "images"}) {
        const auto names = entryNames(folder);
        auto aside = std::find_if(names.begin(), names.end(),
                                  [](const std::string& name) { return name.ends_with(".aside"); });
        ASSERT_NE(aside, names.end()) << folder;
        EXPECT_EQ(readText(folder / *aside / "kept"), "someone's");
    }
    open(m_a, m_package);
    EXPECT_TRUE(m_a.document->url(key));
    save(m_a, m_copy);
    EXPECT_THAT(entryNames(m_copy), ElementsAre(journalOf(kClientA), "images"));
}

// The file layer with little memory left, or none at all for a journal's bytes.
class ScarceMemoryFileSystem : public PosixFileSystem {
public:
    explicit ScarceMemoryFileSystem(bool throwing)
        : m_throwing(throwing) {}
    std::uint64_t availableMemory() override { return 64 << 20; }
    std::error_code readFile(const std::filesystem::path& path, FileContents& contents,
                             std::uint64_t sizeLimit) override {
        if (m_throwing && path.extension() == ".journal")
            throw std::bad_alloc();
        return PosixFileSystem::readFile(path, contents, sizeLimit);
    }

private:
    bool m_throwing;
};

// A journal too large to read is refused by its size (a sparse file: nothing is read), and one
// memory runs out for is an error, never the end of the program.
TEST_F(NotebookPackageTest, AJournalTooLargeForMemoryIsRefusedNamingIt) {
    struct Case {
        std::uintmax_t size;
        bool scarce;
        bool throwing;
        const char* reason;
    };
    save(m_a, m_package);
    for (const auto& [size, scarce, throwing, reason] :
         {Case{std::uintmax_t{3} << 30, false, false, "3.0 GiB, more than the 2.0 GiB a journal"},
          Case{std::uintmax_t{100} << 20, true, false, "more than the 0.1 GiB of memory"},
          Case{10, true, true, "not enough memory to read the journal"}}) {
        std::filesystem::resize_file(m_package / journalOf(kClientA), size);
        PosixFileSystem plain;
        ScarceMemoryFileSystem scarceFiles(throwing);
        m_a.reopen();
        auto error = package::read(*m_a.document, m_package, m_a.codec,
                                   scarce ? static_cast<FileSystem&>(scarceFiles) : plain);
        ASSERT_TRUE(error) << reason;
        EXPECT_EQ(error->code, 263);
        EXPECT_THAT(error->message, HasSubstr("“" + journalOf(kClientA) + "”"));
        EXPECT_THAT(error->message, HasSubstr(reason));
    }
}

// What happens to the package between opening and saving, and the error the save gives instead
// of writing anything: no package is made anew and the journal on disk stays as it was.
enum class Change { none, move, remove, replace, linkJournal };

struct RefusedSaveCase {
    const char* name;
    Change change;
    std::optional<int> clockYear;
    std::string message;
    std::vector<std::string> packagesAfter;
    std::string unsavedText = "unsaved";

    friend void PrintTo(const RefusedSaveCase& c, std::ostream* out) { *out << c.name; }
};

class RefusedSave : public NotebookPackageTest,
                    public ::testing::WithParamInterface<RefusedSaveCase> {};

TEST_P(RefusedSave, WritesNothing) {
    namespace fs = std::filesystem;
    m_a.addNote("saved");
    save(m_a, m_package);
    if (const std::optional<int> year = GetParam().clockYear) {
        m_a.clock = [year] {
            return TimePoint{std::chrono::sys_days{std::chrono::year{*year} / 1 / 1}};
        };
    }
    open(m_a, m_package);
    const fs::path journal = m_package / journalOf(kClientA);
    const std::string before = readText(journal);
    const Change change = GetParam().change;
    if (change != Change::none && change != Change::remove)
        fs::rename(change == Change::linkJournal ? journal : m_package, m_copy);
    if (change == Change::remove)
        fs::remove_all(m_package);
    if (change == Change::replace)
        fs::create_directory(m_package);
    if (change == Change::linkJournal)
        fs::create_symlink(m_copy, journal);
    m_a.addNote(GetParam().unsavedText);

    auto error = package::saveInPlace(*m_a.document);

    ASSERT_TRUE(error);
    EXPECT_THAT(error->message, HasSubstr(GetParam().message));
    EXPECT_EQ(entryNames(m_directory.path()), GetParam().packagesAfter);
    const fs::path kept = change == Change::none          ? journal
                          : change == Change::linkJournal ? m_copy
                                                          : m_copy / journalOf(kClientA);
    if (change != Change::remove) {
        EXPECT_EQ(readText(kept), before);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Packages, RefusedSave,
    ::testing::Values(
        RefusedSaveCase{"Moved", Change::move, {}, "is no longer at", {"Copy.quillery"}},
        RefusedSaveCase{"Deleted", Change::remove, {}, "moved, renamed or deleted while open", {}},
        RefusedSaveCase{"Replaced",
                        Change::replace,
                        {},
                        "replaced while open",
                        {"Copy.quillery", "Notes.quillery"}},
        RefusedSaveCase{"OwnJournalIsALink",
                        Change::linkJournal,
                        {},
                        "is a symbolic link",
                        {"Copy.quillery", "Notes.quillery"}},
        RefusedSaveCase{
            "ClockAfter9999", Change::none, 10000, "after the year 9999", {"Notes.quillery"}},
        RefusedSaveCase{
            "ClockBeforeYearOne", Change::none, 0, "before the year 0001", {"Notes.quillery"}},
        RefusedSaveCase{"TextNotUtf8",
                        Change::none,
                        {},
                        "a note's text is not valid UTF-8",
                        {"Notes.quillery"},
                        "bad \xFF byte"}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace quillery::testing
