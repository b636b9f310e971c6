// Texts in the user's language, from the catalogues that the build has made.
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Hosts/Linux/CatalogueFile.h"
#include "Hosts/Linux/Gettext.h"
#include "Hosts/X11/X11Application.h"
#include "Quorvel/Platform/Translation.h"
#include "Quorvel/Views/ItemMarks.h"
#include "Tests/Support/TemporaryFolder.h"

namespace quorvel::xdg {
namespace {

struct GettextTest : testing::Test {
    GettextTest()
    {
        std::setlocale(LC_ALL, "C.UTF-8");
        useGettext();
    }
    ~GettextTest() override
    {
        ::unsetenv("LANGUAGE");
        std::setlocale(LC_ALL, "C");
        Translator::current() = {};
    }
    static void want(const char* languages)
    {
        ::setenv("LANGUAGE", languages, 1);
        std::setlocale(LC_ALL, "C"); // forgets what was looked up
        std::setlocale(LC_ALL, "C.UTF-8");
    }
    static std::string windows(std::size_t count)
    {
        return trCount("{} window", "{} windows", count);
    }
};

// Faults: a text of ours that is shown in English for want of the catalogue, or empty; a
// translation with a mistake that ends the bar.
TEST_F(GettextTest, aMistakeInATranslationIsHarmless)
{
    Translator::current() = {[](const char*) { return std::string{"{} {}"}; },
        [](const char*, const char*, std::size_t) { return std::string{"{"}; }};
    EXPECT_EQ(tr("Close"), "{} {}");
    EXPECT_EQ(trFormat("Desktop {}", 3), "Desktop 3");
    EXPECT_EQ(windows(2), "2 windows");
    Translator::current() = {};
    EXPECT_EQ(tr("Close"), "Close");
    EXPECT_EQ(windows(1) + windows(2), "1 window2 windows");
}

// Faults: English while there is a catalogue, or a language that the user wants less; the next
// language of the list for who wants English before it; another language than the layout's
// direction.
TEST_F(GettextTest, theUsersFirstLanguageIsTaken)
{
    const auto closing = [](const char* languages) {
        want(languages);
        return tr("Close");
    };
    EXPECT_EQ(closing("de"), "Schließen");
    EXPECT_EQ(closing("de_AT.UTF-8:fr"), "Schließen");
    EXPECT_EQ(closing("xx:fr"), "Fermer");
    EXPECT_EQ(closing("en_US:de"), "Close");
    EXPECT_EQ(closing("pt_BR"), "Fechar");
    EXPECT_EQ(closing("pt_PT"), "Close") << "Brazil's is not asked for";
    EXPECT_EQ(closing("xx"), "Close") << "nobody has translated it";
    EXPECT_EQ(tr(""), "") << "the catalogue's own header";

    want(":ar:de");
    EXPECT_EQ(languageOfTexts(), "ar");
    EXPECT_TRUE(x11::isRightToLeftLocale(languageOfTexts()));
    want("");
    EXPECT_EQ(languageOfTexts(), "C.UTF-8");
    want("ar");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(languageOfTexts(), "C");
    EXPECT_EQ(tr("Close"), "Close");
}

// Faults: a form of the plural that the language does not have, or for the wrong numbers.
TEST_F(GettextTest, numbersHaveTheFormsOfTheirLanguage)
{
    want("de");
    EXPECT_EQ(windows(0) + windows(1) + windows(2), "0 Fenster1 Fenster2 Fenster");
    want("fr");
    EXPECT_EQ(windows(0) + windows(1) + windows(2), "0 fenêtre1 fenêtre2 fenêtres");
    want("ja");
    EXPECT_EQ(windows(1) + windows(2), "1 個のウインドウ2 個のウインドウ");
    want("ar");
    EXPECT_EQ(windows(1), "نافذة واحدة");
    EXPECT_EQ(windows(2), "نافذتان");
    EXPECT_EQ(windows(3) + windows(10) + windows(105), "3 نوافذ10 نوافذ105 نوافذ");
    EXPECT_EQ(windows(11) + windows(99), "11 نافذة99 نافذة");
    EXPECT_EQ(windows(100) + windows(102), "100 نافذة102 نافذة");
}

// Faults: a badge of one, or of two in Arabic, that is read out as many; "99+" as if it were 99, or
// without its sign.
TEST_F(GettextTest, badgesHaveTheFormsOfTheirLanguage)
{
    const auto badges = [] {
        return itemMarks::badgeText("1") + ", " + itemMarks::badgeText("2") + ", "
            + itemMarks::badgeText("99+");
    };
    want("fr");
    EXPECT_EQ(badges(), "1 non lu, 2 non lus, 99+ non lus");
    EXPECT_EQ(itemMarks::badgeText("1 new"), "1 new non lus");
    EXPECT_EQ(itemMarks::badgeText("•"), "non lu");
    EXPECT_EQ(itemMarks::badgeText(std::string(40, '9')), std::string(40, '9') + " non lus");
    want("ar");
    EXPECT_EQ(badges(), "عنصر واحد غير مقروء, عنصران غير مقروءين, 99+ عنصر غير مقروء");
}

// Faults: a crash of the C library, or an empty text, from a catalogue that a full disk has cut
// short or that has bytes of another file in it; a whole one that is taken for broken.
TEST_F(GettextTest, aBrokenCatalogueIsPassedOver)
{
    std::ifstream file{localeFolder() / "de/LC_MESSAGES/quorvel.mo", std::ios::binary};
    const std::string whole{std::istreambuf_iterator<char>{file}, {}};
    ASSERT_GT(whole.size(), 1000u);
    auto broken = std::vector<std::string>{"", "no catalogue", std::string(4000, '\xFF')};
    for (std::size_t size = 4; size < whole.size(); size += whole.size() / 40)
        broken.push_back(whole.substr(0, size));
    std::uint32_t tablesEnd = 0; // where the first text is
    std::memcpy(&tablesEnd, whole.data() + 32, sizeof(tablesEnd));
    ASSERT_LT(tablesEnd, whole.size() / 2);
    for (std::size_t at = 0; at + 16 < tablesEnd; at += 116)
        broken.push_back(std::string{whole}.replace(at, 16, 16, '\xFF'));
    want("de");
    for (const auto& content : broken) {
        EXPECT_FALSE(isWholeCatalogue(content));
        const test::TemporaryFolder folder; // what was read once is not read again
        const auto place = folder.path() / "de/LC_MESSAGES";
        std::filesystem::create_directories(place);
        std::ofstream{place / "quorvel.mo", std::ios::binary} << content;
        testing::internal::CaptureStderr();
        useGettext(folder.path());
        EXPECT_NE(
            testing::internal::GetCapturedStderr().find("quorvel.mo is broken"), std::string::npos);
        EXPECT_EQ(tr("Close"), "Close");
        EXPECT_EQ(windows(2), "2 windows");
    }
    EXPECT_TRUE(isWholeCatalogue(whole));
    useGettext();
    EXPECT_EQ(tr("Close"), "Schließen");
}

}
}
