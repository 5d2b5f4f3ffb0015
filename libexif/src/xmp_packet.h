// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

namespace lumo::exif {

/// The properties of an XMP packet by the name that stands in the file,
/// "<prefix>:<local name>": one text of a simple property, one per item of a
/// Seq, Bag or Alt. Fields of structures are left out. Of a property given
/// twice the first counts.
class XmpProperties
{
public:
    [[nodiscard]] bool empty() const { return m_values.isEmpty(); }
    [[nodiscard]] bool contains(const char* name) const;
    [[nodiscard]] QStringList values(const char* name) const;
    /// The first value, cleaned; empty if there is none.
    [[nodiscard]] QString text(const char* name) const;
    /// The names of the properties with this local name, whatever their prefix, in order.
    [[nodiscard]] QStringList namesOf(const QString& localName) const;
    void add(const QString& name, const QStringList& values);

private:
    QHash<QString, QStringList> m_values;
};

/// Reads the packet by prefix, with namespaces ignored: makers bind one prefix
/// to various addresses, and exiv2's own table of prefixes, shared by all files
/// of a process, would rename a prefix after another file's.
/// Refuses packets above 16 MiB, nesting deeper than 256 and document types.
/// \param[out] properties  replaced on success, untouched on failure
[[nodiscard]] bool parseXmpPacket(
    const QByteArray& packet, XmpProperties& properties, QString& error);

} // namespace lumo::exif
