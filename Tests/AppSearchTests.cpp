#include "Quorvel/Core/AppLauncher.h"

#include <fstream>

#include <gmock/gmock.h>

#include "Quorvel/Core/SearchRank.h"
#include "Quorvel/Core/SearchTerms.h"
#include "Tests/Support/FakeDesktop.h"

// The expected orders in fixtures/search.txt follow from the rules (how it matched, which word,
// where, how long, then the name), worked out with a list of names and a pencil. Where a text is
// folded, they follow what the Mac's own folding does: a mark on a Latin, Greek or Cyrillic letter
// is dropped, so that "й" is "и"; from other scripts no mark is dropped, since there it makes
// another sound, so that "が" is not "か" and "إ" not "ا". "ß" is "ss". Letters that are no letter
// with a mark stay: "ł", "æ", "ı".

namespace quorvel::test {

using testing::ElementsAre;
using testing::Optional;

namespace {

std::vector<std::string> split(std::string_view text)
{
    std::vector<std::string> parts;
    std::size_t end = 0;
    for (std::size_t start = 0; end != std::string_view::npos; start = end + 1) {
        end = text.find('|', start);
        auto part = trimmed(text.substr(start, end == std::string_view::npos ? end : end - start));
        if (!part.empty())
            parts.emplace_back(part);
    }
    return parts;
}

struct AppSearchTest : testing::Test {
    void store(const std::vector<std::string>& names)
    {
        for (auto& name : names)
            desktop.install("/Applications/" + name + ".app");
    }
    std::string search(const std::string& query)
    {
        if (!launcher)
            launcher.emplace(desktop.platform());
        desktop.drain();
        std::string names;
        for (auto& app : launcher->searchResults(launcher->allApps().value(), query))
            names += (names.empty() ? "" : " | ") + app.name();
        return names;
    }
    std::optional<SearchRank> rank(const std::string& name, const std::string& query) const
    {
        return searchRank({name, {}, text}, normalised(query, text));
    }

