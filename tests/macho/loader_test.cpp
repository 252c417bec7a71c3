#include "loader/macho_image.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "loader/processor.h"
#include "loader/unbound_trap.h"

namespace {

using macho::ImageError;
using macho::MachoImage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Loader, GivesTheModulesThreeFunctions) {
    const MachoImage image(ZERVA_BUNDLE_MODULE);
    EXPECT_THAT(image.exports(), ElementsAre("NP_GetEntryPoints", "NP_Initialize", "NP_Shutdown"));
    EXPECT_NE(image.symbol("NP_Initialize"), nullptr);
    EXPECT_EQ(image.symbol("NP_Init"), nullptr);
}

TEST(Loader, HasAStandInForEverythingThatTheModuleImports) {
    const MachoImage image(ZERVA_BUNDLE_MODULE);
    EXPECT_GT(image.imports().size(), 50U);
    EXPECT_THAT(image.unbound(), IsEmpty());
}

TEST(Loader, MakesExceptionsPassThroughTheModulesFunctions) {
    EXPECT_GT(MachoImage(ZERVA_BUNDLE_MODULE).unwindableFunctions(), 100U);
}

TEST(Loader, LoadsAnImageAgainAndAgain) {
    for (int i = 0; i < 50; ++i) MachoImage image(ZERVA_BUNDLE_MODULE);
}

// A file of bytes, gone with the object.
class ScratchFile {
  public:
    explicit ScratchFile(const std::string& bytes)
        : m_path(std::filesystem::temp_directory_path() / ("image-" + std::to_string(getpid()))) {
        std::ofstream(m_path, std::ios::binary) << bytes;
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { std::filesystem::remove(m_path); }
    std::string path() const { return m_path.string(); }

  private:
    std::filesystem::path m_path;
};

std::string moduleBytes() {
    std::ifstream file(ZERVA_BUNDLE_MODULE, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uint32_t bigEndianAt(const std::string& bytes, std::size_t offset) {
    return __builtin_bswap32(macho::load<std::uint32_t>(bytes.data() + offset));
}

// The image for this processor alone.
std::string sliceBytes() {
    const std::string bytes = moduleBytes();
    std::size_t head = 8;
    while (bigEndianAt(bytes, head) != macho::kCpuType) head += 20;
    return bytes.substr(bigEndianAt(bytes, head + 8), bigEndianAt(bytes, head + 12));
}

std::string refusal(const std::string& bytes) {
    const ScratchFile file(bytes);
    try {
        MachoImage image(file.path());
    } catch (const ImageError& error) {
        return error.what();
    }
    return "";
}

TEST(Loader, TakesAnImageForThisProcessorAlone) { EXPECT_EQ(refusal(sliceBytes()), ""); }

TEST(Loader, RefusesAFileThatIsNotThere) {
    EXPECT_THROW(MachoImage("/nowhere/module"), ImageError);
}

TEST(Loader, RefusesWhatIsNoImage) {
    for (const char* bytes : {"", "abc", "#!/bin/sh\nexit 0\n# and then some more text here\n"})
        EXPECT_NE(refusal(bytes), "") << bytes;
}

TEST(Loader, RefusesAFileCutShortAnywhere) {
    const std::string bytes = sliceBytes();
    for (std::size_t size = 1; size < bytes.size(); size += bytes.size() / 97)
        EXPECT_NE(refusal(bytes.substr(0, size)), "") << size;
    EXPECT_NE(refusal(bytes.substr(0, bytes.size() / 2)), "");
}

TEST(Loader, RefusesAUniversalFileWithoutASliceForThisProcessor) {
    std::string bytes = moduleBytes();
    for (std::size_t head : {8U, 28U}) bytes[head + 3] = '\x12';
    EXPECT_THAT(refusal(bytes), HasSubstr("there is no slice for"));
}

TEST(Loader, RefusesAnotherFileType) {
    std::string bytes = sliceBytes();
    bytes[12] = 6;
    EXPECT_THAT(refusal(bytes), HasSubstr("is not a bundle"));
}

TEST(Loader, RefusesAnotherLibrary) {
    std::string bytes = sliceBytes();
    const std::string library = "/usr/lib/libSystem.B.dylib";
    bytes.replace(bytes.find(library), library.size(), "/usr/lib/libOther.B.dylib\0", 26);
    EXPECT_THAT(refusal(bytes), HasSubstr("needs /usr/lib/libOther.B.dylib"));
}

TEST(Loader, NamesAnImportThatHasNoStandIn) {
    std::string bytes = sliceBytes();
    bytes.replace(bytes.find("_getpgid"), 8, "_getpgix");  // in the lazy binding information
    const ScratchFile file(bytes);
    EXPECT_THAT(MachoImage(file.path()).unbound(), ElementsAre("_getpgix"));
}

TEST(Loader, EndsTheProcessWhenSuchAnImportIsCalled) {
    const auto call = reinterpret_cast<void (*)()>(macho::makeUnboundTrap("_getpgix"));
    EXPECT_DEATH(call(), "the image calls _getpgix, which has no stand-in");
}

}  // namespace
