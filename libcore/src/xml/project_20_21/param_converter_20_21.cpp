// SPDX-License-Identifier: Apache-2.0
// KpxConversion20_21.
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/kpx_conversion_20_21.h"
#include "lumo/foundation/log.h"
#include "xml/project_20_21/old_project_document.h"

#include <QBuffer>

#include <stdexcept>

namespace lumo {
namespace {

using Mode = KpxConversion20_21::Mode;

void requireRoot(const QByteArray& bytes, Mode mode)
{
    QBuffer device;
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    reader.setNamespaceProcessing(false);
    if (reader.readNext() != QXmlStreamReader::StartDocument) {
        throw std::runtime_error("Start of document not found");
    }
    QString reason;
    if (!xml::checkXml(bytes, reason)) {
        throw std::runtime_error(reason.toStdString());
    }
    const QLatin1String root(mode == Mode::Project ? "lumoair" : "lumotmpl");
    if (!reader.readNextStartElement() || reader.qualifiedName() != root) {
        throw std::runtime_error("Initial tag not expected");
    }
}

void logDropped(const std::vector<ConversionChange>& changes)
{
    for (const ConversionChange& change : changes) {
        if (change.kind == ConversionChange::Kind::Dropped) {
            log::warning() << QStringLiteral("%1 is dropped: %2 (line %3, %4 times)")
                                  .arg(
                                      change.what, change.into, QString::number(change.line),
                                      QString::number(change.count));
        }
    }
}

} // namespace

class KpxConversion20_21::Pimpl
{
public:
    Mode mode;
    std::vector<ConversionChange> changes = {};
};

KpxConversion20_21::KpxConversion20_21(Mode mode)
    : m_pimpl(std::make_unique<Pimpl>(Pimpl{mode}))
{}

KpxConversion20_21::~KpxConversion20_21() = default;

void KpxConversion20_21::setXsdFile(const QString& /*xsdFile*/) {}

void KpxConversion20_21::setXslFile(const QString& /*xslFile*/) {}

QByteArray KpxConversion20_21::convert(QIODevice* input)
{
    m_pimpl->changes.clear();
    const QByteArray bytes = input != nullptr ? input->readAll() : QByteArray();
    requireRoot(bytes, m_pimpl->mode);
    kpx::OldDocument document(bytes, m_pimpl->mode);
    QByteArray result = document.write();
    m_pimpl->changes = document.changes().list();
    logDropped(m_pimpl->changes);
    return result;
}

const std::vector<ConversionChange>& KpxConversion20_21::changes() const
{
    return m_pimpl->changes;
}

std::vector<ConversionChange> KpxConversion20_21::changesOf(const QByteArray& /*input*/) const
{
    return m_pimpl->changes;
}

} // namespace lumo
