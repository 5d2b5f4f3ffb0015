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

/// The changes that one step of a conversion made.
struct ConversionStepReport
{
    QString label; ///< as in ParamConverter::plannedSteps
    std::vector<ConversionChange> changes;
};

/// Converts a project file or a processing template of an older format version to
/// the current one. Files up to product version 2.0 pass KpxConversion20_21 first;
/// then one stylesheet runs for each format version.
///
/// Needs registerXmlConverters(), and the folders "resources/xsd" and
/// "resources/xsl" below the application directory. One thread at a time.
class LUMO_CORE_EXPORT ParamConverter
{
public:
    /// Called before each step with the number of finished steps, the number of all
    /// steps, and the step's label. Called once more after the last step, with `done`
    /// equal to `total` and an empty label. An exception from the listener ends the
    /// conversion and reaches the caller.
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

    /// Whether a step remains.
    [[nodiscard]] bool needsConversion() const;
    /// Whether the file has a newer format version than the target. No steps are
    /// planned then; the caller decides whether to refuse the file.
    [[nodiscard]] bool biggerVersion() const;
    /// The version of the product that wrote the file, such as "2.1.43".
    [[nodiscard]] const QString& getProjectVersion() const;
    /// The file's format version; 0 for files without one, as up to product 2.1.
    [[nodiscard]] int kpxVersion() const;
    [[nodiscard]] bool isTemplate() const;
    /// The remaining steps in order, each as a text for people. The same texts are
    /// logged when a step begins.
    [[nodiscard]] QStringList plannedSteps() const;

    /// Sets where `convert` puts the backup of a project file; has no effect on
    /// templates. "auto" means beside the file: "site.kpx" of version 2.0 becomes
    /// "site_backup_2.0.kpx". Empty, the default, means no backup.
    void setKpxBackupPath(const QString& path);
    /// Sets the folder for backups of templates, for all converters of the process.
    /// Backups go into its subfolders "templates_backups20" and
    /// "templates_backups21". Call it before threads start. Without it templates get
    /// no backup, and `convert` logs a warning.
    static void setTemplatesDataLocation(const QString& dir);
    /// The path where `convert` puts the backup, by the two settings above; empty if
    /// it makes none.
    [[nodiscard]] QString backupPath() const;
    /// Makes `convert` skip the backup, whatever the settings, without a warning. For
    /// applications that make the backup themselves or whose user declined one.
    void skipBackup();

    void setStepListener(StepListener listener);

    /// Copies the file to backupPath(), runs the steps in memory, and replaces
    /// `outputFile`, which may be the input file, by the result. After success no step
    /// remains. The copy is skipped after skipBackup(), and if there is a file at
    /// backupPath() already. A backup that fails is logged, and the conversion goes
    /// on.
    /// \param[out] error  on failure the reason, else untouched
    /// \returns false, with `outputFile` untouched, if no step remained or a step
    ///     failed; a failure is logged, and the call may be repeated
    [[nodiscard]] bool convert(const QString& outputFile, QString& error);
    /// As convert(outputFile, error), with the reason in the log only.
    [[nodiscard]] bool convert(const QString& outputFile);

    /// Makes the document that `convert` would write, and fills report(). Writes no
    /// file and no backup; the planned steps remain.
    /// \param[out] result  UTF-8 with XML declaration; untouched on failure
    /// \param[out] error  on failure the reason, else untouched
    [[nodiscard]] bool convertInMemory(QByteArray& result, QString& error);

    /// The changes made by the latest successful convertInMemory, one entry per step.
    /// A stylesheet declares all changes that it can make; the report lists those of
    /// them that apply to the step's input.
    [[nodiscard]] const std::vector<ConversionStepReport>& report() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace lumo
