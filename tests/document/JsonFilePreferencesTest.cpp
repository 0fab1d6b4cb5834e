#include "document/JsonFilePreferences.h"

#include "base/Diagnostics.h"
#include "document/Document.h"
#include "model/Identifier.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace quillery {
namespace {

namespace fs = std::filesystem;

class JsonFilePreferencesTest : public testing::Test {
protected:
    JsonFilePreferencesTest() {
        m_directory = fs::temp_directory_path() /
                      ("quillery-preferences-" + Identifier::makeRandom().toString());
        m_file = m_directory / "quillery" / "preferences.json";
    }
    ~JsonFilePreferencesTest() override { fs::remove_all(m_directory); }

    void write(const std::string& content) {
        fs::create_directories(m_file.parent_path());
        std::ofstream(m_file) << content;
    }

    static std::string read(const fs::path& file) {
        std::ifstream in(file);
        std::stringstream content;
        content << in.rdbuf();
        return content.str();
    }

    fs::path m_directory;
    fs::path m_file;
    std::vector<std::string> m_lines;
    diagnostics::ScopedSink m_sink{[this](std::string_view line) {
        m_lines.emplace_back(line);
    }};
};

TEST_F(JsonFilePreferencesTest, MissingFileReadsEmptyAndIsCreatedOnSave) {
    JsonFilePreferences preferences(m_file);
    EXPECT_FALSE(preferences.string("client-identifier"));
    preferences.setString("client-identifier", "ABC \"quoted\"\n");
    preferences.synchronize();
    JsonFilePreferences again(m_file);
    EXPECT_EQ(again.string("client-identifier"), "ABC \"quoted\"\n");
    EXPECT_TRUE(m_lines.empty());
}

TEST_F(JsonFilePreferencesTest, KeepsKeysItDoesNotKnow) {
    write(R"({"window": {"width": 800, "tabs": [1, 2]}, "theme": "dark", "count": 3})");
    JsonFilePreferences preferences(m_file);
    EXPECT_EQ(preferences.string("theme"), "dark");
    EXPECT_FALSE(preferences.string("count")); // not a text
    preferences.setString("client-identifier", "X");
    preferences.synchronize();
    const std::string saved = read(m_file);
    EXPECT_NE(saved.find(R"({"width":800,"tabs":[1,2]})"), std::string::npos) << saved;
    EXPECT_NE(saved.find(R"("count" : 3)"), std::string::npos) << saved;
    EXPECT_NE(saved.find(R"("theme" : "dark")"), std::string::npos) << saved;
}

TEST_F(JsonFilePreferencesTest, KeepsWhatAnotherProcessSavedMeanwhile) {
    JsonFilePreferences app(m_file);
    JsonFilePreferences cli(m_file);
    cli.setString("from-cli", "1");
    cli.synchronize();
    app.setString("from-app", "2");
    app.synchronize();
    JsonFilePreferences reader(m_file);
    EXPECT_EQ(reader.string("from-cli"), "1");
    EXPECT_EQ(reader.string("from-app"), "2");
}

TEST_F(JsonFilePreferencesTest, CorruptFileReadsEmptyAndIsMovedAsideBeforeASave) {
    write("{\"client-identifier\": \"trunc");
    JsonFilePreferences preferences(m_file);
    EXPECT_FALSE(preferences.string("client-identifier"));
    preferences.setString("client-identifier", "NEW");
    preferences.synchronize();
    fs::path backup = m_file;
    backup += ".corrupt";
    EXPECT_EQ(read(backup), "{\"client-identifier\": \"trunc");
    EXPECT_EQ(JsonFilePreferences(m_file).string("client-identifier"), "NEW");
    for (const auto& entry : fs::directory_iterator(m_file.parent_path()))
        EXPECT_EQ(entry.path().string().find(".tmp"), std::string::npos) << entry.path();
}

TEST_F(JsonFilePreferencesTest, UnwritableLocationReportsAndKeepsTheValueInMemory) {
    // A file where the folder should be: no folder can be made, whoever runs the test.
    fs::create_directories(m_directory);
    std::ofstream(m_directory / "blocker") << "x";
    JsonFilePreferences preferences(m_directory / "blocker" / "preferences.json");
    preferences.setString("k", "v");
    preferences.synchronize();
    ASSERT_EQ(m_lines.size(), 1u);
    EXPECT_EQ(m_lines[0].rfind("Couldn't save preferences to ", 0), 0u) << m_lines[0];
    EXPECT_EQ(preferences.string("k"), "v");
}

TEST(JsonFilePreferencesLocation, FollowsXdgConfigHomeElseHome) {
    const char* oldXdg = std::getenv("XDG_CONFIG_HOME");
    const std::string savedXdg = oldXdg ? oldXdg : "";
    setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
    EXPECT_EQ(JsonFilePreferences::defaultLocation(),
              fs::path("/tmp/xdg/quillery/preferences.json"));
    unsetenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    if (home) {
        EXPECT_EQ(JsonFilePreferences::defaultLocation(),
                  fs::path(home) / ".config/quillery/preferences.json");
    }
    if (oldXdg)
        setenv("XDG_CONFIG_HOME", savedXdg.c_str(), 1);
}

// Preferences holding client C, recorded (or not) as made on machine "m1", read on a machine.
struct MachineCase {
    const char* name;
    const char* recordedMachine; // null: not recorded
    const char* thisMachine;     // null: unknown
    bool keepsClient;
};

class ClientMachine : public JsonFilePreferencesTest,
                      public testing::WithParamInterface<MachineCase> {};

TEST_P(ClientMachine, AClientIdentifierStaysOnTheMachineItWasMadeFor) {
    const std::string client = "C0000000-0000-4000-8000-000000000000";
    std::string content = "{\"client-identifier\" : \"" + client + "\"";
    if (GetParam().recordedMachine)
        content += std::string(", \"client-machine\" : \"") + GetParam().recordedMachine + "\"";
    write(content + "}");
    const fs::path machineFile = m_directory / "machine-id";
    if (GetParam().thisMachine)
        std::ofstream(machineFile) << GetParam().thisMachine << "\n";
    JsonFilePreferences preferences(m_file, machineFile);
    Document document(preferences);
    EXPECT_EQ(document.clientIdentifier() == std::string_view(client), GetParam().keepsClient);
    const char* expectedMachine =
        GetParam().thisMachine ? GetParam().thisMachine : GetParam().recordedMachine;
    if (expectedMachine) {
        EXPECT_EQ(JsonFilePreferences(m_file).string("client-machine"), expectedMachine);
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, ClientMachine,
                         testing::Values(MachineCase{"SameMachine", "m1", "m1", true},
                                         MachineCase{"CopiedToAnotherMachine", "m1", "m2", false},
                                         MachineCase{"RecordedOnFirstUse", nullptr, "m1", true},
                                         MachineCase{"MachineUnknown", "m1", nullptr, true}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace quillery
