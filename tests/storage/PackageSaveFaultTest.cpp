#include "FaultyFileSystem.h"
#include "StorageTestSupport.h"
#include "base/Diagnostics.h"
#include "storage/NotebookPackage.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillery::testing {
namespace {

enum class SaveKind { inPlace, toNewLocation, overOtherPackage };

struct FaultCase {
    SaveKind kind;
    bool crash;

    friend void PrintTo(const FaultCase& c, std::ostream* out) {
        const char* kinds[] = {"InPlace", "ToNewLocation", "OverOtherPackage"};
        *out << kinds[static_cast<int>(c.kind)] << (c.crash ? "Crashing" : "Failing");
    }
};

std::string caseName(const ::testing::TestParamInfo<FaultCase>& info) {
    return ::testing::PrintToString(info.param);
}

// A save that stops at any step leaves a package that opens with the old or the new content,
// never a mix, and the next save succeeds.
class PackageSaveFaultTest : public ::testing::TestWithParam<FaultCase> {
protected:
    diagnostics::ScopedSink m_quiet{[](std::string_view) {
    }};

    struct Outcome {
        bool failureInjected = false;
    };

    // One save with the step-th change failing; checks what is on disk afterwards.
    Outcome runWithFailureAt(int step) {
        TemporaryDirectory directory;
        std::filesystem::path package = directory.path() / "Notes.quillery";
        std::filesystem::path target =
            GetParam().kind == SaveKind::inPlace ? package : directory.path() / "Copy.quillery";
        // Each client edits in its own second, so the merged order is the order of editing.
        TimePoint now = CurrentTime();
        Client a(kClientA, [&] { return now; }), b(kClientB, [&] { return now; });
        a.addNote("old note");
        a.addPictureNote("old picture");
        EXPECT_FALSE(package::saveTo(*a.document, package));
        b.reopen();
        EXPECT_FALSE(package::read(*b.document, package, b.codec));
        now += std::chrono::seconds(10);
        b.addNote("B's note");
        EXPECT_FALSE(package::saveInPlace(*b.document));
        std::string journalB = readText(package / (kClientB + ".journal"));
        std::string targetTree;
        if (GetParam().kind == SaveKind::overOtherPackage) {
            Client c(kClientC);
            c.addNote("what was at the target");
            EXPECT_FALSE(package::saveTo(*c.document, target));
            targetTree = treeText(*c.document);
        }

        a.reopen();
        EXPECT_FALSE(package::read(*a.document, package, a.codec));
        std::string oldTree = treeText(*a.document);
        now += std::chrono::seconds(10);
        a.addNote("new note");
        a.addPictureNote("new picture");
        std::string newTree = treeText(*a.document);

        FaultyFileSystem faulty(step, GetParam().crash);
        auto error = GetParam().kind == SaveKind::inPlace
                         ? package::saveInPlace(*a.document, faulty)
                         : package::saveTo(*a.document, target, faulty);
        EXPECT_EQ(error.has_value(), faulty.failed())
            << "step " << step << ": " << (faulty.log().empty() ? "" : faulty.log().back());
        if (error) {
            EXPECT_THAT(error->message, ::testing::HasSubstr("Couldn't"));
        }
        std::string where = "failing step " + std::to_string(step) + " (" +
                            (faulty.log().empty() ? std::string() : faulty.log().back()) + ")";

        // The package opens with the old or the new content, pictures included.
        Client reader(kClientA);
        expectOpens(reader, package, {oldTree, newTree}, where);
        EXPECT_EQ(readText(package / (kClientB + ".journal")), journalB) << where;
        if (GetParam().kind != SaveKind::inPlace) {
            std::vector<std::string> allowed{newTree};
            if (!targetTree.empty())
                allowed.push_back(targetTree);
            if (std::filesystem::exists(target) || !targetTree.empty())
                expectOpens(reader, target, allowed, where);
        }

        // The next save succeeds and leaves nothing behind.
        auto again = GetParam().kind == SaveKind::inPlace ? package::saveInPlace(*a.document)
                                                          : package::saveTo(*a.document, target);
        EXPECT_FALSE(again) << where << ": " << again->message;
        expectOpens(reader, target, {newTree}, where);
        for (const auto& name : entryNames(directory.path()))
            EXPECT_THAT(name, ::testing::EndsWith(".quillery")) << where;
        for (const auto& name : entryNames(target))
            EXPECT_THAT(name, ::testing::Not(::testing::EndsWith(".quillery-tmp"))) << where;
        return {faulty.failed()};
    }

    void expectOpens(Client& reader, const std::filesystem::path& location,
                     const std::vector<std::string>& trees, const std::string& where) {
        reader.reopen();
        auto error = package::read(*reader.document, location, reader.codec);
        ASSERT_FALSE(error) << where << ": " << error->message;
        EXPECT_THAT(trees, ::testing::Contains(treeText(*reader.document))) << where;
        for (const NodePtr& note : reader.document->rootNode()->children())
            if (note->imageIdentifier()) {
                EXPECT_NE(reader.document->image(*note->imageIdentifier())->width(), -1)
                    << where << ": picture missing";
            }
    }
};

TEST_P(PackageSaveFaultTest, EveryStepCanFailWithoutLosingRecords) {
    int step = 1;
    while (runWithFailureAt(step).failureInjected && !HasFailure())
        ++step;
    EXPECT_GT(step, 5) << "the save should take several steps";
}

INSTANTIATE_TEST_SUITE_P(Saves, PackageSaveFaultTest,
                         ::testing::Values(FaultCase{SaveKind::inPlace, false},
                                           FaultCase{SaveKind::inPlace, true},
                                           FaultCase{SaveKind::toNewLocation, false},
                                           FaultCase{SaveKind::toNewLocation, true},
                                           FaultCase{SaveKind::overOtherPackage, false},
                                           FaultCase{SaveKind::overOtherPackage, true}),
                         caseName);

} // namespace
} // namespace quillery::testing
