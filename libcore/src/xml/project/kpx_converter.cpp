// SPDX-License-Identifier: Apache-2.0
// ParamConverter.
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/conversion_error.h"
#include "lumo/core/xml/param_converter.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "xml/project/kpx_steps.h"
#include "xml/steps/step_chain.h"

#include <algorithm>
#include <stdexcept>

namespace lumo {
namespace {

/// The parent folder of the backups of templates; empty if there are none.
QString& templatesDataLocation()
{
    static QString location;
    return location;
}

} // namespace

class LUMO_CORE_NO_EXPORT ParamConverter::Impl
{
public:
    QString inputFile;
    QString backupPath; ///< as set, for projects
    bool skipsBackup = false;
    kpx::FileVersion version;
    std::vector<kpx::Step> steps;
    bool isNewerVersion = false;
    StepListener listener;
    std::vector<ConversionStepReport> report;

    void tell(int done) const;
    void backUp() const;
    [[nodiscard]] QString backupFile() const;
    /// \param[out] reports  if not null, what each step did
    [[nodiscard]] bool convert(
        QByteArray& result, std::vector<ConversionStepReport>* reports, QString& error) const;
    [[nodiscard]] bool runSteps(
        QByteArray& document, std::vector<ConversionStepReport>* reports, QString& error) const;
    void logFailure(const QString& reason) const;
    [[nodiscard]] bool fail(const QString& reason, QString& error) const; ///< logs it
};

void ParamConverter::Impl::logFailure(const QString& reason) const
{
    log::important() << QStringLiteral("Failure converting kpx file [") + inputFile +
                            QStringLiteral("]. ") + reason;
}

bool ParamConverter::Impl::fail(const QString& reason, QString& error) const
{
    logFailure(reason);
    error = reason;
    return false;
}

void ParamConverter::Impl::tell(int done) const
{
    if (listener) {
        const int total = static_cast<int>(steps.size());
        listener(
            done, total, done < total ? steps[static_cast<std::size_t>(done)].label : QString());
    }
}

QString ParamConverter::Impl::backupFile() const
{
    if (version.isTemplate) {
        if (templatesDataLocation().isEmpty() || steps.empty()) {
            return {};
        }
        return templatesDataLocation() +
               (steps.front().legacy ? QStringLiteral("/templates_backups20/")
                                     : QStringLiteral("/templates_backups21/")) +
               file::filename(inputFile);
    }
    if (backupPath != QLatin1String("auto")) {
        return backupPath;
    }
    const int extensionLength = std::min(4, file::filename(inputFile).size()); // ".kpx"
    // The version comes from the file: separators in it must not lead to another folder.
    QString project = version.project;
    project.replace(QLatin1Char('/'), QLatin1Char('_'))
        .replace(QLatin1Char('\\'), QLatin1Char('_'));
    return inputFile.chopped(extensionLength) + QStringLiteral("_backup_") + project +
           QStringLiteral(".kpx");
}

void ParamConverter::Impl::backUp() const
{
    const QString path = backupFile();
    if (version.isTemplate && (path.isEmpty() || !file::mkdir(file::dirname(path)))) {
        log::warning() << "Template backup cannot be created";
        return;
    }
    if (path.isEmpty()) {
        return;
    }
    if (!version.isTemplate) {
        log::info() << "Creating backup of the kpx file in:" << path;
    }
    QString error;
    // An existing backup is from before an earlier conversion, so it is worth more.
    if (!file::exists(path) && !file::copy(inputFile, path, error)) {
        log::important() << error;
    }
}

bool ParamConverter::Impl::runSteps(
    QByteArray& document, std::vector<ConversionStepReport>* reports, QString& error) const
{
    std::vector<xml::ChainStep> chain;
    for (const kpx::Step& step : steps) {
        chain.push_back({step.label, [&step, this](QString& reason) {
                             return kpx::createConversion(step, version.isTemplate, reason);
                         }});
    }
    xml::ChainListener chainListener;
    chainListener.starting = [this](std::size_t index) { tell(static_cast<int>(index)); };
    if (reports != nullptr) {
        chainListener.finished = [&](std::size_t index, std::vector<ConversionChange>&& changes) {
            reports->push_back({steps[index].label, std::move(changes)});
        };
    }
    try {
        if (!xml::runChain(chain, chainListener, document, error)) {
            log::important() << error;
            log::important() << "Could not create kpx converter with invalid type";
            return false;
        }
    } catch (const std::runtime_error& fault) {
        logFailure(QString::fromUtf8(fault.what())); // more is in the log already
        error = faultText(fault);
        return false;
    }
    return true;
}

bool ParamConverter::Impl::convert(
    QByteArray& result, std::vector<ConversionStepReport>* reports, QString& error) const
{
    QByteArray document;
    QString reason;
    if (!xml::readFile(inputFile, document, reason)) {
        return fail(reason, error);
    }
    if (!runSteps(document, reports, error)) {
        return false;
    }
    // The result may replace the user's only copy, so the program reads it once more.
    if (!xml::checkXml(document, reason)) {
        return fail(QStringLiteral("the result is not XML: ") + reason, error);
    }
    tell(static_cast<int>(steps.size()));
    result = std::move(document);
    return true;
}

ParamConverter::ParamConverter(const QString& file, int targetVersion)
    : m_impl(std::make_unique<Impl>())
{
    if (!file::exists(file)) {
        throw std::runtime_error("XML file does not exist: " + file.toStdString());
    }
    QByteArray bytes;
    QString reason;
    if (!xml::readFile(file, bytes, reason) || !xml::checkXml(bytes, reason)) {
        log::warning() << reason;
        throw ConversionError("Could not read XML from input file", reason);
    }
    m_impl->inputFile = file;
    m_impl->version = kpx::readVersion(bytes);
    m_impl->isNewerVersion = m_impl->version.format > targetVersion;
    m_impl->steps = kpx::planSteps(m_impl->version, targetVersion);
}

ParamConverter::~ParamConverter() = default;

bool ParamConverter::needsConversion() const
{
    return !m_impl->steps.empty();
}

bool ParamConverter::biggerVersion() const
{
    return m_impl->isNewerVersion;
}

const QString& ParamConverter::getProjectVersion() const
{
    return m_impl->version.project;
}

int ParamConverter::kpxVersion() const
{
    return m_impl->version.format;
}

bool ParamConverter::isTemplate() const
{
    return m_impl->version.isTemplate;
}

QStringList ParamConverter::plannedSteps() const
{
    QStringList labels;
    for (const kpx::Step& step : m_impl->steps) {
        labels << step.label;
    }
    return labels;
}

void ParamConverter::setKpxBackupPath(const QString& path)
{
    m_impl->backupPath = path;
}

void ParamConverter::setTemplatesDataLocation(const QString& dir)
{
    templatesDataLocation() = dir;
}

QString ParamConverter::backupPath() const
{
    return m_impl->backupFile();
}

void ParamConverter::skipBackup()
{
    m_impl->skipsBackup = true;
}

void ParamConverter::setStepListener(StepListener listener)
{
    m_impl->listener = std::move(listener);
}

bool ParamConverter::convert(const QString& outputFile, QString& error)
{
    if (m_impl->steps.empty()) {
        error = QStringLiteral("there is nothing to convert");
        return false;
    }
    if (!m_impl->skipsBackup) {
        m_impl->backUp();
    }
    QByteArray result;
    if (!m_impl->convert(result, nullptr, error)) {
        return false;
    }
    QString reason;
    if (!file::replaceAtomically(outputFile, result, reason)) {
        log::important() << "Failure opening converter output file" << outputFile;
        log::important() << reason;
        error = reason;
        return false;
    }
    m_impl->steps.clear();
    return true;
}

bool ParamConverter::convert(const QString& outputFile)
{
    QString error;
    return convert(outputFile, error);
}

bool ParamConverter::convertInMemory(QByteArray& result, QString& error)
{
    if (m_impl->steps.empty()) {
        error = QStringLiteral("there is nothing to convert");
        return false;
    }
    std::vector<ConversionStepReport> reports;
    if (!m_impl->convert(result, &reports, error)) {
        return false;
    }
    m_impl->report = std::move(reports);
    return true;
}

const std::vector<ConversionStepReport>& ParamConverter::report() const
{
    return m_impl->report;
}

} // namespace lumo
