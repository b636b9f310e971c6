#include "Hosts/Linux/Applications/Icons.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include <cairo/cairo.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Hosts/Linux/Applications/DesktopEntries.h"
#include "Hosts/Linux/Applications/IconPictures.h"
#include "Hosts/Linux/Applications/IconTheme.h"
#include "Hosts/Linux/Applications/SharedSurfaces.h"
#include "Hosts/Linux/Drawing/IconImage.h"
#include "Hosts/Linux/Pictures/PictureDecoding.h"
#include "Tests/Host/fixtures/InstalledApplications.h"
#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::xdg::x11 {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;

std::uint32_t pixel(cairo_surface_t* surface, int x, int y)
{
    const auto* row
        = cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<const std::uint32_t*>(row)[x];
}

IconPixels filled(int width, int height, std::uint32_t argb)
{
    return {width, height, std::vector(static_cast<std::size_t>(width * height), argb)};
}

std::string svg(std::string_view colour)
{
    return "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 10 10'><rect width='10' "
           "height='10' "
           "fill='"
        + std::string{colour} + "'/></svg>";
}

class IconFiles : public testing::Test {
protected:
    IconFiles()
    {
        installed.write("system/icons/hicolor/index.theme",
            "[Icon Theme]\nName=Hicolor\n"
            "Directories=16/apps,32/apps,64/apps,s/apps\nScaledDirectories=16@2/apps\n"
            "[16/apps]\nSize=16\n[32/apps]\nSize=32\n[64/apps]\nSize=64\nType=Fixed\n"
            "[16@2/apps]\nSize=16\nScale=2\nType=Fixed\n"
            "[s/apps]\nSize=128\nMinSize=8\nMaxSize=512\nType=Scalable\n");
    }

    std::string png(std::string_view relative, int size, std::uint32_t argb)
    {
        auto* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size);
        auto* context = cairo_create(surface);
        cairo_set_source_rgb(context, (argb >> 16 & 0xFF) / 255.0, (argb >> 8 & 0xFF) / 255.0,
            (argb & 0xFF) / 255.0);
        cairo_paint(context);
        cairo_destroy(context);
        const auto path = installed.write(relative, "");
        EXPECT_EQ(cairo_surface_write_to_png(surface, path.c_str()), CAIRO_STATUS_SUCCESS);
        cairo_surface_destroy(surface);
        return path;
    }

    /// The image of an application that names this icon.
    Image iconNamed(const std::string& value)
    {
        return icons.forEntry(installed.install("app", "Icon=" + value + '\n'));
    }

    /// As soon as it has been decoded.
    cairo_surface_t* rendered(const Image& image, int pixels)
    {
        const auto* icon = dynamic_cast<const IconImage*>(image.get());
        if (icon && !icon->rendered(pixels))
            dispatch.drain();
        return icon ? icon->rendered(pixels) : nullptr;
    }
    /// The colour in the middle of the picture at this size; 0 for no picture.
    std::uint32_t middle(const Image& image, int pixels)
    {
        auto* surface = rendered(image, pixels);
        if (!surface)
            return 0;
        EXPECT_EQ(cairo_image_surface_get_width(surface), pixels);
        EXPECT_EQ(cairo_image_surface_get_height(surface), pixels);
        return pixel(surface, pixels / 2, pixels / 2);
    }

    test::InstalledApplications installed;
    test::VirtualDispatch dispatch;
    DesktopEntries entries{dispatch};
    IconPictures pictures{dispatch, {QUORVEL_PROGRAM, kDecodePictures}};
    Icons icons{entries, pictures};
};

TEST_F(IconFiles, usesTheFileMadeForTheSizeElseTheNextLargerOne)
{
    png("system/icons/hicolor/16/apps/star.png", 16, kRed);
    png("system/icons/hicolor/32/apps/star.png", 32, kGreen);
    png("user/icons/hicolor/64/apps/star.png", 64, kBlue);
    const auto star = iconNamed("star");

    EXPECT_EQ(middle(star, 16), kRed);
    EXPECT_EQ(middle(star, 18), kGreen) << "16 stretched to 18 would blur";
    EXPECT_EQ(middle(star, 32), kGreen);
    EXPECT_EQ(middle(star, 36), kBlue);
    EXPECT_EQ(middle(star, 300), kBlue) << "the largest there is";
}

TEST_F(IconFiles, drawsAVectorWhereNoBitmapFitsAndPrefersThePictureForTwiceTheScale)
{
    png("system/icons/hicolor/16/apps/star.png", 16, kRed);
    png("system/icons/hicolor/16@2/apps/star.png", 32, kGreen);
    installed.write("system/icons/hicolor/s/apps/star.svg", svg("#0000ff"));
    const auto star = iconNamed("star");

    EXPECT_EQ(middle(star, 16), kRed);
    EXPECT_EQ(middle(star, 32), kGreen);
    EXPECT_EQ(middle(star, 18), kBlue);
    EXPECT_EQ(middle(star, 60), kBlue);
}