    FakeDesktop desktop;
    FakeText text{"en"};
    std::optional<AppLauncher> launcher;
};

}

TEST_F(AppSearchTest, theBestMatchesComeFirstInEveryScript)
{
    desktop.text() = FakeText{"en"};
    std::ifstream file{QUORVEL_FIXTURES "/search.txt"};
    std::string names;
    int searches = 0;
    for (std::string line; std::getline(file, line);) {
        auto arrow = line.find("=>");
        if (line.starts_with('#'))
            continue;
        if (arrow == std::string::npos) {
            names += line;
            continue;
        }
        if (searches++ == 0)
            store(split(names));
        std::string query{trimmed(std::string_view{line}.substr(0, arrow))};
        EXPECT_EQ(search(query), trimmed(std::string_view{line}.substr(arrow + 2)))
            << '"' << query << '"';
    }
    EXPECT_GT(searches, 90);
    EXPECT_EQ(search("\t safari\u2003\n"), "Safari");
}

// Turkish has an i with a dot and one without, each in both cases.
TEST_F(AppSearchTest, theUsersLanguageSaysWhichLettersAreTheSame)
{
    if (!FakeText::kAreOfAnyLanguage)
        GTEST_SKIP() << "the letters are those of the user's language";
    desktop.text() = FakeText{"tr"};
    store({"Işık Ayarı", "İnternet Radyo", "Yazılım Merkezi", "Inkscape", "Files"});
    EXPECT_EQ(search("IŞIK"), "Işık Ayarı");
    EXPECT_EQ(search("ısık"), "Işık Ayarı");
    EXPECT_EQ(search("isik"), "");
    EXPECT_EQ(search("INTER"), "");
    EXPECT_EQ(search("İNTER"), "İnternet Radyo");
    EXPECT_EQ(search("I\u0307NTER"), "İnternet Radyo") << "with the dot as a mark";
    EXPECT_EQ(search("YAZILIM"), "Yazılım Merkezi");
    EXPECT_EQ(search("fİ"), "Files");
}

// Faults: the number of the word, where in the name and how long it is, by which equals are
// ordered.
TEST_F(AppSearchTest, aRankSaysHowAndWhereTheQueryMatched)
{
    using Kind = SearchMatchKind;
    auto is = [](Kind kind, int token, int character, int length) {
        return Optional(SearchRank{kind, token, character, length});
    };
    EXPECT_THAT(rank("Safari", "safari"), is(Kind::exactName, 0, 0, 6));
    EXPECT_THAT(rank("Safari", "saf"), is(Kind::namePrefix, 0, 0, 6));
    EXPECT_THAT(rank("Visual Studio Code", "code"), is(Kind::tokenPrefix, 2, 0, 4));
    EXPECT_THAT(rank("XcodeTools", "code"), is(Kind::substring, 0, 1, 10));
    EXPECT_THAT(rank("Visual Studio Code", "studio code"), is(Kind::substring, 3, 7, 18));
    EXPECT_THAT(rank("iPhoneBackup", "ph"), is(Kind::tokenPrefix, 1, 0, 5));
    EXPECT_THAT(rank("Note Notes", "not"), is(Kind::namePrefix, 0, 0, 10));
    EXPECT_THAT(rank("My Notes Note", "note"), is(Kind::tokenPrefix, 1, 0, 5)) << "the first word";
    EXPECT_THAT(rank("Großer Fußball", "ball"), is(Kind::substring, 1, 12, 16));
    EXPECT_THAT(rank("\u1102\u1161 \u1103\u1161\u1105\u1161", "라"), is(Kind::substring, 1, 3, 4))
        << "syllables in letters";
    EXPECT_THAT(rank("👨‍👩‍👧 Family", "family"), is(Kind::tokenPrefix, 0, 0, 6));
    EXPECT_THAT(rank("The 👨‍👩‍👧 Family", "amil"), is(Kind::substring, 1, 7, 12));
    EXPECT_EQ(rank("Safari", "fx"), std::nullopt);
    EXPECT_EQ(rank("👨‍👩‍👧", "👩"), std::nullopt) << "a part of a character";
}

TEST_F(AppSearchTest, aNameIsCutIntoWordsWhereItsCaseChanges)
{
    auto words = [this](std::string_view name) {
        auto tokens = searchTokens(name, text);
        std::vector<std::string> all;
        for (auto& word : tokens.words())
            all.emplace_back(tokens.text(word));
        return all;
    };
    EXPECT_THAT(words("XMLEditor"), ElementsAre("xml", "editor"));
    EXPECT_THAT(words("iPhoneBackup"), ElementsAre("i", "phone", "backup"));
    EXPECT_THAT(words("Mp3Tag2XML"), ElementsAre("mp3", "tag2", "xml"));
    EXPECT_THAT(words("МойОфис"), ElementsAre("мои", "офис"));
    EXPECT_THAT(words("ÉcoleÉté"), ElementsAre("ecole", "ete"));
    EXPECT_THAT(words("OBS-Studio (64bit)"), ElementsAre("obs", "studio", "64bit"));
    EXPECT_THAT(words("हिन्दी टाइप"), ElementsAre("हिन्दी", "टाइप"))
        << "marks belong to their letter";
    EXPECT_THAT(words("第Ⅳ章"), ElementsAre("第ⅳ章"));
    EXPECT_THAT(words("\xFF/\xC3"), ElementsAre());
    EXPECT_THAT(words(""), ElementsAre());
}

TEST_F(AppSearchTest, whatAnApplicationIsForMatchesBehindItsName)
{
    auto describe = [this](const std::string& name, BundleDescription description) {
        desktop.install("/Applications/" + name + ".app", std::move(description));
    };
    describe("Firefox", {.genericName = "Web Browser", .keywords = {"Internet", "WWW"}});
    describe("Falkon", {.genericName = "Browser", .keywords = {"Websites"}});
    describe("Disk Map", {.keywords = {"File System", "Web"}, .executable = "baobab-map"});
    describe("Webcam", {});
    describe("Cobweb", {});
    EXPECT_EQ(search("browser"), "Falkon | Firefox") << "the first word before the second";
    EXPECT_EQ(search("web"), "Webcam | Cobweb | Firefox | Falkon | Disk Map");
    EXPECT_EQ(search("web br"), "Firefox");
    EXPECT_EQ(search("browser internet"), "") << "two phrases";
    EXPECT_EQ(search("rowser"), "");
    EXPECT_EQ(search("baob"), "Disk Map");
    EXPECT_EQ(search("map"), "Disk Map");
}

TEST_F(AppSearchTest, equalMatchesAndAnEmptyQueryKeepTheOrderOfNames)
{
    store({"b tool", "C Tool", "a tool", "Ä tool", "Z tool"});
    EXPECT_EQ(search(" \n\u3000"), "a tool | Ä tool | b tool | C Tool | Z tool");
    EXPECT_EQ(search("tool"), "a tool | Ä tool | b tool | C Tool | Z tool");
}

}
