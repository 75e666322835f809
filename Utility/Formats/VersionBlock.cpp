// Reads the version block of a Windows program file (PE format) without Windows. The file may be
// damaged: each offset in it is checked before it is used.
// The numbers are the offsets of fields in the structures of the PE format.

#include <Utility/Formats/VersionBlock_p.h>

#include <QtCore/QIODevice>
#include <QtCore/QtEndian>

#include <initializer_list>

namespace Vorn::Util::Formats {

namespace {

class Bytes
{
public:
    explicit Bytes(QIODevice &device)
        : device_(device)
    {
    }

    bool contains(quint64 offset, quint64 length) const
    {
        const auto size = static_cast<quint64>(device_.size());
        return offset <= size && length <= size - offset;
    }

    // The number at \a offset; 0 after the end of the file.
    quint32 dword(quint64 offset) const { return number<quint32>(offset); }
    quint16 word(quint64 offset) const { return number<quint16>(offset); }

private:
    template <typename Number> Number number(quint64 offset) const
    {
        char bytes[sizeof(Number)] = {};
        const bool isRead = contains(offset, sizeof bytes)
            && device_.seek(static_cast<qint64>(offset))
            && device_.read(bytes, sizeof bytes) == sizeof bytes;
        return isRead ? qFromLittleEndian<Number>(bytes) : Number(0);
    }

    QIODevice &device_;
};

constexpr quint32 DirectoryFlag = 0x80000000u;

// The section table: it maps parts of the file to addresses in memory.
struct Sections
{
    quint64 table = 0;
    quint16 count = 0;
};

// The offset in the file of the memory address \a address; 0 if the address is in no section.
quint64 offsetOf(const Bytes &file, const Sections &sections, quint32 address)
{
    for (quint64 index = 0; index < sections.count; ++index) {
        const quint64 section = sections.table + index * 40;
        const quint32 start = file.dword(section + 12);
        const quint32 size = file.dword(section + 16);
        if (address >= start && address - start < size)
            return quint64(file.dword(section + 20)) + (address - start);
    }
    return 0;
}

// The offset of the resources, 0 if there are none. Also sets \a sections.
quint64 findResources(const Bytes &file, Sections &sections)
{
    constexpr quint32 PeSignature = 0x00004550;
    constexpr quint16 DosSignature = 0x5a4d;
    constexpr quint16 Plus = 0x20b; // PE32+, the 64-bit form of the optional header
    const quint64 header = file.dword(0x3c);
    if (file.word(0) != DosSignature || file.dword(header) != PeSignature)
        return 0;
    const quint64 optional = header + 24;
    const quint64 directories = optional + (file.word(optional) == Plus ? 112 : 96);
    constexpr quint64 ResourcesIndex = 2;
    if (file.dword(directories - 4) <= ResourcesIndex)
        return 0;
    sections = {optional + file.word(header + 20), file.word(header + 6)};
    const quint32 address = file.dword(directories + ResourcesIndex * 8);
    return address == 0 ? 0 : offsetOf(file, sections, address);
}

// The offset that the entry \a id of the resource directory \a directory contains, or its first
// entry if \a id is 0. Returns 0 if there is no such entry.
quint32 entryOf(const Bytes &file, quint64 resources, quint32 directory, quint32 id)
{
    const quint64 start = resources + directory;
    const quint32 count = quint32(file.word(start + 12)) + file.word(start + 14);
    for (quint64 index = 0; index < count && file.contains(start + 16 + index * 8, 8); ++index) {
        const quint64 entry = start + 16 + index * 8;
        if (id == 0 || file.dword(entry) == id)
            return file.dword(entry + 4);
    }
    return 0;
}

// The offset of the version block; 0 if there is none. The resources are a tree with three levels:
// kind, name and language.
quint64 findVersionBlock(const Bytes &file)
{
    constexpr quint32 VersionKind = 16;
    constexpr quint32 VersionName = 1;
    constexpr quint32 AnyLanguage = 0;
    Sections sections;
    const quint64 resources = findResources(file, sections);
    quint32 offset = resources == 0 ? 0 : entryOf(file, resources, 0, VersionKind);
    for (const quint32 id : {VersionName, AnyLanguage}) {
        if (!(offset & DirectoryFlag))
            return 0;
        offset = entryOf(file, resources, offset & ~DirectoryFlag, id);
    }
    if (offset == 0 || (offset & DirectoryFlag))
        return 0;
    return offsetOf(file, sections, file.dword(resources + offset));
}

} // namespace

ProgramVersion versionInProgram(QIODevice &program)
{
    constexpr quint32 FixedSignature = 0xfeef04bd;
    constexpr quint64 FixedAt = 40; // after the lengths, the name and the padding of the block
    const Bytes file(program);
    const quint64 block = findVersionBlock(file);
    if (block == 0 || !file.contains(block + FixedAt, 16)
        || file.dword(block + FixedAt) != FixedSignature)
        return ProgramVersion();
    return {file.dword(block + FixedAt + 8), file.dword(block + FixedAt + 12)};
}

} // namespace Vorn::Util::Formats