TEST_F(IconFiles, looksInTheUsersThemeItsParentsAndFoldersWithoutTheme)
{
    installed.write("config/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name=Mine\n");
    installed.write("user/icons/Mine/index.theme",
        "[Icon Theme]\nInherits=Other,Mine\nDirectories=a\n[a]\nSize=32\n");
    installed.write("system/icons/Other/index.theme",
        "[Icon Theme]\nInherits=Mine\nDirectories=a\n[a]\nSize=32\n");
    png("user/icons/Mine/a/one.png", 32, kRed);
    png("system/icons/Other/a/one.png", 32, kBlue);
    png("system/icons/Other/a/two.png", 32, kGreen);
    png("system/icons/hicolor/32/apps/two.png", 32, kRed);
    png("system/pixmaps/three.png", 48, kBlue);

    EXPECT_EQ(middle(iconNamed("one"), 32), kRed);
    EXPECT_EQ(middle(iconNamed("two"), 32), kGreen);
    EXPECT_EQ(middle(iconNamed("three.png"), 32), kBlue);
    EXPECT_EQ(middle(iconNamed(installed.path("system/pixmaps/three.png")), 32), kBlue);
}

TEST_F(IconFiles, findsNothingForNamesThatAreMissingOrLeaveTheFolders)
{
    png("system/secret.png", 32, kRed);

    EXPECT_FALSE(iconNamed("missing"));
    EXPECT_FALSE(iconNamed(""));
    EXPECT_FALSE(iconNamed("../../../secret"));
    EXPECT_FALSE(iconNamed(installed.path("missing.png")));
    EXPECT_FALSE(iconNamed("/dev/zero"));
    EXPECT_FALSE(icons.forEntry(installed.path("missing.desktop")));
    EXPECT_TRUE(iconNamed(installed.path("system/secret.png")));
}

TEST_F(IconFiles, hostileFilesGiveNoPictureAndTheNextBestFileIsTaken)
{
    const auto good = png("system/pixmaps/good.png", 32, kGreen);
    std::stringstream bytes;
    bytes << std::ifstream{good, std::ios::binary}.rdbuf();
    auto huge = bytes.str();
    huge.replace(16, 8, std::string("\0\0\xFF\xFF\0\0\xFF\xFF", 8));
    const auto truncated = bytes.str().substr(0, bytes.str().size() / 2);
    installed.write("system/pixmaps/huge.png", huge);
    installed.write("system/pixmaps/short.png", truncated);
    installed.write("system/pixmaps/tiny.png", bytes.str().substr(0, 10));
    installed.write("system/pixmaps/bad.svg", "<svg xmlns='http://www.w3.org/2000/svg'><rect");
    installed.write("system/pixmaps/empty.svg", "");
    installed.write("system/icons/hicolor/32/apps/half.png", truncated);
    png("system/icons/hicolor/64/apps/half.png", 64, kBlue);
    ASSERT_EQ(::mkfifo(installed.path("system/pixmaps/pipe.png").c_str(), 0600), 0);

    for (const auto* name : {"huge", "short", "tiny", "bad", "empty", "pipe"})
        EXPECT_EQ(rendered(iconNamed(name), 32), nullptr) << name;
    EXPECT_EQ(middle(iconNamed("half"), 32), kBlue);
}

TEST_F(IconFiles, drawsOnceForEachSizeAndKeepsAFew)
{
    png("system/pixmaps/star.png", 64, kRed);
    const auto star = iconNamed("star");
    EXPECT_EQ(iconNamed("star"), star) << "the same picture is the same handle";
    ASSERT_EQ(middle(star, 16), kRed);
    png("system/pixmaps/star.png", 64, kBlue);

    EXPECT_EQ(middle(star, 16), kRed) << "kept, the file is not read again";
    EXPECT_EQ(rendered(star, 0), nullptr);
    EXPECT_EQ(rendered(star, -5), nullptr);
    EXPECT_EQ(rendered(star, 1'000'000), nullptr);
    for (int size = 20; size < 30; ++size)
        EXPECT_EQ(middle(star, size), kBlue);
    EXPECT_EQ(middle(star, 16), kBlue) << "forgotten after other sizes";
}

TEST_F(IconFiles, thereIsAlwaysAGenericPicture)
{
    const auto drawn = icons.generic();
    for (const int size : {1, 2, 16, 18, 36, 60, 256})
        EXPECT_NE(middle(drawn, size), 0u) << size;
    EXPECT_EQ(icons.generic(), drawn);

    png("system/icons/hicolor/32/apps/application-x-executable.png", 32, kGreen);
    EXPECT_EQ(middle((Icons{entries, pictures}.generic()), 32), kGreen);
}

