// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

class QDomElement;
class QXmlStreamWriter;

namespace lumo {

/// One spectral band of an image.
struct LUMO_CAMERADATA_EXPORT band_t
{
    QString name;
    double wavelength = 0.0; ///< centre (nm); 0 if not known
    double width = 0.0;      ///< full width at half maximum (nm); 0 if not known
    double weight = 1.0;     ///< factor of the band when bands are combined into one

    /// A band that carries no image content: named "Garbage", ignoring case.
    [[nodiscard]] bool garbage() const;

    /// Compares all four fields exactly, the name case-sensitively.
    bool operator==(const band_t&) const = default;
};

/// The bands of an image or camera, in the order of the image's channels.
class LUMO_CAMERADATA_EXPORT bands_t
{
public:
    bands_t() = default;
    bands_t(std::initializer_list<band_t> bands);

    [[nodiscard]] std::size_t size() const { return m_bands.size(); }
    [[nodiscard]] bool empty() const { return m_bands.empty(); }
    [[nodiscard]] band_t& operator[](std::size_t i) { return m_bands[i]; }
    [[nodiscard]] const band_t& operator[](std::size_t i) const { return m_bands[i]; }
    [[nodiscard]] auto begin() const { return m_bands.begin(); }
    [[nodiscard]] auto end() const { return m_bands.end(); }
    [[nodiscard]] auto begin() { return m_bands.begin(); }
    [[nodiscard]] auto end() { return m_bands.end(); }
    void append(const band_t& band) { m_bands.push_back(band); }
    void clear() { m_bands.clear(); }

    [[nodiscard]] QStringList names() const;

    /// Whether the names are the same in the same order, ignoring case and blanks.
    [[nodiscard]] bool sameNames(const bands_t& other) const;
    [[nodiscard]] bool sameNames(const QStringList& names) const;

    /// Whether the number of bands is the same and their centres agree within 0.5 nm:
    /// makers and metadata round wavelengths to whole nanometres.
    [[nodiscard]] bool sameCentralWaveLengths(const bands_t& other) const;

    [[nodiscard]] std::size_t garbageBandCount() const;
    /// Removes the bands that carry no image content.
    void removeGarbage();

    /// Fills each number that is 0 from the band of the same name (ignoring
    /// case and blanks) in `other`.
    void copyData(const bands_t& other);

    /// Whether copyData(other) would change anything, or the names differ.
    [[nodiscard]] bool needsCopyDataFrom(const bands_t& other) const;

    /// \param[out] error  the first fault, if there is one and `verbose` is set; else
    ///     untouched
    /// \param checkBands  also checks each band: a name that no other band has (garbage
    ///     excepted), and numbers that are finite and not negative
    /// \param allowEmpty  accepts an empty list
    [[nodiscard]] bool valid(QString& error, bool checkBands, bool verbose, bool allowEmpty) const;

    /// Writes an element "band" for each band into the open element, with the
    /// attributes name, wavelength, width and weight (10 significant digits).
    void saveXML(QXmlStreamWriter& writer) const;

    /// Replaces these bands by those in an element that saveXML wrote into.
    void readXML(const QDomElement& element);

    /// Equal band by band, in order.
    bool operator==(const bands_t&) const = default;

private:
    std::vector<band_t> m_bands;
};

namespace band {

/// The bands Red, Green, Blue. Without wavelengths, which makers of colour cameras do
/// not publish.
[[nodiscard]] LUMO_CAMERADATA_EXPORT bands_t makeRGBBands();

} // namespace band
} // namespace lumo
