// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/cameradata/export.h"

#include <QString>

namespace lumo {

/// What an image shows. Conditions compare the numbers: images of kind 1 need a
/// radiometric calibration.
enum class SpectralKind : int {
    Rgb = 0,
    Multispectral = 1,
};

/// An image file of a project with its metadata.
class LUMO_CAMERADATA_EXPORT InputImage
{
public:
    InputImage() = default;
    /// Sets the spectral kind to Rgb if the metadata's bands are Red, Green and Blue or
    /// there are none, else to Multispectral.
    InputImage(QString path, const ExifInfo& exif);

    [[nodiscard]] const QString& path() const { return m_path; }
    [[nodiscard]] const ExifInfo& exif() const { return m_exif; }
    /// Replaces the metadata but keeps the spectral kind.
    void setExif(const ExifInfo& exif) { m_exif = exif; }
    [[nodiscard]] const QString& serialNumber() const { return m_exif.serialNumber; }
    [[nodiscard]] const bands_t& bands() const { return m_exif.bands; }
    [[nodiscard]] SpectralKind spectralKind() const { return m_spectralKind; }

    bool operator==(const InputImage&) const = default;

private:
    QString m_path;
    ExifInfo m_exif;
    SpectralKind m_spectralKind = SpectralKind::Rgb;
};

} // namespace lumo
