#include "Hosts/Linux/Applications/IconFile.h"

#include "Hosts/Linux/FileReading.h"
#include "Hosts/Linux/Pictures/PictureDrawing.h"

namespace quorvel::xdg {

bool isVectorFileName(std::string_view name)
{
    return name.ends_with(".svg");
}

bool isIconFileName(std::string_view name)
{
    return name.ends_with(".png") || isVectorFileName(name);
}

bool isIconFile(const std::string& path)
{
    const auto start = readStart(path, kFormatBytes);
    return start && formatOf(path, *start);
}

}
