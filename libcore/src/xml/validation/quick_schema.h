// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <memory>

namespace lumo::xml {

/// Tells of most valid documents that they are valid, in a hundredth of the
/// time that QXmlSchemaValidator takes for it (about 1 ms for each camera of a
/// database). It says neither what is wrong nor where: what it does not accept
/// is left to the slower validator to judge.
///
/// Const calls may run in parallel.
class QuickSchema
{
public:
    QuickSchema(); ///< accepts nothing
    QuickSchema(QuickSchema&& other) noexcept;
    QuickSchema& operator=(QuickSchema&& other) noexcept;
    ~QuickSchema();

    /// Compiles a schema. One that pulls in others accepts nothing: they would
    /// be loaded from anywhere.
    /// \param schema  must have passed xml::checkXml
    explicit QuickSchema(const QByteArray& schema);

    /// \param document  must have passed xml::checkXml. Only documents in UTF-8
    ///     are looked at, without document type, that name no schemas.
    [[nodiscard]] bool accepts(const QByteArray& document) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace lumo::xml
