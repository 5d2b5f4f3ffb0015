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

/// One step that turns an XML document of one format version into the next:
/// made by the factory, told its files, run once. Used by one thread.
class LUMO_CORE_EXPORT IXmlConversion
{
public:
    IXmlConversion();
    IXmlConversion(const IXmlConversion&);
    IXmlConversion& operator=(const IXmlConversion&);
    virtual ~IXmlConversion();

    /// The schema that the input must satisfy, or that belongs to the result.
    virtual void setXsdFile(const QString& xsdFile) = 0;
    /// The stylesheet that performs the step.
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
