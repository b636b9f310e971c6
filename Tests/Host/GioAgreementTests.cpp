#include <algorithm>
#include <optional>
#include <set>

#include <gio/gdesktopappinfo.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Hosts/Linux/Applications/DesktopEntryFile.h"
#include "Hosts/Linux/Applications/DesktopKeyFile.h"
#include "Hosts/Linux/Applications/EntryRules.h"
#include "Hosts/Linux/Applications/ExecLine.h"
#include "Hosts/Linux/Applications/LaunchEntry.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Host/fixtures/InstalledApplications.h"

namespace quorvel::xdg::x11 {
namespace {

using namespace std::literals;

std::string orEmpty(const char* text)
{
    return text ? text : "";
}

std::vector<std::string> listed(const char* const* words)
{
    std::vector<std::string> list;
    for (; words && *words; ++words)
        list.emplace_back(*words);
    return list;
}

/// Our reading of a desktop file beside that of GIO, through which most programs start
/// applications.
class GioAgreement : public testing::Test {
protected:
    GioAgreement()
    {
        ::setenv("PATH", (installed.path("bin") + ":" + searchPath).c_str(), 1);
        ::setenv("LANGUAGE", "de_AT:fr", 1);
        ::setenv("LC_ALL", "C.UTF-8", 1); // in the C locale, no language is asked for
        ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        ::chmod(installed.write("bin/here", "#!/bin/sh\n").c_str(), 0700);
        installed.write("bin/not-executable", "#!/bin/sh\n");
    }

public:
    ~GioAgreement() override
    {
        ::setenv("PATH", searchPath.c_str(), 1);
        for (const auto* name : {"LANGUAGE", "LC_ALL", "DBUS_SESSION_BUS_ADDRESS"})
            ::unsetenv(name);
    }

protected:
    const std::string searchPath = std::getenv("PATH");
    test::InstalledApplications installed;
};

const std::string kHead = "[Desktop Entry]\nType=Application\nName=Plain\nExec=here\n";

const std::vector<std::string> kFiles{
    kHead,
    "",
    "\n\n# only a comment\n",
    "Name=outside\n" + kHead,
    "[Other]\nName=x\n" + kHead,
    "[Desktop Entry]\nName=No type\nExec=here\n",
    "[Desktop Entry]\nType=Link\nName=Link\nURL=http://example.org\n",
    "[Desktop Entry]\nType=application\nName=Small letter\nExec=here\n",
    "[Desktop Entry]\nType = Application \nName = Blanks  \nExec = here  \n",
    "[Desktop Entry]\r\nType=Application\r\nName=Carriage returns\r\nExec=here\r\n",
    "\xEF\xBB\xBF" + kHead,
    kHead + "no equals sign\n",
    kHead + "=no key\n",
    kHead + "bad key=1\n",
    kHead + "K[de=1\n",
    kHead + "[Broken\n",
    kHead + "[]\n",
    kHead + "[Group] trailing\n",
    kHead + "Icon=pic\n[Desktop Entry]\nName=Second group\nIcon=other\n",
    kHead + "Name=Later\nName=Last\n",
    kHead + "[X-Other]\nName=Other\nHidden=true\n",
    kHead + "Name=\n",
    "[Desktop Entry]\nType=Application\nExec=here\n",
    kHead + "Name=Latin \xE4\xF6\n",
    kHead + "Name[de]=Latin \xE4\xF6\n",
    kHead + "Encoding=ISO-8859-1\nName=Alt\xE4\n",
    kHead + "Encoding=UTF-8\n",
    kHead
        + "Name[fr]=Fran\xC3\xA7"
          "ais\nName[de]=Deutsch\nName[ja]=\xE6\x97\xA5\n",
    kHead
        + "Name[fr]=Fran\xC3\xA7"
          "ais\nName[ja]=\xE6\x97\xA5\n",
    kHead
        + "Name[de_AT]=\nGenericName=Thing\nGenericName[de]=Ding\nKeywords=a;b\\;c;\n"
          "Keywords[de]=eins;zwei\n",
    "Name[ja]=outside\n" + kHead,
    kHead + "Name[ja]\n",
    kHead + "[ja]=1\n",
    kHead + "Name[]=1\n",
    kHead + "Name[ja=1\n",
    kHead + "Name[ja]x=1\n",
    kHead + "Name[j a]=1\n",
    kHead + "Na me[ja]=1\n",
    kHead + "Na][me[ja]=1\n",
    kHead + " Name[ja] = 1\n",
    kHead + "Name[fr][ja]=1\n",
    kHead + "Name[FR]=1\n",
    kHead + "Name[ja]=1\r\nName[fr]=Retour\r\n",
    kHead + "Name[de_AT]x=1\nName[fr]=Plus court",
    kHead + "Keywords=\nIcon[de]=deutsch\nIcon=plain.png\n",
    kHead + "Icon=/abs/pic.svg\nStartupWMClass=a\\sb\\\\c\n",
    kHead + "Icon=bad\\qescape\n",
    kHead + "Name=trailing backslash\\\n",
    kHead + "Hidden=true\n",
    kHead + "Hidden=True\nNoDisplay=1\n",
    kHead + "NoDisplay=yes\n",
    kHead + "NoDisplay=true \n",
    kHead + "OnlyShowIn=GNOME;KDE;\n",
    kHead + "OnlyShowIn=X-Test\n",
    kHead + "OnlyShowIn=\n",
    kHead + "NotShowIn=X-Test;\n",
    kHead + "NotShowIn=GNOME;\n",
    kHead + "OnlyShowIn=X-Test;\nNotShowIn=X-Test;\n",
    kHead + "TryExec=here\n",
    kHead + "TryExec=/missing/here\n",
    kHead + "TryExec=missing\n",
    kHead + "TryExec=\n",
    kHead + "TryExec=not-executable\n",
    kHead + "Exec=missing --x\n",
    kHead + "Exec=not-executable\n",
    kHead + "Exec=\n",
    kHead + "Exec=here \"open\n",
    kHead + "Exec='here' %U\n",
    kHead + "Exec=\"here\" # comment\n",
    kHead + "Exec=# comment\n",
    kHead + "Exec=   \n",
    kHead + "Exec=\\shere\n",
    kHead + "Exec=he\xFFre\n",
    kHead + "Exec=env A=1 here\n",
    kHead + "Exec=A=1 here\n",
    kHead + "Exec=here\\\\\n",
    kHead + "Actions=one;two\n[Desktop Action one]\nName=One\nName[de]=Eins\nExec=here 1\n",
    kHead + "Actions=\n",
    kHead + "SingleMainWindow=true\nStartupNotify=false\nTerminal=true\n",
    kHead + "Comment=a\0b\nIcon=after\n"s,
    kHead + "Comment=" + std::string(200'000, 'x') + "\nIcon=far\n",
    "[Desktop Entry]\nType=Application\nName=By message\nDBusActivatable=true\n",
};

// Fault: an application is offered that cannot be started, or not offered though it can, or shown
// under what another program does not show it.
TEST_F(GioAgreement, readsADesktopFileAsGioDoes)
{
    ::setenv("XDG_CURRENT_DESKTOP", "X-Test", 1);
    for (std::size_t i = 0; i < kFiles.size(); ++i) {
        SCOPED_TRACE(kFiles[i].substr(0, 300));
        const auto file = installed.write("user/applications/case.desktop", kFiles[i]);
        const GObjectHandle<GDesktopAppInfo> gio{
            g_desktop_app_info_new_from_filename(file.c_str())};
        const auto ours = DesktopKeyFile::read(file);
        const bool canStart = ours && !whatIsMissing(*ours);
        EXPECT_EQ(canStart, gio != nullptr);
        if (!canStart || !gio)
            continue;

        auto* info = G_APP_INFO(gio.get());
        const auto entry = DesktopEntryFile::of(*ours);
        // GIO calls an application without a name "Unnamed".
        const auto name = orEmpty(g_app_info_get_name(info));
        EXPECT_EQ(entry.name, name == "Unnamed" ? "" : name);
        EXPECT_EQ(entry.exec, orEmpty(g_app_info_get_commandline(info)));
        EXPECT_EQ(
            entry.startupWMClass, orEmpty(g_desktop_app_info_get_startup_wm_class(gio.get())));
        EXPECT_EQ(entry.isHidden, g_desktop_app_info_get_is_hidden(gio.get()) == TRUE);
        EXPECT_EQ(entry.isNoDisplay, g_desktop_app_info_get_nodisplay(gio.get()) == TRUE);
        EXPECT_EQ(ours->localText("GenericName"),
            orEmpty(g_desktop_app_info_get_generic_name(gio.get())));
        EXPECT_EQ(ours->localList("Keywords").value_or(std::vector<std::string>{}),
            listed(g_desktop_app_info_get_keywords(gio.get())));
        EXPECT_EQ(ours->list("Actions").value_or(std::vector<std::string>{}),
            listed(g_desktop_app_info_list_actions(gio.get())));
        EXPECT_EQ(isForMenus(*ours),
            !entry.isHidden && !entry.isNoDisplay
                && g_desktop_app_info_get_show_in(gio.get(), "X-Test"));
    }
    ::unsetenv("XDG_CURRENT_DESKTOP");
}

const std::vector<std::string> kCommandLines{"here", "here %f", "here %F", "here %u", "here %U",
    "here %d %D", "here %n", "here %N", "here --a=%f --b=%f", "here %i %c %k %m %v %%", "here %",
    "here %%f", "here '%f' \"%F\"", "here \"a b\" 'c d' e\\ f", "here \"\\$HOME \\` \\\" \\\\\"",
    "here $HOME `ls` ~ *", "here a#b # comment %f", "here \"\" ''", "'here' \"un\"'joined'",
    "here\ta", "here %c%f", "here %x%f", "here -- %U last", "here \xC3\xA9 %f"};

/// The arguments of every program that GIO starts, once there are so many.
std::multiset<std::string> startedByGio(GDesktopAppInfo* gio, const std::vector<std::string>& files,
    const std::string& folder, std::size_t count)
{
    GList* list = nullptr;
    for (const auto& file : files)
        list = g_list_append(list, g_file_new_for_path(file.c_str()));
    // A quote in the name of a file that is put into quotes makes the line none.
    const bool isLine = g_app_info_launch(G_APP_INFO(gio), list, nullptr, nullptr);
    EXPECT_EQ(isLine, count > 0);
    g_list_free_full(list, g_object_unref);

    std::multiset<std::string> all;
    eventually([&] {
        all.clear();
        for (auto& file : std::filesystem::directory_iterator{folder}) {
            if (std::ifstream words{file.path()}; file.path().extension() == ".done")
                all.emplace(
                    std::istreambuf_iterator<char>{words}, std::istreambuf_iterator<char>{});
        }
        return all.size() >= count;
    });
    return all;
}

// Fault: an argument that is split, joined, lost or taken for a file's, so that a program opens
// something else than it was given.
TEST_F(GioAgreement, startsAProgramWithTheArgumentsThatGioGivesIt)
{
    ::chmod(installed
                .write("bin/here",
                    "#!/bin/sh\nfor word; do printf '<%s>' \"$word\"; done > \"$OUT/$$\"\n"
                    "mv \"$OUT/$$\" \"$OUT/$$.done\"\n")
                .c_str(),
        0700);
    int round = 0;
    for (const auto& line : kCommandLines) {
        for (const auto& files :
            {std::vector<std::string>{}, {"/a b/c'd"}, {"/x/y", "/z \"%f\""}}) {
            SCOPED_TRACE(line + " with " + std::to_string(files.size()));
            const auto folder = installed.path("out" + std::to_string(++round));
            std::filesystem::create_directories(folder);
            ::setenv("OUT", folder.c_str(), 1);
            GKeyFile* const escaped = g_key_file_new();
            g_key_file_set_string(escaped, "Desktop Entry", "Exec", line.c_str());
            const GText lines{g_key_file_to_data(escaped, nullptr, nullptr)};
            g_key_file_unref(escaped);
            const auto path = installed.write("user/applications/the case.desktop",
                lines.get() + "Type=Application\nName=A 'name'\nIcon=an icon\n"s);

            const auto file = DesktopKeyFile::read(path);
            const auto entry = LaunchEntry::of(*file, path, "");
            std::multiset<std::string> ours;
            for (const auto& command : commandsOf(entry->exec, entry->fields, files)) {
                std::string words;
                for (std::size_t i = 1; i < command.size(); ++i)
                    words += '<' + command[i] + '>';
                ours.insert(words);
            }
            const GObjectHandle<GDesktopAppInfo> gio{
                g_desktop_app_info_new_from_filename(path.c_str())};
            ASSERT_TRUE(gio);
            EXPECT_EQ(ours, startedByGio(gio.get(), files, folder, ours.size()));
        }
    }
    ::unsetenv("OUT");
}

}
}
