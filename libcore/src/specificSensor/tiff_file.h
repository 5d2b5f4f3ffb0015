// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace lumo {

/// An entry of a TIFF directory.
struct TiffEntry
{
    quint32 at = 0; ///< offset of the entry in the file, in bytes
    quint16 type = 0;
    quint32 count = 0;
};

/// One directory of a TIFF file.
struct TiffDirectory
{
    std::map<quint16, TiffEntry> entries; ///< by tag
    quint32 next = 0;                     ///< offset of the next one of the chain; 0: none

    [[nodiscard]] bool contains(quint16 tag) const { return entries.count(tag) != 0; }
};

/// Bytes [begin, end) of a file.
struct TiffRange
{
    quint64 begin = 0;
    quint64 end = 0;
    bool exclusive = false; ///< no other range may overlap this one
};

/// Checked access to the structure of a TIFF file in memory, in either byte order
/// (TIFF 6.0, section 2). Offsets count from the file's start.
class TiffFile
{
public:
    explicit TiffFile(const QByteArray& bytes)
        : m_bytes(bytes)
    {}

    /// To be called first. \param[out] directory  offset of the first directory
    [[nodiscard]] bool readHeader(quint32& directory, QString& error);

    /// Reads a directory. Checks that all entries lie within the file, with their
    /// values, and that no tag occurs twice.
    /// \param at  the directory's offset in the file
    /// \param[out] error  on failure why, else untouched
    [[nodiscard]] bool readDirectory(quint32 at, TiffDirectory& directory, QString& error);

    /// The numbers of an entry of directory type 3, 4 (uint16, uint32) or 13
    /// (offset); empty if there is no such entry.
    [[nodiscard]] std::vector<quint32> numbers(const TiffDirectory& directory, quint16 tag) const;

    /// The only number of an entry; nothing if there is not exactly one.
    [[nodiscard]] std::optional<quint32> number(const TiffDirectory& directory, quint16 tag) const;

    /// Replaces the numbers of an entry that `numbers` reads, by at most as many
    /// that the entry's type can hold.
    void setNumbers(const TiffEntry& entry, const std::vector<quint32>& values);

    /// The header, the directories read so far, and the values outside of them. All are
    /// exclusive except values that setNumbers cannot replace.
    [[nodiscard]] const std::vector<TiffRange>& used() const { return m_used; }

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }
    [[nodiscard]] QByteArray& bytes() { return m_bytes; }

private:
    [[nodiscard]] quint16 word(quint64 at) const;
    [[nodiscard]] quint32 longWord(quint64 at) const;
    /// Where the values of an entry begin.
    [[nodiscard]] quint64 valueOffset(const TiffEntry& entry) const;
    [[nodiscard]] bool inside(quint64 at, quint64 size) const;

    QByteArray m_bytes;
    bool m_bigEndian = false;
    std::vector<TiffRange> m_used;
};

} // namespace lumo
