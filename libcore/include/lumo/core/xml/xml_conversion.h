// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/xml/conversion_change.h"
#include "lumo/core/xml/extensible_factory.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QIODevice;

namespace lumo {

/// One step that converts an XML document of one format version to the next. The
/// factory makes it, the caller sets its files and runs it once. One thread at a
/// time.
class LUMO_CORE_EXPORT IXmlConversion
{
public:
    IXmlConversion();
    IXmlConversion(const IXmlConversion&);
    IXmlConversion& operator=(const IXmlConversion&);
    virtual ~IXmlConversion();

    /// Sets a schema; the step decides whether its input must satisfy this schema or
    /// whether it describes the result.
    virtual void setXsdFile(const QString& xsdFile) = 0;
    /// Sets the stylesheet that performs the step.
    virtual void setXslFile(const QString& xslFile) = 0;

    /// Reads the document from an open device, from its position to its end.
    /// \returns the converted document
    /// \throws std::runtime_error if the document cannot be converted
    [[nodiscard]] virtual QByteArray convert(QIODevice* input) = 0;

    /// Lists what the latest successful `convert` changed.
    /// \param input  the document that it read
    /// \returns none, unless the step knows its changes
    [[nodiscard]] virtual std::vector<ConversionChange> changesOf(const QByteArray& input) const;
};

extern template class LUMO_CORE_EXPORT ExtensibleFactory<IXmlConversion>;

/// Filled by registerXmlConverters().
template <>
LUMO_CORE_EXPORT ExtensibleFactory<IXmlConversion>& extensibleFactoryInstance<IXmlConversion>();

} // namespace lumo
