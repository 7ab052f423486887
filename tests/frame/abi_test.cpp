// The binary interface of both libraries as they are shipped. Linked to the shared libraries alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <type_traits>

#include "frame/c_view.h"
#include "support/elf_file.h"

namespace {

using support::ElfFile;

const std::set<std::string> exportList = {
#define VEK_EXPORT(name) #name,
#include "frame/exports.def"
#undef VEK_EXPORT
};

bool needsOpenMp(const ElfFile& file)
{
    return std::any_of(file.needed().begin(), file.needed().end(), [](const std::string& name) {
        return name.starts_with("libgomp.so.") || name.starts_with("libomp.so.");
    });
}

TEST(AbiOfTheLibrary, ExportsTheListAndNothingElse)
{
    const ElfFile file(VEK_LIBRARY_FILE);
    EXPECT_EQ(exportList, file.functions());
    EXPECT_EQ(std::set<std::string>{}, file.otherSymbols());
}

// Every prototype that begins with VEK_API in a public header.
std::set<std::string> declaredFunctions()
{
    std::set<std::string> names;
    const std::regex prototype("\nVEK_API [^;(]*?(\\w+)\\(");
    for (const auto& entry : std::filesystem::directory_iterator(VEK_HEADERS)) {
        std::ifstream file(entry.path());
        const std::string text(std::istreambuf_iterator<char>(file), {});
        for (std::sregex_iterator match(text.begin(), text.end(), prototype), end; match != end; ++match)
            names.insert((*match)[1]);
    }
    return names;
}

TEST(AbiOfTheLibrary, ExportsEveryDeclaredFunction) { EXPECT_EQ(exportList, declaredFunctions()); }

TEST(AbiOfTheLibrary, Soname) { EXPECT_EQ("libvekjq3.so.7.1", ElfFile(VEK_LIBRARY_FILE).soname()); }

TEST(AbiOfTheLibrary, NeedsTheCoreServicesOpenMpAndTheSystemLibraries)
{
    const ElfFile file(VEK_LIBRARY_FILE);
    EXPECT_TRUE(file.needed().contains("libvekcore.so.7.1"));
    EXPECT_TRUE(file.needed().contains("libc.so.6"));
    EXPECT_TRUE(file.needed().contains("libm.so.6"));
    EXPECT_TRUE(needsOpenMp(file));
}

TEST(AbiOfTheCoreServices, ExportsItsSixFunctionsAndNothingElse)
{
    const ElfFile file(VEK_CORE_FILE);
    const std::set<std::string> six = {"vekGetCpuFeatures", "vekGetEnabledCpuFeatures", "vekMalloc",
                                       "vekFree",           "vekGetMaxCacheSizeB",      "ownGetNumThreads"};
    EXPECT_EQ(six, file.functions());
    EXPECT_EQ(std::set<std::string>{}, file.otherSymbols());
}

TEST(AbiOfTheCoreServices, SonameAndOpenMp)
{
    const ElfFile file(VEK_CORE_FILE);
    EXPECT_EQ("libvekcore.so.7.1", file.soname());
    EXPECT_TRUE(needsOpenMp(file));
}

TEST(AbiOfTypes, SizeIsTwo32BitIntegers)
{
    EXPECT_EQ(8u, sizeof(VekSize));
    EXPECT_EQ(0u, offsetof(VekSize, width));
    EXPECT_EQ(4u, offsetof(VekSize, height));
    EXPECT_EQ(4u, sizeof(VekStatus));
}

TEST(AbiOfTypes, VersionRecord)
{
    EXPECT_EQ(48u, sizeof(VekLibVersion));
    EXPECT_EQ(0u, offsetof(VekLibVersion, versionMajor));
    EXPECT_EQ(4u, offsetof(VekLibVersion, versionMinor));
    EXPECT_EQ(8u, offsetof(VekLibVersion, buildMajor));
    EXPECT_EQ(12u, offsetof(VekLibVersion, buildNumber));
    EXPECT_EQ(16u, offsetof(VekLibVersion, tierTag));
    EXPECT_EQ(24u, offsetof(VekLibVersion, libraryName));
    EXPECT_EQ(32u, offsetof(VekLibVersion, versionText));
    EXPECT_EQ(40u, offsetof(VekLibVersion, buildDateText));
}

TEST(AbiOfTypes, RectanglesAreFourNumbersOf32Bits)
{
    const CView view = cView();
    EXPECT_EQ(16u, sizeof(VekRect));
    EXPECT_EQ(16u, view.sizeofVekRect);
    const size_t offsets[] = {offsetof(VekRect, x), offsetof(VekRect, y), offsetof(VekRect, width),
                              offsetof(VekRect, height)};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(4 * i, offsets[i]);
        EXPECT_EQ(4 * i, view.offsetsInVekRect[i]);
    }
    static_assert(std::is_same_v<decltype(VekRect::x), int32_t> && std::is_same_v<decltype(VekRect::y), int32_t> &&
                  std::is_same_v<decltype(VekRect::width), int32_t> &&
                  std::is_same_v<decltype(VekRect::height), int32_t>);
}

TEST(AbiOfTypes, AreTheSameInC99)
{
    const CView view = cView();
    EXPECT_EQ(sizeof(VekStatus), view.sizeofVekStatus);
    EXPECT_EQ(sizeof(VekSize), view.sizeofVekSize);
    EXPECT_EQ(offsetof(VekSize, width), view.offsetofWidth);
    EXPECT_EQ(offsetof(VekSize, height), view.offsetofHeight);
    EXPECT_EQ(sizeof(VekLibVersion), view.sizeofVekLibVersion);
    EXPECT_EQ(offsetof(VekLibVersion, versionMinor), view.offsetofVersionMinor);
    EXPECT_EQ(offsetof(VekLibVersion, tierTag), view.offsetofTierTag);
    EXPECT_EQ(offsetof(VekLibVersion, libraryName), view.offsetofLibraryName);
    EXPECT_EQ(offsetof(VekLibVersion, versionText), view.offsetofVersionText);
    EXPECT_EQ(offsetof(VekLibVersion, buildDateText), view.offsetofBuildDateText);
}

TEST(AbiOfTypes, StatusCodes)
{
    const int expected[] = {0, 6, 35, -2, -5, -6, -7, -8, -9, -14, -17, -62, -63, -64, -112, -113, -124, -180, -9999};
    const CView view = cView();
    EXPECT_TRUE(
        std::equal(std::begin(expected), std::end(expected), std::begin(view.everyStatus), std::end(view.everyStatus)));
}

TEST(AbiOfTypes, SizesOfOpaqueRecords)
{
    int size = 0;
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanSpecGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(1644, size);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanSpecGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(1024, size);
    EXPECT_EQ(vekStsOk, vekiEncodeHuffmanStateGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(1048, size);
    EXPECT_EQ(vekStsOk, vekiDecodeHuffmanStateGetBufSize_JPEG_8u(&size));
    EXPECT_EQ(24, size);
}

TEST(AbiOfFunctions, HaveCLinkage) { EXPECT_EQ(vekjGetLibVersion(), versionAskedFromC()); }

}  // namespace
