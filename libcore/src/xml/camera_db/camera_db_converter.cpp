// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/camera_db_converter.h"

#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/conversion_error.h"
#include "lumo/core/xml/xml_conversion.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "xml/camera/camera_db_version.h"
#include "xml/steps/step_chain.h"

#include <QDomDocument>

#include <array>
#include <stdexcept>
#include <vector>

namespace lumo {
namespace {

/// One step of the chain. File names are below the application directory.
struct Step
{
    std::size_t below; ///< needed for documents of a version below this one
    const char* label;
    const char* key;
    const char* xsdFile;
    const char* xslFile;
};

constexpr std::array<Step, 3> kSteps{{
    {17, "old versions (<= 16) -> 17", "CamDB16_17", "", ""},
    {18, "17 -> 18", "Xslt", "/resources/xsd/camDB_2_1.xsd", "/resources/xsl/camdb_17_18.xsl"},
    {19, "18 -> 19", "Xslt", "/resources/xsd/camDB_2_2.xsd", "/resources/xsl/camdb_18_19.xsl"},
}};

QString installed(const char* name)
{
    return *name == '\0' ? QString() : system::applicationDirectory() + QLatin1String(name);
}

/// \throws std::runtime_error if no step of this key is registered
std::unique_ptr<IXmlConversion> create(const Step& step)
{
    auto conversion = extensibleFactoryInstance<IXmlConversion>().create(step.key);
    conversion->setXsdFile(installed(step.xsdFile));
    conversion->setXslFile(installed(step.xslFile));
    return conversion;
}

} // namespace

class LUMO_CORE_NO_EXPORT CameraDbConverter::Impl
{
public:
    QString inputFile;
    std::size_t version = 0;
    std::vector<xml::ChainStep> steps; ///< still to be done, first to last

    void plan();
    void readVersion();
    /// \throws std::runtime_error with `outputFile` untouched
    void convert(const QString& outputFile);
};

void CameraDbConverter::Impl::readVersion()
{
    QDomDocument document;
    QByteArray content;
    QString reason;
    if (!file::read(inputFile, xml::kMaxFileBytes, content, reason) ||
        !xml::domFromBytes(content, document, reason)) {
        log::warning() << inputFile + QStringLiteral(": ") + reason;
        throw ConversionError("CameraDbConverter - Could not read XML from input file", reason);
    }
    const QDomElement root = document.firstChildElement(QStringLiteral("cameraModelDB"));
    if (root.isNull()) {
        throw std::runtime_error("CameraDbConverter - Invalid first line in XML file");
    }
    version = cameraDbVersion(root);
}

void CameraDbConverter::Impl::plan()
{
    for (const Step& step : kSteps) {
        if (version < step.below) {
            steps.push_back({step.label, [&step](QString&) { return create(step); }});
        }
    }
}

void CameraDbConverter::Impl::convert(const QString& outputFile)
{
    QByteArray document;
    QString error;
    if (!xml::readFile(inputFile, document, error) || !xml::runChain(steps, {}, document, error)) {
        throw std::runtime_error(error.toStdString());
    }
    if (!file::replaceAtomically(outputFile, document, error)) {
        throw std::runtime_error(error.toStdString());
    }
    steps.clear();
}

CameraDbConverter::CameraDbConverter(const QString& inputFile)
    : m_impl(std::make_unique<Impl>())
{
    m_impl->inputFile = inputFile;
    m_impl->readVersion();
    m_impl->plan();
}

CameraDbConverter::~CameraDbConverter() = default;

bool CameraDbConverter::needsConvertion() const
{
    return !m_impl->steps.empty();
}

bool CameraDbConverter::convert(const QString& outputFile)
{
    if (!needsConvertion()) {
        return false;
    }
    try {
        m_impl->convert(outputFile);
    } catch (const std::runtime_error& fault) {
        log::important() << QStringLiteral("Failure converting kpx file [") + m_impl->inputFile +
                                QStringLiteral("] to [") + outputFile + QStringLiteral("]. ") +
                                QString::fromUtf8(fault.what());
        return false;
    }
    return true;
}

bool CameraDbConverter::convert(const QString& outputFile, QString& error)
{
    if (!needsConvertion()) {
        error = QStringLiteral("is of the current version or newer");
        return false;
    }
    try {
        m_impl->convert(outputFile);
    } catch (const std::runtime_error& fault) {
        error = faultText(fault);
        return false;
    }
    return true;
}

} // namespace lumo
