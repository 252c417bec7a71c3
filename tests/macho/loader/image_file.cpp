#include "image_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "processor.h"

namespace macho {

namespace {

constexpr std::uint32_t kUniversalMagic = 0xCAFEBABE;  // big-endian, as all of its header
constexpr std::uint32_t kImageMagic = 0xFEEDFACF;
constexpr std::uint32_t kBundle = 8;

constexpr std::uint32_t kRequired = 0x80000000;
constexpr std::uint32_t kSegment64 = 0x19;
constexpr std::uint32_t kLoadDylib = 0xC;
constexpr std::uint32_t kLoadWeakDylib = 0x18 | kRequired;
constexpr std::uint32_t kDyldInfoOnly = 0x22 | kRequired;
constexpr std::uint32_t kChainedFixups = 0x34 | kRequired;

constexpr char kLibSystem[] = "/usr/lib/libSystem.B.dylib";

std::string fixedText(Cursor& fields) {
    char text[16];
    for (char& character : text) character = fields.read<char>();
    return {text, strnlen(text, sizeof text)};
}

std::uint32_t bigEndian(Cursor& fields) { return __builtin_bswap32(fields.read<std::uint32_t>()); }

}  // namespace

ImageFile::ImageFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw ImageError(path + " cannot be opened");
    m_file.assign(std::istreambuf_iterator<char>(file), {});
    chooseSlice();

    Cursor header(m_image);
    const auto magic = header.read<std::uint32_t>();
    const auto cpu = header.read<std::uint32_t>();
    header.skip(sizeof(std::uint32_t));
    const auto fileType = header.read<std::uint32_t>();
    const auto commands = header.read<std::uint32_t>();
    header.skip(3 * sizeof(std::uint32_t));
    if (magic != kImageMagic || cpu != kCpuType)
        throw ImageError(path + " is not an image for " + kCpuName);
    if (fileType != kBundle) throw ImageError(path + " is not a bundle");

    for (std::uint32_t i = 0; i < commands; ++i) {
        const std::size_t start = header.position();
        const auto command = header.read<std::uint32_t>();
        const auto size = header.read<std::uint32_t>();
        if (size < 8) throw ImageError("a load command has no size");
        readCommand(command, part(start, size));
        header = Cursor(m_image, start + size);
    }
    if (segments.empty()) throw ImageError(path + " has no segments");
    const auto first = std::min_element(segments.begin(), segments.end(),
                                        [](auto& a, auto& b) { return a.address < b.address; });
    lowest = first->address;
    for (const Segment& segment : segments)
        span = std::max(span, segment.address + segment.size - lowest);
}

void ImageFile::chooseSlice() {
    m_image = m_file;
    Cursor header(m_file);
    if (bigEndian(header) != kUniversalMagic) return;
    const std::uint32_t count = bigEndian(header);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t cpu = bigEndian(header);
        const std::uint32_t subtype = bigEndian(header) & 0xFFFFFF;
        const std::uint32_t offset = bigEndian(header);
        const std::uint32_t size = bigEndian(header);
        header.skip(sizeof(std::uint32_t));
        if (cpu != kCpuType || subtype == kForeignSubtype) continue;
        m_image = part(offset, size);
        return;
    }
    throw ImageError(std::string("there is no slice for ") + kCpuName);
}

void ImageFile::readCommand(std::uint32_t command, ByteSpan body) {
    Cursor fields(body, 8);
    if (command == kSegment64) readSegment(fields);
    if (command == kDyldInfoOnly) readLinkInfo(fields);
    if (command == kChainedFixups)
        throw ImageError("has chained fixups, which macOS 10.13 cannot read either");
    if (command == kLoadDylib || command == kLoadWeakDylib) {
        const std::string library = Cursor(body, fields.read<std::uint32_t>()).text();
        if (library != kLibSystem) throw ImageError("needs " + library);
    }
}

void ImageFile::readSegment(Cursor fields) {
    Segment segment;
    segment.name = fixedText(fields);
    segment.address = fields.read<std::uint64_t>();
    segment.size = fields.read<std::uint64_t>();
    segment.fileOffset = fields.read<std::uint64_t>();
    segment.fileSize = fields.read<std::uint64_t>();
    fields.skip(sizeof(std::uint32_t));
    segment.protection = fields.read<std::uint32_t>();
    const auto sectionCount = fields.read<std::uint32_t>();
    segment.flags = fields.read<std::uint32_t>();
    if (segment.address % kPageSize != 0 ||
        (segment.fileSize != 0 && segment.fileOffset % kPageSize != 0))
        throw ImageError("segment " + segment.name + " does not begin on a page");
    if (segment.fileSize > segment.size)
        throw ImageError("segment " + segment.name + " is smaller than its content");
    segments.push_back(segment);

    for (std::uint32_t i = 0; i < sectionCount; ++i) {
        Section section;
        section.name = fixedText(fields);
        fields.skip(16);
        section.address = fields.read<std::uint64_t>();
        section.size = fields.read<std::uint64_t>();
        fields.skip(4 * sizeof(std::uint32_t));
        section.flags = fields.read<std::uint32_t>();
        fields.skip(3 * sizeof(std::uint32_t));
        sections.push_back(section);
    }
}

void ImageFile::readLinkInfo(Cursor fields) {
    for (ByteSpan* piece : {&rebases, &binds, &weakBinds, &lazyBinds, &exportsTrie}) {
        const auto offset = fields.read<std::uint32_t>();
        const auto size = fields.read<std::uint32_t>();
        *piece = part(offset, size);
    }
}

ByteSpan ImageFile::part(std::uint64_t offset, std::uint64_t size) const {
    if (offset > m_image.size() || size > m_image.size() - offset)
        throw ImageError("the image is cut short");
    return m_image.subspan(offset, size);
}

const Section* ImageFile::section(const std::string& name) const {
    const auto found = std::find_if(sections.begin(), sections.end(),
                                    [&](const Section& each) { return each.name == name; });
    return found != sections.end() ? &*found : nullptr;
}

ByteSpan ImageFile::content(const Segment& segment) const {
    return part(segment.fileOffset, segment.fileSize);
}

}  // namespace macho
