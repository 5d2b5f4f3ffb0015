// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xml_conversion.h"

#include <vector>

namespace lumo {

/// Converts projects (root "lumoair") and processing templates (root "lumotmpl") up
/// to product version 2.0 to 2.1, format version 0. Options get their current names
/// and move into sections. The schema "resources/xsd/0/lumo.xsd", below the
/// application directory, decides which section lists an option.
///
/// Unknown options and elements, a second value for one option, and comments are
/// dropped. Each is listed in `changes` and logged as a warning
/// "WHAT is dropped: reason (line L, N times)". Camera models that are not valid, and
/// user objects of unknown types or shapes, are dropped as well; each has a warning
/// of its own.
class LUMO_CORE_EXPORT KpxConversion20_21 : public IXmlConversion
{
public:
    /// Which kind of document the step takes.
    enum class Mode : int { Project = 0, Template = 1 };

    explicit KpxConversion20_21(Mode mode);
    KpxConversion20_21(const KpxConversion20_21&) = delete;
    KpxConversion20_21& operator=(const KpxConversion20_21&) = delete;
    ~KpxConversion20_21() override;

    void setXsdFile(const QString& xsdFile) override; ///< does nothing
    void setXslFile(const QString& xslFile) override; ///< does nothing

    /// Converts the document. Needs little memory beside the input and the result.
    /// \returns a UTF-8 XML declaration, a line feed, and the result, indented
    /// \throws std::runtime_error "Start of document not found", "Initial tag not
    ///     expected", "conversion not supported for very old project version (V).
    ///     Please, re-create the project from scratch." below 1.2.0, "conversion
    ///     not supported for very old tag: T", "Unsupported complex tag found: T",
    ///     "Expected template <= 2.0, reading template >= 2.1", "GCP:tolerance not
    ///     supported anymore", "unexpected value in updateInternals when converting
    ///     to new tags", the same for projectType, "classes tag should not have any
    ///     attribute"; or with the reason why the schema or the input cannot be read
    [[nodiscard]] QByteArray convert(QIODevice* input) override;

    /// The changes that the latest `convert` made, sorted by line. Empty before the
    /// first call and after a failure.
    [[nodiscard]] const std::vector<ConversionChange>& changes() const;
    /// \returns `changes`, whatever the input
    [[nodiscard]] std::vector<ConversionChange> changesOf(const QByteArray& input) const override;

private:
    class Pimpl;
    std::unique_ptr<Pimpl> m_pimpl;
};

} // namespace lumo
