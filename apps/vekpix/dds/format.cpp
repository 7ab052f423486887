#include "dds/format.h"

#include <array>
#include <utility>

#include "error.h"

namespace vekpix::dds {

namespace {

constexpr std::array<std::pair<Format, const char*>, 9> names = {{
    {Format::Bc1, "bc1"},
    {Format::Bc2, "bc2"},
    {Format::Bc3, "bc3"},
    {Format::Bc4, "bc4"},
    {Format::Bc5, "bc5"},
    {Format::Bc6hUnsigned, "bc6h"},
    {Format::Bc6hSigned, "bc6h-signed"},
    {Format::Bc7, "bc7"},
    {Format::YCoCgBc3, "ycocg-bc3"},
}};

}  // namespace

std::string nameOf(Format format)
{
    for (const auto& [each, name] : names)
        if (each == format)
            return name;
    throw Error("unknown texture format");
}

Format formatNamed(const std::string& name)
{
    for (const auto& [each, known] : names)
        if (known == name)
            return each;
    throw Error("unknown texture format " + name);
}

}  // namespace vekpix::dds
