#include <csignal>
#include <fstream>
#include <functional>
#include <sstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Hosts/Linux/Applications/IconPictures.h"
#include "Hosts/Linux/Pictures/PictureCache.h"
#include "Hosts/Linux/Pictures/PictureDecoding.h"
#include "Hosts/Linux/Pictures/Seclusion.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg {
namespace {

constexpr int kSide = 16;

std::string square(std::string_view attributes, std::string_view rest = {})
{
    return "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 16 16'>" + std::string{rest}
    + "<rect width='16' height='16' " + std::string{attributes} + "/></svg>";
}

/// More work than anybody waits for.
std::string endless()
{
    return square("filter='url(#f)'",
        "<filter id='f'><feTurbulence baseFrequency='0.9' numOctaves='2000000000'/></filter>");
}

std::uint32_t middleOf(const SurfacePointer& surface)
{
    if (!surface)
        return 0;
    const auto* row = cairo_image_surface_get_data(surface.get())
        + kSide / 2 * cairo_image_surface_get_stride(surface.get());
    return reinterpret_cast<const std::uint32_t*>(row)[kSide / 2];
}

/// What is left of the system for a process that has gone through this, as bits.
int attemptsOf(const std::function<int()>& attempts)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(attempts());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr std::size_t kTooMuch = 128 << 20;

int attemptAll()
{
    int open = ::open("/etc/passwd", O_RDONLY);
    int reach = ::socket(AF_UNIX, SOCK_STREAM, 0);
    return (open >= 0 ? 1 : 0) | (reach >= 0 ? 2 : 0) | (::kill(::getppid(), 0) == 0 ? 4 : 0)
        | (::fork() >= 0 ? 8 : 0)
        | (::mmap(nullptr, kTooMuch, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                    != MAP_FAILED
                ? 16
                : 0)
        | (::syscall(SYS_tgkill, ::getppid(), ::getppid(), 0) == 0 ? 32 : 0);
}

// Faults: a drawing with a hole in its decoder reads the user's files, sends them somewhere, ends
// other processes, or takes all memory.
TEST(Seclusion, leavesNothingOfTheSystem)
{
    EXPECT_EQ(attemptsOf(attemptAll), 63);
    EXPECT_EQ(attemptsOf([] {
        return secludeProcess({kTooMuch / 2, 10, {"/usr/share/fonts"}}) ? attemptAll() : 64;
    }),
        0);
}

/// What the kernel says of a process.
std::string aboutProcess(pid_t process, const std::string& file)
{
    std::ostringstream text;
    text << std::ifstream{"/proc/" + std::to_string(process) + '/' + file}.rdbuf();
    return text.str();
}

class Decoder : public testing::Test {
protected:
    std::uint32_t middle(std::string_view bytes)
    {
        last = decoder.decode(bytes, PictureFormat::svg, kSide);
        return middleOf(last.square);
    }

    test::VirtualDispatch dispatch;
    std::unique_ptr<Queue> queue = dispatch.makeSerialQueue("pictures", QualityOfService::utility);
    DecoderProcess decoder{{QUORVEL_PROGRAM, kDecodePictures}, *queue, seconds(2)};
    DecodedPicture last;
};

// Faults: a picture that hangs or ends its decoder takes those after it along, or the bar; one that
// was only unlucky is never drawn; the process and its memory stay for ever, or it is not secluded.
TEST_F(Decoder, outlivesPicturesThatItsProcessDoesNot)
{
    EXPECT_EQ(middle(square("fill='#00ff00'")), 0xFF00FF00U);
    const auto first = decoder.process();
    ASSERT_TRUE(first);
    const auto status = aboutProcess(*first, "status");
    EXPECT_NE(status.find("NoNewPrivs:\t1\n"), std::string::npos) << status;
    EXPECT_NE(status.find("Seccomp:\t2\n"), std::string::npos) << status;
    EXPECT_EQ(aboutProcess(*first, "limits").find("Max address space         unlimited"),
        std::string::npos);
    EXPECT_EQ(middle("<svg"), 0U);
    EXPECT_TRUE(last.isFinal);
    EXPECT_EQ(decoder.process(), first);

    EXPECT_EQ(middle(endless()), 0U);
    EXPECT_FALSE(last.isFinal);
    EXPECT_EQ(decoder.process(), std::nullopt);
    EXPECT_EQ(middle(square("fill='#0000ff'")), 0xFF0000FFU);

    ASSERT_TRUE(decoder.process());
    ::kill(*decoder.process(), SIGKILL);
    EXPECT_EQ(middle(square("fill='#ff0000'")), 0xFFFF0000U);

    ASSERT_TRUE(decoder.process());
    dispatch.advance(DecoderProcess::kIdleLimit + seconds(0.1));
    EXPECT_EQ(decoder.process(), std::nullopt);
    EXPECT_EQ(middle(square("fill='#00ff00'")), 0xFF00FF00U);
}

// Fault: the fonts are out of reach, and an icon that is a letter is empty.
TEST_F(Decoder, drawsLetters)
{
    EXPECT_EQ(middle(square("fill='none'",
                  "<text x='-16' y='24' font-size='48' font-family='DejaVu Sans Mono' "
                  "fill='#00ff00'>\u2588\u2588</text>")),
        0xFF00FF00U);
}

TEST_F(Decoder, tellsThatItHasNoProgram)
{
    DecoderProcess absent{{"/absent/program"}, *queue};
    EXPECT_FALSE(absent.decode(square("fill='red'"), PictureFormat::svg, kSide).square);
    DecoderProcess other{{"/bin/true"}, *queue};
    const auto picture = other.decode(square("fill='red'"), PictureFormat::svg, kSide);
    EXPECT_FALSE(picture.square);
    EXPECT_FALSE(picture.isFinal);
}

class KeptPictures : public testing::Test {
protected:
    std::size_t files() const
    {
        std::size_t count = 0;
        for ([[maybe_unused]] auto& file :
            std::filesystem::directory_iterator{installed.path("cache/Quorvel/icons")})
            ++count;
        return count;
    }

    test::InstalledApplications installed;
    test::VirtualDispatch dispatch;
    const std::vector<std::string> program{QUORVEL_PROGRAM, kDecodePictures};
    const std::vector<std::string> noProgram{"/absent/program"};
};

// Faults: each start decodes all again; a changed file keeps its old picture; a picture that nobody
// could decode this time counts as broken for ever; a damaged file in the folder is believed.
TEST_F(KeptPictures, areThereAfterARestartUntilTheirFileChanges)
{
    const auto path = installed.write("one.svg", square("fill='#00ff00'"));
    const auto broken = installed.write("broken.svg", "<svg");
    const IconPictures::Files all{broken, installed.path("absent.png"), path};
    EXPECT_EQ(middleOf(IconPictures(dispatch, noProgram).draw(all, kSide)), 0U);
    EXPECT_EQ(middleOf(IconPictures(dispatch, program).draw(all, kSide)), 0xFF00FF00U);

    IconPictures again{dispatch, noProgram};
    const auto kept = again.find(all, kSide);
    ASSERT_TRUE(kept) << "both are known: what is broken too";
    EXPECT_EQ(middleOf(*kept), 0xFF00FF00U);

    installed.write("one.svg", square("fill='#0000ff' "));
    EXPECT_FALSE(again.find(all, kSide));
    for (auto& file : std::filesystem::directory_iterator{installed.path("cache/Quorvel/icons")})
        std::filesystem::resize_file(file.path(), std::filesystem::file_size(file) / 2);
    EXPECT_EQ(middleOf(IconPictures(dispatch, program).draw(all, kSide)), 0xFF0000FFU);
}

// Fault: the main thread hears once for each picture, or never; the picture is asked for again.
TEST_F(KeptPictures, arriveTogether)
{
    IconPictures pictures{dispatch, program};
    int arrivals = 0;
    const auto arrived = pictures.arrived.subscribe([&] { ++arrivals; });
    std::vector<IconPictures::Files> files;
    for (int i = 0; i < 5; ++i) {
        files.push_back({installed.write(std::to_string(i) + ".svg", square("fill='#00ff00'"))});
        EXPECT_FALSE(pictures.find(files.back(), kSide));
        EXPECT_FALSE(pictures.find(files.back(), kSide));
    }
    dispatch.advance(seconds(1));
    EXPECT_EQ(arrivals, 1);
    for (const auto& each : files) {
        const auto found = pictures.find(each, kSide);
        ASSERT_TRUE(found);
        EXPECT_EQ(middleOf(*found), 0xFF00FF00U);
    }
    EXPECT_EQ(files.size(), this->files());
}

// Fault: the folder grows for ever.
TEST_F(KeptPictures, areDroppedWhenTheyAreTooMany)
{
    PictureCache cache{installed.path("cache/Quorvel/icons"), 20 << 10};
    const auto picture = makeSquare(kSide);
    for (int i = 0; i < 100; ++i)
        cache.keep({std::to_string(i), i, i}, kSide, picture);
    EXPECT_LT(files(), 60U);
    EXPECT_TRUE(cache.find({"99", 99, 99}, kSide));
    PictureCache{"/proc/absent"}.keep({"1", 1, 1}, kSide, picture);
}

}
}
