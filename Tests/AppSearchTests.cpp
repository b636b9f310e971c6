#include "Quorvel/Core/AppLauncher.h"

#include <gmock/gmock.h>

#include "Quorvel/Core/SearchRank.h"
#include "Tests/Support/FakeDesktop.h"

// The expected orders follow from the rules (how it matched, which word, where, how long, then the
// name), worked out with a list of names and a pencil. Where a text is folded, they follow what the
// Mac's own folding does: a mark on a Latin, Greek or Cyrillic letter is dropped, so that "й" is
// "и"; from other scripts no mark is dropped, since there it makes another sound, so that "が" is
// not "か" and "إ" not "ا". "ß" is "ss". Letters that are no letter with a mark stay: "ł", "æ",
// "ı".

namespace quorvel::test {

using testing::ElementsAre;
using testing::Optional;

namespace {

constexpr char kNames[] = R"(
1Password | 7-Zip | 8x8 Work | 0 A.D. | 2048 | AbiWord | Ableton Live 12 Suite | Activity Monitor |
Adobe Acrobat | Adobe After Effects 2024 | Adobe Illustrator | Adobe Photoshop 2024 |
Adobe Premiere Pro | Affinity Designer 2 | Affinity Photo 2 | AirPort Utility | Alacritty |
Alfred 5 | Android Studio | AnyDesk | App Store | AppCleaner | Apple Configurator | Arduino IDE |
Ark | Atom | Audacity | Audio MIDI Setup | Automator | Avidemux | Balsamiq Wireframes | BBEdit |
BetterTouchTool | Bitwarden | Blackmagic Disk Speed Test | Blender | Bluetooth File Exchange |
Books | Boot Camp Assistant | Boxes | Brasero | Brave Browser | CAD Sketcher | Calculator |
Calendar | Calibre | CapCut | CCleaner | Celestia | Cheese | Chess | Chromium | CLion | Clocks |
CMake | Code::Blocks | CodeLite | CodeRunner | ColorSync Utility | Commander One | Console |
Contacts | CotEditor | CrossOver | Cyberduck | DaVinci Resolve | DB Browser for SQLite |
dconf Editor | Deluge | Dia | Dictionary | Digital Color Meter | digiKam | Discord |
Disk Usage Analyzer | Disk Utility | Docker Desktop | Document Scanner | Dolphin | Dropbox |
DVD Player | Eclipse IDE | Element | Emacs | Evernote | Evolution | Extensions | FaceTime |
Falkon | FileZilla | Find My | Finder | Firefox | Firefox Developer Edition | FL Studio 21 |
Flameshot | Font Book | Fonts | FontForge | Franz | FreeCAD | FreeCell | Freeform | Game Center |
GarageBand | gedit | Ghostty | GIMP | GitHub Desktop | GitKraken | GNOME Terminal | GnuCash |
Goodnotes 6 | Google Chrome | Google Drive | Google Earth Pro | GParted | Grapher | GVim |
HandBrake | Hex Fiend | Home | HTop | Hugin | IINA | Image Capture | Image Viewer | iMovie |
Inkscape | IntelliJ IDEA | iPhone Mirroring | iStat Menus | iTerm2 | JabRef | Jitsi Meet | Joplin |
JupyterLab Desktop | K3b | Kate | KCalc | KColorChooser | KdeConnect | Kdenlive | KeePassXC |
Keka | Keychain Access | Keynote | Kitty | KMail | Kodi | Konsole | Krita | KWrite | Launchpad |
LibreOffice | LibreOffice Base | LibreOffice Calc | LibreOffice Draw | LibreOffice Impress |
LibreOffice Math | LibreOffice Writer | Little Snitch | Logic Pro | Logs | LyX | Magnet | Mail |
Maps | Marble | MATLAB R2024b | Mattermost | MediaInfo | MeshLab | Messages | Microsoft Edge |
Microsoft Excel | Microsoft OneNote | Microsoft Outlook | Microsoft PowerPoint |
Microsoft Remote Desktop | Microsoft Teams | Microsoft Word | Migration Assistant | Minecraft |
Mission Control | MongoDB Compass | MPlayerX | Music | MuseScore 4 | MySQLWorkbench | Nautilus |
Neovide | NetNewsWire | NetBeans | News | Notes | Notion | Numbers | OBS Studio | Obsidian |
Octave | Okular | OmniGraffle 7 | ONLYOFFICE | OpenShot Video Editor | OpenTTD | Opera | Pages |
ParaView | Passwords | Pencil2D | Photo Booth | Photos | Pixelmator Pro | Plex | Podcasts |
Postman | PowerShell 7 | Preview | Proton VPN | PyCharm | qBittorrent | QGIS Desktop | Qt Creator |
Quassel | QuickTime Player | R | Rectangle | Remote Desktop Viewer | Reminders | Remmina |
Rhythmbox | RStudio | Safari | Scratch 3 | Screen Sharing | Script Editor | Scribus | Shazam |
Shortcuts | Shotcut | Shotwell | Signal | Simple Scan | Siri | Sketch | Skype | Slack | Solitaire |
SourceTree | Spotify | Steam | Stellarium | Stickies | Stocks | Sublime Text | SuperTuxKart |
System Information | System Settings | TeamViewer | Telegram | Terminal | TextEdit | TextMate |
Thonny | Thunderbird | Time Machine | Tips | Tor Browser | Transmission | TV | Übersicht |
Unity Hub | UTM | VeraCrypt | VirtualBox | Visual Studio Code | VLC | VMware Fusion | Voice Memos |
VoiceOver Utility | Weather | WebStorm | WhatsApp | Wireshark | WPS Office | XcodeTools | Xcode |
XMLEditor | XQuartz | Xournal++ | Yandex Music | YouTube Music | Zed | Zoom | Zotero |
Pokémon TCG Live | Éditeur de texte | Gestionnaire de tâches | Systemüberwachung | Anstoß 3 |
Straßenkarten | Schlüsselbund | Yazılım Merkezi | İnternet Radyo | Işık Ayarı |
Fotoğraf Görüntüleyici | Żółw | Räknare | Æsir | Настройки | МойОфис Текст | Простой сканер |
Сапёр | Файлы | はがきデザインキット | かな入力 | サクラエディタ | ﾒﾓ帳 | ＬＩＮＥ |
ｉＴｕｎｅｓ | 微信 | 网易云音乐 | 카카오톡 | الملفات | الإعدادات | آلة حاسبة | محرر النصوص |
Αρχεία | Αριθμομηχανή | कैलकुलेटर | מחשבון | Máy tính | iPhoneBackup)";

std::vector<std::string> split(std::string_view text)
{
    std::vector<std::string> parts;
    std::size_t end = 0;
    for (std::size_t start = 0; end != std::string_view::npos; start = end + 1) {
        end = text.find('|', start);
        auto part = text.substr(start, end == std::string_view::npos ? end : end - start);
        auto first = part.find_first_not_of(" \n");
        if (first != std::string_view::npos)
            parts.emplace_back(part.substr(first, part.find_last_not_of(" \n") - first + 1));
    }
    return parts;
}

struct Search {
    std::string query;
    std::string expected; ///< names, in order
};

const Search kSearches[] = {
    {"safari", "Safari"},
    {"saf", "Safari"},
    {"code", "CodeLite | CodeRunner | Code::Blocks | Visual Studio Code | Xcode | XcodeTools"},
    {"studio", "Android Studio | FL Studio 21 | OBS Studio | RStudio | Visual Studio Code"},
    {"studio code", "Visual Studio Code"},
    {"disk", "Disk Utility | Disk Usage Analyzer | Blackmagic Disk Speed Test"},
    {"edit",
        "Éditeur de texte | BBEdit | TextEdit | CotEditor | dconf Editor | "
        "Script Editor | XMLEditor | Firefox Developer Edition | "
        "OpenShot Video Editor | gedit"},
    {"editor", "CotEditor | dconf Editor | Script Editor | XMLEditor | OpenShot Video Editor"},
    {"file", "FileZilla | Bluetooth File Exchange"},
    {"fi",
        "Finder | Find My | Firefox | FileZilla | Firefox Developer Edition | "
        "Bluetooth File Exchange | Hex Fiend | Affinity Photo 2 | "
        "Affinity Designer 2 | ONLYOFFICE | WPS Office | LibreOffice | "
        "LibreOffice Base | LibreOffice Calc | LibreOffice Draw | LibreOffice Math | "
        "LibreOffice Writer | LibreOffice Impress | Apple Configurator"},
    {"term", "Terminal | iTerm2 | GNOME Terminal | Mattermost"},
    {"mus", "Music | MuseScore 4 | Yandex Music | YouTube Music"},
    {"music", "Music | Yandex Music | YouTube Music"},
    {"ch",
        "Chess | Cheese | Chromium | PyCharm | Google Chrome | KColorChooser | "
        "Schlüsselbund | Keychain Access | Sketch | Launchpad | Scratch 3 | "
        "Übersicht | Systemüberwachung | Time Machine | CAD Sketcher | "
        "BetterTouchTool | Little Snitch | MySQLWorkbench | Bluetooth File Exchange | "
        "Gestionnaire de tâches"},
    {"office",
        "LibreOffice | LibreOffice Base | LibreOffice Calc | LibreOffice Draw | "
        "LibreOffice Impress | LibreOffice Math | LibreOffice Writer | WPS Office | "
        "ONLYOFFICE"},
    {"libreoffice",
        "LibreOffice | LibreOffice Base | LibreOffice Calc | LibreOffice Draw | "
        "LibreOffice Math | LibreOffice Writer | LibreOffice Impress"},
    {"tex", "TextEdit | TextMate | Sublime Text | Éditeur de texte"},
    {"vi",
        "VirtualBox | Visual Studio Code | GVim | ParaView | DaVinci Resolve | "
        "Image Viewer | TeamViewer | OpenShot Video Editor | Remote Desktop Viewer | "
        "Avidemux | Neovide | Preview | Activity Monitor | iMovie"},
    {"pro",
        "Proton VPN | Logic Pro | Pixelmator Pro | Adobe Premiere Pro | "
        "Google Earth Pro"},
    {"2",
        "2048 | Affinity Designer 2 | Affinity Photo 2 | FL Studio 21 | "
        "Adobe Photoshop 2024 | Adobe After Effects 2024 | Pencil2D | iTerm2 | "
        "MATLAB R2024b | Ableton Live 12 Suite"},
    {"3", "Anstoß 3 | Scratch 3 | K3b"},
    {"7", "7-Zip | OmniGraffle 7 | PowerShell 7"},
    {"system", "System Settings | Systemüberwachung | System Information"},
    {"goo", "Goodnotes 6 | Google Drive | Google Chrome | Google Earth Pro"},
    {"mail", "Mail | KMail"},
    {"note", "Notes | Microsoft OneNote | Keynote | Evernote | Goodnotes 6"},
    {"art", "Straßenkarten | GParted | XQuartz | Google Earth Pro | SuperTuxKart"},
    {"cap", "CapCut | Image Capture | Inkscape"},
    {"key", "Keynote | Keychain Access"},
    {"pass", "Passwords | KeePassXC | 1Password | MongoDB Compass"},
    {"sh",
        "Shazam | Shotcut | Shotwell | Shortcuts | OpenShot Video Editor | "
        "PowerShell 7 | Screen Sharing | MeshLab | Wireshark | Flameshot | GnuCash | "
        "Adobe Photoshop 2024"},
    {"x",
        "Xcode | XQuartz | XMLEditor | Xournal++ | XcodeTools | LyX | MPlayerX | "
        "KeePassXC | 8x8 Work | Extensions | Boxes | TextEdit | TextMate | Hex Fiend | "
        "Pixelmator Pro | Plex | Yandex Music | Dropbox | Firefox | "
        "Firefox Developer Edition | Avidemux | Rhythmbox | SuperTuxKart | "
        "VirtualBox | Sublime Text | Microsoft Excel | Éditeur de texte | "
        "Bluetooth File Exchange"},
    {"git", "GitKraken | GitHub Desktop | Digital Color Meter"},
    {"hub", "GitHub Desktop | Unity Hub"},
    {"phone", "iPhone Mirroring | iPhoneBackup"},
    {"backup", "iPhoneBackup"},
    {"desk",
        "AnyDesk | Docker Desktop | QGIS Desktop | Remote Desktop Viewer | "
        "GitHub Desktop | JupyterLab Desktop | Microsoft Remote Desktop"},
    {"dr", "Dropbox | Google Drive | LibreOffice Draw | Android Studio"},
    {"ss",
        "Messages | Passwords | Mission Control | Chess | Quassel | CrossOver | "
        "Straßenkarten | Anstoß 3 | Schlüsselbund | Transmission | 1Password | "
        "KeePassXC | Migration Assistant | Keychain Access | Boot Camp Assistant | "
        "MongoDB Compass | LibreOffice Impress"},
    {"player", "DVD Player | MPlayerX | QuickTime Player"},
    {"xml", "XMLEditor"},
    {"sql", "MySQLWorkbench | DB Browser for SQLite"},
    {"scan", "Simple Scan | Document Scanner"},
    {"time", "Time Machine | FaceTime | QuickTime Player"},
    {"remote", "Remote Desktop Viewer | Microsoft Remote Desktop"},
    {"fox", "Firefox | Firefox Developer Edition"},
    {"e b", "Brave Browser | LibreOffice Base"},
    {"2d", "Pencil2D"},
    {"tv", "TV"},
    {"8X8", "8x8 Work"},
    {"0 a.d.", "0 A.D."},
    {"++", "Xournal++"},
    {"::", "Code::Blocks"},
    {"\t safari\u2003\n", "Safari"},
    {"no such app", ""},
    {"ÜBER", "Übersicht | Systemüberwachung"},
    {"uber", "Übersicht | Systemüberwachung"},
    {"pokemon", "Pokémon TCG Live"},
    {"raknare", "Räknare"},
    {"taches", "Gestionnaire de tâches"},
    {"zolw", ""},
    {"zołw", "Żółw"},
    {"ae", ""},
    {"Æ", "Æsir"},
    {"may tinh", "Máy tính"},
    {"strasse", "Straßenkarten"},
    {"STRAẞE", "Straßenkarten"},
    {"toß", "Anstoß 3"},
    {"fotograf", "Fotoğraf Görüntüleyici"},
    {"inter", "İnternet Radyo"},
    {"yazılım", "Yazılım Merkezi"},
    {"yazilim", ""},
    {"ısık", ""},
    {"isık", "Işık Ayarı"},
    {"и", "Файлы | МойОфис Текст | Настройки | Простой сканер"},
    {"НАСТРОЙ", "Настройки"},
    {"мои", "МойОфис Текст"},
    {"офис", "МойОфис Текст"},
    {"сапер", "Сапёр"},
    {"か", "かな入力"},
    {"は", "はがきデザインキット"},
    {"はか", ""},
    {"がき", "はがきデザインキット"},
    {"テ", ""},
    {"デ", "はがきデザインキット | サクラエディタ"},
    {"メモ", "ﾒﾓ帳"},
    {"line", "ＬＩＮＥ"},
    {"ｘｃｏ", "Xcode | XcodeTools"},
    {"tunes", "ｉＴｕｎｅｓ"},
    {"音乐", "网易云音乐"},
    {"카카", "카카오톡"},
    {"ال", "الملفات | الإعدادات | محرر النصوص"},
    {"حاسبة", "آلة حاسبة"},
    {"الاعدادات", ""},
    {"αρ", "Αρχεία | Αριθμομηχανή"},
    {"μηχανη", "Αριθμομηχανή"},
    {"क", "कैलकुलेटर"},
    {"מחש", "מחשבון"},
};

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
    store(split(kNames));
    for (auto& [query, expected] : kSearches)
        EXPECT_EQ(search(query), expected) << '"' << query << '"';
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
