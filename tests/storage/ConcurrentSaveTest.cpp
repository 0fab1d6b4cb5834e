#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/NotebookPackage.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillery::testing {
namespace {

constexpr int kSavesPerClient = 40;

// Runs in a forked child: waits for the start signal, then adds and saves notes in place, each
// save after a fresh open as a second installation would do it. Exits 0 when all went well.
[[noreturn]] void saveRepeatedly(const std::string& client, const std::filesystem::path& package,
                                 int startSignal) {
    diagnostics::setSink([](std::string_view) {});
    char go = 0;
    if (::read(startSignal, &go, 1) != 1)
        ::_exit(3);
    Client writer(client);
    for (int i = 0; i < kSavesPerClient; ++i) {
        if (package::read(*writer.document, package, writer.codec))
            ::_exit(1);
        writer.addNote(client + " " + std::to_string(i));
        if (i % 4 == 0)
            writer.addPictureNote(client + std::to_string(i));
        if (package::saveInPlace(*writer.document))
            ::_exit(2);
        writer.reopen();
    }
    ::_exit(0);
}

// Two processes of two installations, or of one (the app and the command-line tool) writing one
// journal, save one package over and over at the same time.
class ConcurrentSaveTest : public ::testing::TestWithParam<std::vector<std::string>> {};

TEST_P(ConcurrentSaveTest, LosesNoRecord) {
    diagnostics::ScopedSink quiet([](std::string_view) {});
    TemporaryDirectory directory;
    std::filesystem::path package = directory.path() / "Shared.quillery";
    Client first(kClientC);
    first.addNote("start");
    ASSERT_FALSE(package::saveTo(*first.document, package));

    int start[2];
    ASSERT_EQ(::pipe(start), 0);
    std::vector<pid_t> children;
    for (const std::string& client : GetParam()) {
        pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            saveRepeatedly(client, package, start[0]);
        children.push_back(child);
    }
    ASSERT_EQ(::write(start[1], "gg", 2), 2);
    for (pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "child status " << status;
    }
    ::close(start[0]);
    ::close(start[1]);

    Client reader(kClientC);
    ASSERT_FALSE(package::read(*reader.document, package, reader.codec));
    std::size_t pictures = 2 * ((kSavesPerClient + 3) / 4);
    EXPECT_EQ(reader.document->rootNode()->children().size(), 1 + 2 * kSavesPerClient + pictures);
    std::size_t shown = 0;
    for (const NodePtr& note : reader.document->rootNode()->children())
        shown += note->imageIdentifier() &&
                 reader.document->image(*note->imageIdentifier())->width() != -1;
    EXPECT_EQ(shown, pictures);
    // A journal of each installation, and "images".
    EXPECT_EQ(entryNames(package).size(), GetParam().front() == GetParam().back() ? 3u : 4u);
}

INSTANTIATE_TEST_SUITE_P(Installations, ConcurrentSaveTest,
                         ::testing::Values(std::vector<std::string>{kClientA, kClientB},
                                           std::vector<std::string>{kClientA, kClientA}));

} // namespace
} // namespace quillery::testing
