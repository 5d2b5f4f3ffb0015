// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/xml/conversion_change.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace lumo {

namespace kpx {

/// The newest format version of projects and templates: a target for ParamConverter.
inline constexpr int kCurrentVersion = 3;

} // namespace kpx

/// What one step of a chain did.
struct ConversionStepReport
{
    QString label; ///< as in ParamConverter::plannedSteps
    std::vector<ConversionChange> changes;
};

/// Brings a project file or a processing template of an older format version up
/// to the current one: files up to product version 2.0 by the hand-written step,
/// then one stylesheet for each format version.
///
/// Needs registerXmlConverters(), and below the application directory the folders
/// "resources/xsd" and "resources/xsl". One thread at a time.
class LUMO_CORE_EXPORT ParamConverter
{
public:
    /// Called before each step with the number of steps done, of all steps and the
    /// label of the step; and after the last with `done` equal to `total` and no
    /// label. An exception from it ends the conversion and reaches the caller.
    using StepListener = std::function<void(int done, int total, const QString& label)>;

    /// Reads the versions of a file and plans the steps.
    /// \param targetVersion  the format version of the calling application, from 0
    /// \throws std::runtime_error "XML file does not exist: " with the path,
    ///     "Could not read XML from input file" (a ConversionError; the reason is
    ///     logged as a warning, too),
    ///     "Invalid first line in XML file", "Invalid first tag in kpx/tmpl file",
    ///     "template version tag not found", or "Project generated with 2.1 beta
    ///     version." for product versions between 2.1.1 and 2.1.43
    ParamConverter(const QString& file, int targetVersion);
    ParamConverter(const ParamConverter&) = delete;
    ParamConverter& operator=(const ParamConverter&) = delete;
    ~ParamConverter();

    /// Whether a step is left to be done.
    [[nodiscard]] bool needsConversion() const;
    /// Whether the file is of a newer format version than the target; nothing is
    /// planned for it then, and the caller decides whether to refuse it.
    [[nodiscard]] bool biggerVersion() const;
    /// Of the product that wrote the file, such as "2.1.43".
    [[nodiscard]] const QString& getProjectVersion() const;
    /// The file's format version; 0 for all files that say none.
    [[nodiscard]] int kpxVersion() const;
    [[nodiscard]] bool isTemplate() const;
    /// What is left to be done, first to last, a text for people each. These are
    /// also the texts that are logged when a step begins.
    [[nodiscard]] QStringList plannedSteps() const;

    /// For project files only: where `convert` puts the backup. "auto": beside
    /// the file, "site.kpx" of version 2.0 as "site_backup_2.0.kpx"; empty, as at
    /// first: there is none.
    void setKpxBackupPath(const QString& path);
    /// The folder in which "templates_backups20" and "templates_backups21" hold
    /// the backups of templates, of all converters of the process. To be called
    /// before threads start. Without it templates have no backup, which `convert`
    /// says in a warning.
    static void setTemplatesDataLocation(const QString& dir);
    /// Where `convert` puts the backup, by the two settings above; empty if nowhere.
    [[nodiscard]] QString backupPath() const;
    /// `convert` makes no backup, whatever the settings, and says nothing of one: for
    /// applications that make it themselves, or were told to do without.
    void skipBackup();

    void setStepListener(StepListener listener);

    /// Copies the file to backupPath(), unless something is there already or the
    /// backup is to be skipped; runs the steps in memory; and replaces `outputFile`,
    /// which may be the input file, by the result. Afterwards nothing is left to be
    /// done. A backup that cannot be made is logged, and the conversion goes on.
    /// \param[out] error  the reason on failure, else untouched
    /// \returns false, with `outputFile` untouched, if there was nothing to be
    ///     done or something failed, which is logged; the call may then be repeated
    [[nodiscard]] bool convert(const QString& outputFile, QString& error);
    /// Likewise; the reason is in the log only.
    [[nodiscard]] bool convert(const QString& outputFile);

    /// The document that `convert` would write, and the report on how it came about.
    /// No file is written and no backup made, and the steps stay planned.
    /// \param[out] result  UTF-8 with XML declaration; untouched on failure
    /// \param[out] error  the reason on failure, else untouched
    [[nodiscard]] bool convertInMemory(QByteArray& result, QString& error);

    /// What the steps of the latest convertInMemory that succeeded did, one entry a
    /// step. A stylesheet tells what it does to any document: of that, what the
    /// step's input gives cause for.
    [[nodiscard]] const std::vector<ConversionStepReport>& report() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace lumo