TEST_F(IconFiles, windowPixelsAreScaledFromTheNextLargerSizeAndKeepTheirProportions)
{
    const auto icon = icons.fromPixels({filled(64, 64, kBlue), filled(16, 16, kRed),
        filled(32, 32, kGreen), filled(256, 256, kRed)});
    EXPECT_EQ(middle(icon, 16), kRed);
    EXPECT_EQ(middle(icon, 18), kGreen);
    EXPECT_EQ(middle(icon, 36), kBlue);
    EXPECT_EQ(middle(icon, 60), kBlue);

    const auto image = icons.fromPixels({filled(200, 100, kGreen)});
    auto* wide = rendered(image, 40);
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(pixel(wide, 20, 20), kGreen);
    EXPECT_EQ(pixel(wide, 20, 5), 0u);
    EXPECT_EQ(pixel(wide, 20, 35), 0u);
}

// Faults: the pixels of every icon ever seen are kept; one that had to go is not drawn again, or
// asks its window although its file or its last drawing is there.
TEST_F(IconFiles, keepsWhatWasUsedLastWithinItsBytesAndTheRestComesAgain)
{
    static constexpr int side = 32;
    constexpr std::size_t bytes = side * side * 4;
    Icons few{entries, pictures, 5 * bytes};
    int reloads = 0;
    bool isGone = false;
    auto give = [&](std::uint32_t argb) {
        return few.fromPixels({filled(side, side, argb)}, [&reloads, &isGone, argb] {
            ++reloads;
            return isGone ? std::vector<IconPixels>{} : std::vector{filled(side, side, argb)};
        });
    };
    const auto red = give(kRed);
    const auto green = give(kGreen);
    EXPECT_EQ(middle(red, side), kRed);
    EXPECT_EQ(middle(green, side), kGreen);
    EXPECT_EQ(middle(red, 16), kRed) << "still from its pixels";
    EXPECT_EQ(reloads, 0);

    std::vector<Image> many;
    for (int i = 0; i < 20; ++i)
        many.push_back(give(kBlue));
    EXPECT_EQ(middle(red, side), kRed);
    EXPECT_EQ(middle(red, side), kRed) << "drawn once";
    EXPECT_EQ(reloads, 1);

    isGone = true;
    EXPECT_EQ(middle(green, side), 0u) << "its window has gone, and its pixels had to";
    isGone = false;
    EXPECT_EQ(middle(green, side), kGreen) << "the next window of the application has them";

    const auto path = png("system/pixmaps/file.png", side, kRed);
    const auto file = few.forEntry(installed.install("file", "Icon=" + path + '\n'));
    ASSERT_EQ(middle(file, side), kRed);
    for (auto& image : many)
        ASSERT_EQ(middle(image, side), kBlue);
    png("system/pixmaps/file.png", side, kBlue);
    EXPECT_EQ(middle(file, side), kBlue) << "it was dropped as well, and is read again";
}

// Faults: windows that got the same icon take its memory each; other pixels are shown instead; a
// picture that has gone is handed out.
TEST_F(IconFiles, picturesThatLookTheSameAreKeptOnce)
{
    SharedSurfaces surfaces;
    const auto make = [](int side, std::uint32_t argb) {
        auto surface = makeSquare(side);
        auto* data = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
        std::fill_n(data, side * side, argb);
        cairo_surface_mark_dirty(surface.get());
        return surface;
    };
    auto first = surfaces.share(make(16, kRed));
    const auto second = surfaces.share(make(16, kRed));
    EXPECT_EQ(second.get(), first.get());
    EXPECT_NE(surfaces.share(make(16, kBlue)).get(), first.get());
    EXPECT_NE(surfaces.share(make(8, kRed)).get(), first.get());
    first.reset();
    EXPECT_EQ(surfaces.share(make(16, kRed)).get(), second.get());
    EXPECT_EQ(cairo_surface_get_reference_count(second.get()), 1U);
    EXPECT_EQ(pixel(surfaces.share(make(16, kBlue)).get(), 8, 8), kBlue);
}

TEST_F(IconFiles, aThinLineOfALargePictureStaysWholeWhenItIsShrunk)
{
    auto picture = filled(1000, 1000, 0xFF000000);
    for (std::size_t y = 500; y < 520; ++y)
        std::fill_n(picture.argb.begin() + static_cast<std::ptrdiff_t>(y * 1000), 1000, 0xFFFFFFFF);
    const auto image = icons.fromPixels({std::move(picture)});

    auto* surface = rendered(image, 17);
    ASSERT_NE(surface, nullptr);
    for (int x = 0; x < 17; ++x) {
        std::uint32_t light = 0;
        for (int y = 0; y < 17; ++y)
            light += pixel(surface, x, y) & 0xFF;
        EXPECT_NEAR(light, 255 * 17 * 20 / 1000.0, 12) << "column " << x;
    }
}

TEST_F(IconFiles, windowPixelsHaveStraightAlpha)
{
    const auto half = icons.fromPixels({filled(16, 16, 0x80FF4000)});
    EXPECT_EQ(middle(half, 16), 0x80802000u);
    EXPECT_EQ(middle(icons.fromPixels({filled(16, 16, 0x00FFFFFF)}), 16), 0u);
}

}
}
