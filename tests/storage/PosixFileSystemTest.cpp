#include "storage/PosixFileSystem.h"

#include "TemporaryDirectory.h"
#include "storage/JournalReader.h"

#include <fstream>
#include <gtest/gtest.h>
#include <numeric>
#include <unistd.h>

namespace quillery {
namespace {

// A journal of exactly `size` bytes whose last byte ends the top-level object, so a parser that
// reads past the end meets the padding.
std::string journalOfSize(std::size_t size) {
    const std::string record =
        R"({"timestamp": "2017-03-04T09:15:02GMT", "identifier": "N1", "text": "a"})";
    std::string journal = R"({"diffs": [)" + record + "]";
    journal.append(size - journal.size() - 1, ' ');
    return journal + "}";
}

// Journals read one after another into the same contents, crossing from files mapped to files read
// into memory and back, and a file smaller than the memory read into before.
TEST(PosixFileSystemTest, ReadsEveryFileWholeWithReadablePaddingAfterIt) {
    const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const struct {
        const char* name;
        std::size_t size;
    } cases[] = {
        {"a whole number of pages", std::size_t{1} << 20},
        {"room for the padding in the last page", (std::size_t{1} << 20) + 100},
        {"no room for the padding in the last page", (std::size_t{1} << 20) + page - 10},
        {"a small file", 120},
        {"larger again", (std::size_t{3} << 20) + 7},
    };
    testing_support::TemporaryDirectory directory;
    PosixFileSystem files;
    FileContents contents;
    JournalReader reader;
    for (const auto& file : cases) {
        SCOPED_TRACE(file.name);
        const std::string bytes = journalOfSize(file.size);
        const auto path = directory.path() / "a.journal";
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
        ASSERT_FALSE(files.readFile(path, contents, file.size)); // the limit is inclusive;
        EXPECT_TRUE(contents.view() == bytes);
        const char* padding = contents.data.get() + contents.size;
        EXPECT_GE(std::accumulate(padding, padding + kFileContentsPadding, 0), 0);
        std::vector<DocumentDiff> diffs;
        EXPECT_FALSE(reader.read(contents, "a.journal", diffs));
        EXPECT_EQ(diffs.size(), 1u);
    }
}

} // namespace
} // namespace quillery
