// SPDX-License-Identifier: Apache-2.0
#include "xml/project/kpx_steps.h"

#include "lumo/foundation/file.h"
#include "lumo/foundation/system.h"
#include "lumo/foundation/text.h"
#include "xml/validation/schema_versions.h"

#include <stdexcept>

namespace lumo::kpx {
namespace {

/// All placeholders are replaced at once: a folder may have "%2" in its name.
QString installed(const char* pattern, int version, bool isTemplate)
{
    return QString::fromLatin1(pattern).arg(
        system::applicationDirectory(), QString::number(version),
        isTemplate ? QStringLiteral("template") : QStringLiteral("lumo"));
}

QString stylesheetPath(int version, bool isTemplate)
{
    return installed("%1/resources/xsl/%2/%3.xsl", version, isTemplate);
}

QString schemaPath(int version, bool isTemplate)
{
    return installed("%1/resources/xsd/%2/%3.xsd", version, isTemplate);
}

QString labelOf(int from)
{
    const QString label = QStringLiteral("XSLT conversion from version %1 to %2");
    if (from != kDevelopmentVersion) {
        return label.arg(from).arg(from + 1);
    }
    const std::vector<int> versions = xml::schemaVersions();
    return label.arg(versions.size() < 2 ? 0 : versions[versions.size() - 2]).arg(from);
}

} // namespace

std::vector<Step> planSteps(const FileVersion& version, int targetVersion)
{
    std::vector<Step> steps;
    if (text::versionSmallerThan(version.project, QStringLiteral("2.1"))) {
        steps.push_back({true, 0, QStringLiteral("old version (<= 2.0) -> 2.1")});
    } else if (
        text::versionGreaterThan(version.project, QStringLiteral("2.1.1")) &&
        text::versionSmallerThan(version.project, QStringLiteral("2.1.43"))) {
        throw std::runtime_error("Project generated with 2.1 beta version.");
    }
    if (version.format > targetVersion) {
        return {};
    }
    for (int from = version.format; from < targetVersion; ++from) {
        steps.push_back({false, from, labelOf(from)});
    }
    // Released programs do not install this folder.
    if (file::exists(schemaPath(kDevelopmentVersion, false))) {
        steps.push_back({false, kDevelopmentVersion, labelOf(kDevelopmentVersion)});
    }
    return steps;
}

std::unique_ptr<IXmlConversion> createConversion(const Step& step, bool isTemplate, QString& reason)
{
    const auto& factory = extensibleFactoryInstance<IXmlConversion>();
    if (step.legacy) {
        return factory.create(isTemplate ? "Tmpl20_21" : "Kpx20_21");
    }
    int schema = step.from;
    if (step.from == kDevelopmentVersion) {
        const std::vector<int> versions = xml::schemaVersions();
        if (versions.size() < 2) {
            reason = QStringLiteral("Folders in $AppDir/resources/xsd have been removed.");
            return nullptr;
        }
        schema = versions[versions.size() - 2];
    }
    auto conversion = factory.create("Xslt");
    conversion->setXsdFile(schemaPath(schema, isTemplate));
    conversion->setXslFile(stylesheetPath(step.from, isTemplate));
    return conversion;
}

} // namespace lumo::kpx
