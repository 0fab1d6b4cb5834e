#include "storage/JsonFilePreferences.h"

#include "FaultyFileSystem.h"
#include "StorageTestSupport.h"
#include "base/Diagnostics.h"

#include <gtest/gtest.h>

namespace quillery::testing {
namespace {

namespace fs = std::filesystem;

class JsonFilePreferencesTest : public ::testing::Test {
protected:
    JsonFilePreferencesTest() { fs::create_directories(m_file.parent_path()); }

    JsonFilePreferences open() { return JsonFilePreferences(m_files, m_file); }

    TemporaryDirectory m_directory;
    fs::path m_file = m_directory.path() / "quillery" / "preferences.json";
    PosixFileSystem m_files;
    std::vector<std::string> m_lines;
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
};

TEST_F(JsonFilePreferencesTest, MissingFileReadsEmptyAndIsCreatedOnSave) {
    fs::remove_all(m_file.parent_path());
    JsonFilePreferences preferences = open();
    EXPECT_FALSE(preferences.string("client-identifier"));
    preferences.setString("client-identifier", "ABC \"quoted\"\n\x01");
    preferences.synchronize();
    EXPECT_EQ(open().string("client-identifier"), "ABC \"quoted\"\n\x01");
    EXPECT_EQ(fs::status(m_file).permissions() & fs::perms::others_read, fs::perms::none);
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(JsonFilePreferencesTest, KeepsKeysItDoesNotKnow) {
    writeText(m_file, R"({"window": {"width": 800, "tabs": [1, 2]}, "theme": "dark", "count": 3})");
    JsonFilePreferences preferences = open();
    EXPECT_EQ(preferences.string("theme"), "dark");
    EXPECT_FALSE(preferences.string("count")); // not a text
    preferences.setString("client-identifier", "X");
    preferences.synchronize();
    const std::string saved = readText(m_file);
    for (const char* kept :
         {R"({"width":800,"tabs":[1,2]})", R"("count" : 3)", R"("theme" : "dark")"})
        EXPECT_NE(saved.find(kept), std::string::npos) << saved;
}

TEST_F(JsonFilePreferencesTest, KeepsWhatAnotherProcessSavedMeanwhile) {
    JsonFilePreferences app = open();
    JsonFilePreferences cli = open();
    cli.setString("from-cli", "1");
    cli.synchronize();
    app.setString("from-app", "2");
    app.synchronize();
    EXPECT_EQ(open().string("from-cli"), "1");
    EXPECT_EQ(open().string("from-app"), "2");
}

TEST_F(JsonFilePreferencesTest, CorruptFileReadsEmptyAndIsMovedAsideBeforeASave) {
    writeText(m_file, "{\"client-identifier\": \"trunc");
    JsonFilePreferences preferences = open();
    EXPECT_FALSE(preferences.string("client-identifier"));
    preferences.setString("client-identifier", "NEW");
    preferences.synchronize();
    EXPECT_EQ(readText(m_file.string() + ".corrupt"), "{\"client-identifier\": \"trunc");
    EXPECT_EQ(open().string("client-identifier"), "NEW");
    EXPECT_EQ(entryNames(m_file.parent_path()),
              (std::vector<std::string>{"preferences.json", "preferences.json.corrupt"}));
}

// A save that stops at any step leaves the old file whole, reports once and keeps the value in
// memory; the next save succeeds and leaves nothing behind.
TEST_F(JsonFilePreferencesTest, ASaveThatFailsAtAnyStepKeepsTheOldFile) {
    for (bool crash : {false, true}) {
        for (int step = 1;; ++step) {
            writeText(m_file, R"({"key" : "old"})");
            m_lines.clear();
            FaultyFileSystem faulty(step, crash);
            JsonFilePreferences preferences(faulty, m_file);
            preferences.setString("key", "new");
            preferences.synchronize();
            if (!faulty.failed())
                break;
            const std::string where = faulty.log().back() + (crash ? " crashing" : "");
            // Only a failed flush of the folder comes after the new file is in place.
            EXPECT_EQ(open().string("key"), m_lines.empty() ? "new" : "old") << where;
            EXPECT_LE(m_lines.size(), 1u) << where;
            EXPECT_EQ(preferences.string("key"), "new") << where;
            JsonFilePreferences again = open();
            again.setString("key", "again");
            again.synchronize();
            EXPECT_EQ(entryNames(m_file.parent_path()),
                      std::vector<std::string>{"preferences.json"})
                << where;
        }
    }
}

// Preferences holding client C, recorded (or not) as made on machine "m1", read on a machine.
struct MachineCase {
    const char* name;
    const char* recordedMachine; // null: not recorded
    const char* thisMachine;     // null: unknown
    bool keepsClient;
};

class ClientMachine : public JsonFilePreferencesTest,
                      public ::testing::WithParamInterface<MachineCase> {};

TEST_P(ClientMachine, AClientIdentifierStaysOnTheMachineItWasMadeFor) {
    const std::string client = "C0000000-0000-4000-8000-000000000000";
    std::string content = "{\"client-identifier\" : \"" + client + "\"";
    if (GetParam().recordedMachine)
        content += std::string(", \"client-machine\" : \"") + GetParam().recordedMachine + "\"";
    writeText(m_file, content + "}");
    const fs::path machineFile = m_directory.path() / "machine-id";
    if (GetParam().thisMachine)
        writeText(machineFile, std::string(GetParam().thisMachine) + "\n");
    JsonFilePreferences preferences(m_files, m_file, machineFile);
    Document document(preferences);
    EXPECT_EQ(document.clientIdentifier() == std::string_view(client), GetParam().keepsClient);
    const char* expectedMachine =
        GetParam().thisMachine ? GetParam().thisMachine : GetParam().recordedMachine;
    EXPECT_EQ(open().string("client-machine"), expectedMachine);
}

INSTANTIATE_TEST_SUITE_P(Cases, ClientMachine,
                         ::testing::Values(MachineCase{"SameMachine", "m1", "m1", true},
                                           MachineCase{"CopiedToAnotherMachine", "m1", "m2", false},
                                           MachineCase{"RecordedOnFirstUse", nullptr, "m1", true},
                                           MachineCase{"MachineUnknown", "m1", nullptr, true}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery::testing
