#include "Hosts/Posix/ControlSocket.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include "Hosts/Linux/Loop/FdSource.h"
#include "Hosts/Posix/ControlClient.h"
#include "Hosts/Posix/ControlMessage.h"
#include "Hosts/Posix/LineConnection.h"
#include "Hosts/Posix/LocalSocket.h"
#include "Tests/Host/MainLoop.h"
#include "Tests/Support/TemporaryFolder.h"

namespace quorvel::posix {

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class ControlChannelTest : public testing::Test {
protected:
    ControlAddress address(std::string_view display = ":7")
    {
        auto found = ControlAddress::forDisplay(display, root.c_str(), "/nowhere", problem);
        EXPECT_TRUE(found) << problem;
        return found.value_or(ControlAddress{});
    }

    std::unique_ptr<ControlSocket> startBar()
    {
        auto lock = ControlLock::tryAcquire(address(), problem);
        EXPECT_TRUE(lock) << problem;
        return lock ? ControlSocket::open(address(), std::move(*lock), xdg::hostLoop(), problem)
                    : nullptr;
    }

    /// Runs the bar's loop while another thread is the second invocation.
    std::optional<ControlReply> ask(std::vector<std::string> arguments)
    {
        std::optional<ControlReply> reply;
        std::atomic<bool> isDone = false;
        std::thread client{[&] {
            reply = requestOfBar(address(), arguments, 10s);
            isDone = true;
            g_main_context_wakeup(nullptr);
        }};
        while (!isDone)
            g_main_context_iteration(nullptr, true);
        client.join();
        return reply;
    }

    UniqueFd connected()
    {
        auto fd = makeLocalSocket();
        auto name = socketName(address().socketPath);
        EXPECT_EQ(connect(fd.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
        return fd;
    }
    UniqueFd connectAsClient()
    {
        auto fd = connected();
        while (g_main_context_iteration(nullptr, false)) { } // the bar takes it in
        return fd;
    }

    test::TemporaryFolder folder;
    std::string root = folder.path();
    std::string problem;
};

}

TEST(ControlAddressTest, oneDisplayHasOneNameAndNoNameLeadsElsewhere)
{
    EXPECT_EQ(displayFileName(":7"), "X7");
    EXPECT_EQ(displayFileName(":7.0"), "X7");
    EXPECT_EQ(displayFileName("unix:7"), "X7");
    EXPECT_EQ(displayFileName("unix/:7.0"), "X7");

    EXPECT_NE(displayFileName(":7.1"), "X7"); // another screen has a bar of its own
    EXPECT_NE(displayFileName(":70"), "X7");
    EXPECT_NE(displayFileName("host:7"), "X7");
    EXPECT_EQ(displayFileName("../../x:0").find('/'), std::string::npos);
}

TEST_F(ControlChannelTest, onlyAPrivateFolderOfOurOwnIsTrusted)
{
    auto inRuntime = address();
    EXPECT_EQ(inRuntime.socketPath, root + "/quorvel/X7.socket");
    struct stat about{};
    ASSERT_EQ(stat((root + "/quorvel").c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777, 0700u);

    auto fallback = root + "/quorvel-" + std::to_string(geteuid());
    auto isTrusted = [&](const char* runtime) {
        return ControlAddress::forDisplay(":7", runtime, root, problem).has_value();
    };
    EXPECT_TRUE(isTrusted(nullptr));
    EXPECT_TRUE(fs::is_directory(fallback));
    EXPECT_TRUE(isTrusted("relative")); // no runtime folder that can be used: the same one
    auto deep = root + "/" + std::string(120, 'd'); // no name of a socket is that long
    fs::create_directory(deep);
    fs::permissions(deep, fs::perms::owner_all);
    EXPECT_TRUE(isTrusted(deep.c_str()));
    fs::permissions(fallback, fs::perms::others_exec, fs::perm_options::add);
    EXPECT_FALSE(isTrusted(nullptr));

    // A link that somebody put there leads into a folder of his choice.
    fs::remove(fallback);
    fs::create_directory_symlink(root + "/quorvel", fallback);
    EXPECT_FALSE(isTrusted(nullptr));
    EXPECT_NE(problem, "");
}

TEST_F(ControlChannelTest, requestsReachTheHandlerAndItsReplyComesBackWhole)
{
    EXPECT_FALSE(requestOfBar(address(), {"--state"}, 1s)); // no bar
    auto bar = startBar();
    ASSERT_TRUE(bar);
    EXPECT_EQ(ask({"--state"})->exitStatus, 1); // not ready to answer yet

    std::vector<std::string> heard;
    std::string large(3'000'000, 'x'); // more than a socket takes at once
    bar->setHandler([&](auto& arguments) {
        heard = arguments;
        return ControlReply{3, large, "problem\n"};
    });
    auto reply = ask({"--set", "", "name=ü\n b\xff"});
    ASSERT_TRUE(reply);
    EXPECT_EQ(heard, (std::vector<std::string>{"--set", "", "name=ü\n b\xef\xbf\xbd"}));
    EXPECT_EQ(reply->exitStatus, 3);
    EXPECT_EQ(reply->output, large);
    EXPECT_EQ(reply->error, "problem\n");
}

TEST_F(ControlChannelTest, silentAndBrokenClientsDisturbNobody)
{
    auto bar = startBar();
    ASSERT_TRUE(bar);
    int requests = 0;
    bar->setHandler([&](auto&) {
        ++requests;
        return ControlReply{};
    });
    std::vector<UniqueFd> clients;
    for (int i = 0; i < 40; ++i)
        clients.push_back(connectAsClient()); // says nothing
    std::string endless(kLongestRequest + 1, '[');
    for (std::string_view bytes : {"", "[", "[1]\n", "\xff\n", "[]\n[]\n", endless.c_str()}) {
        clients.push_back(connectAsClient());
        send(clients.back().get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (bytes.empty())
            clients.pop_back(); // goes at once
    }

    ASSERT_TRUE(ask({"--state"}));
    EXPECT_EQ(requests, 1);

    auto slow = connectAsClient();
    for (char byte : std::string_view{"[\"--state\"]\n"}) {
        send(slow.get(), &byte, 1, MSG_NOSIGNAL);
        while (g_main_context_iteration(nullptr, false)) { }
    }
    auto brief = connectAsClient();
    send(brief.get(), "[\"--state\"]\n", 12, MSG_NOSIGNAL);
    shutdown(brief.get(), SHUT_WR); // has nothing more to say, but listens
    ASSERT_TRUE(ask({"--state"}));
    EXPECT_EQ(requests, 4);
    for (auto* client : {&slow, &brief}) {
        char byte = 0;
        EXPECT_EQ(recv(client->get(), &byte, 1, MSG_DONTWAIT), 1);
    }
}

/// A bar that takes one session and writes down what it hears.
class ControlSessionTest : public ControlChannelTest {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bar);
        bar->setHandler([](auto&) { return ControlReply{5, "", ""}; });
        EXPECT_EQ(ask({"--settings-session"})->exitStatus, 5) << "while nobody takes sessions";
        bar->setSessionHandler([this](std::unique_ptr<ControlSession> begun) {
            isEnded = false;
            session = std::move(begun);
            session->onLine = [this](std::string_view line) { heardLine(line); };
            session->onEnd = [this] {
                isEnded = true;
                session.reset();
            };
        });
    }

    void heardLine(std::string_view line)
    {
        heard.emplace_back(line);
        if (line == "quit")
            session.reset();
        else if (line.starts_with("set"))
            session->send("news");
    }
    UniqueFd begin(std::string_view more = "")
    {
        auto client = connectAsClient();
        say(client, encodeRequest({"--settings-session"}).append(more));
        EXPECT_TRUE(xdg::x11::eventually([&] { return session != nullptr; }));
        return client;
    }
    static void say(const UniqueFd& client, std::string_view bytes)
    {
        send(client.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }
    bool hears(const std::vector<std::string>& lines)
    {
        return xdg::x11::eventually([&] { return heard == lines; });
    }
    bool ends()
    {
        return xdg::x11::eventually([&] { return isEnded; });
    }

    std::unique_ptr<ControlSocket> bar = startBar();
    std::unique_ptr<ControlSession> session;
    std::vector<std::string> heard;
    bool isEnded = false;
};

// Faults: lines lost, joined or cut; an answer that nobody takes any more, or the end of the
// connection, eats the lines.
TEST_F(ControlSessionTest, carriesLinesUntilOneEndGoes)
{
    auto client = begin("a\n\nb"); // lines may come with the request
    EXPECT_TRUE(hears({"a", ""}));
    say(client, "c\nd\n");
    EXPECT_TRUE(hears({"a", "", "bc", "d"}));
    session->send("one");
    session->send("two");
    std::array<char, 16> bytes{};
    EXPECT_EQ(recv(client.get(), bytes.data(), 8, MSG_WAITALL), 8);
    EXPECT_STREQ(bytes.data(), "one\ntwo\n");
    EXPECT_EQ(ask({"--state"})->exitStatus, 5) << "others are answered meanwhile";
    client = {};
    EXPECT_TRUE(ends());

    for (bool isWithRequest : {false, true}) {
        heard.clear();
        isEnded = false;
        const std::string last = "set 1\nset 2\nset 3\n";
        client = isWithRequest ? connectAsClient() : begin();
        say(client, isWithRequest ? encodeRequest({"--settings-session"}) + last : last);
        client = {};
        EXPECT_TRUE(ends());
        EXPECT_EQ(heard, (std::vector<std::string>{"set 1", "set 2", "set 3"}));
    }

    client = begin();
    heard.clear();
    say(client, "quit\nmore\n");
    EXPECT_TRUE(xdg::x11::eventually([&] { return !session; }));
    EXPECT_EQ(heard, std::vector<std::string>{"quit"});
    EXPECT_EQ(recv(client.get(), bytes.data(), 1, 0), 0) << "the other end hears of it";
}

// Faults: a bar that waits for a program that does not read, or keeps all that is meant for it; one
// that falls over a session that ends inside its own call.
TEST_F(ControlSessionTest, endsWithWhoeverBreaksTheRules)
{
    auto client = begin();
    for (std::string endless(kLongestRequest / 8, 'x'); session;) {
        say(client, endless);
        while (g_main_context_iteration(nullptr, false)) { }
    }
    EXPECT_TRUE(isEnded);

    client = begin();
    const std::string large(LineConnection::kMostUnread / 2, 'x');
    for (int i = 0; i < 8; ++i)
        session->send(large);
    EXPECT_TRUE(session) << "not within the call";
    EXPECT_TRUE(ends());

    client = begin();
    session->send(large);
    std::string received(large.size() + 1, ' ');
    for (std::size_t at = 0; at < received.size();) { // what does not go at once follows
        auto count = recv(client.get(), &received[at], received.size() - at, MSG_DONTWAIT);
        at += count > 0 ? static_cast<std::size_t>(count) : 0;
        g_main_context_iteration(nullptr, false);
    }
    EXPECT_EQ(received, large + "\n");
}

TEST_F(ControlChannelTest, theSocketOfACrashedBarIsReplaced)
{
    auto dead = startBar();
    auto kept = root + "/kept";
    fs::create_hard_link(address().socketPath, kept);
    dead.reset();
    fs::rename(kept, address().socketPath); // as a crash leaves it: there, and nobody listens
    EXPECT_FALSE(requestOfBar(address(), {"--state"}, 1s));

    auto bar = startBar();
    ASSERT_TRUE(bar) << problem;
    bar->setHandler([](auto&) { return ControlReply{5, "", ""}; });
    EXPECT_EQ(ask({"--state"})->exitStatus, 5);
    bar.reset();
    EXPECT_FALSE(fs::exists(address().socketPath));
}

// Faults: a bar that nothing reaches any more, and that still keeps others from starting.
TEST_F(ControlChannelTest, whatIsRemovedFromTheFolderIsMadeAnew)
{
    auto bar = startBar();
    ASSERT_TRUE(bar);
    bar->setHandler([](auto&) { return ControlReply{5, "", ""}; });
    for (auto& removed : {address().socketPath, root + "/quorvel"}) {
        fs::remove_all(removed);
        ASSERT_TRUE(xdg::x11::eventually([&] { return fs::exists(root + "/quorvel/X7.socket"); }));
        EXPECT_EQ(ask({"--state"})->exitStatus, 5);
        EXPECT_FALSE(ControlLock::tryAcquire(address(), problem));
        EXPECT_EQ(ControlLock::owner(address()), getpid());
    }
}

// Fault: a loop that turns as fast as it can around a client that there is no descriptor for.
TEST_F(ControlChannelTest, aClientWaitsWithoutCostWhileNoFileCanBeOpened)
{
    auto bar = startBar();
    ASSERT_TRUE(bar);
    bool isAsked = false;
    bar->setHandler([&](auto&) {
        isAsked = true;
        return ControlReply{};
    });
    while (g_main_context_iteration(nullptr, false)) { }
    auto client = connected();
    auto request = encodeRequest({"--state"});
    send(client.get(), request.data(), request.size(), MSG_NOSIGNAL);
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    auto full = before;
    full.rlim_cur = static_cast<rlim_t>(UniqueFd{dup(0)}.get()); // the lowest that is free
    setrlimit(RLIMIT_NOFILE, &full);
    int turns = 0;
    while (turns < 100 && g_main_context_iteration(nullptr, false))
        ++turns;
    setrlimit(RLIMIT_NOFILE, &before);

    EXPECT_LT(turns, 100);
    EXPECT_FALSE(isAsked);
    EXPECT_TRUE(xdg::x11::eventually([&] { return isAsked; }));
}

TEST(ControlMessageTest, piecesOfAnySizeMakeOneMessageAndNonsenseIsRefused)
{
    auto bytes = encodeReply({7, "out", "err"});
    for (std::size_t step = 1; step <= bytes.size(); ++step) {
        MessageReader reader{100};
        auto state = MessageReader::State::incomplete;
        for (std::size_t at = 0; at < bytes.size(); at += step) {
            EXPECT_EQ(state, MessageReader::State::incomplete);
            state = reader.add(std::string_view{bytes}.substr(at, step));
        }
        ASSERT_EQ(state, MessageReader::State::complete);
        EXPECT_EQ(decodeReply(reader.message())->error, "err");
    }

    EXPECT_EQ(MessageReader{10}.add(bytes), MessageReader::State::malformed); // too long
    EXPECT_EQ(MessageReader{100}.add(bytes + "x"), MessageReader::State::malformed);
    for (auto* nonsense : {"", "no JSON", "[]", R"({"status": 1, "output": "", "error": 2})",
             R"({"status": "1", "output": "", "error": ""})"})
        EXPECT_FALSE(decodeReply(nonsense)) << nonsense;
    for (auto* nonsense : {"", "{}", "[1]", R"(["--state")"})
        EXPECT_FALSE(decodeRequest(nonsense)) << nonsense;
    EXPECT_EQ(decodeRequest("[]")->size(), 0u);
}

}
