// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/captures.h"

#include "cameraInfo/captures/image_name.h"
#include "lumo/foundation/file.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <optional>
#include <utility>

namespace lumo {
namespace {

/// What the paths of a capture's images share.
QString stemOf(const QString& path)
{
    return file::join(file::dirname(path), splitImageName(path).stem);
}

bool sameTime(const QDateTime& a, const QDateTime& b)
{
    constexpr qint64 kToleranceMs = 1000;
    return !a.isValid() || !b.isValid() || std::abs(a.msecsTo(b)) <= kToleranceMs;
}

/// Captures being collected, found by identifier or by stem.
class Collector
{
public:
    void addIdentified(const InputImage& image)
    {
        const auto [known, isNew] = m_byId.emplace(image.exif().captureId, m_captures.size());
        addTo(isNew ? std::nullopt : std::optional(known->second), image.exif().captureId, image);
    }

    void addByStem(const InputImage& image)
    {
        const QString stem = stemOf(image.path());
        const auto [first, last] = m_byStem.equal_range(stem);
        const auto sameCapture = std::find_if(first, last, [&](const auto& candidate) {
            return sameTime(
                m_captures[candidate.second].images.front().exif().dateTime, image.exif().dateTime);
        });
        addTo(sameCapture == last ? std::nullopt : std::optional(sameCapture->second), stem, image);
    }

    std::vector<Capture> take() { return std::move(m_captures); }

private:
    void addTo(std::optional<std::size_t> capture, const QString& id, const InputImage& image)
    {
        if (!capture) {
            capture = m_captures.size();
            m_captures.push_back({id, {}});
        }
        m_captures[*capture].images.push_back(image);
        const QString stem = stemOf(image.path());
        const auto [first, last] = m_byStem.equal_range(stem);
        if (std::none_of(first, last, [&](const auto& held) { return held.second == *capture; })) {
            m_byStem.emplace(stem, *capture);
        }
    }

    std::vector<Capture> m_captures;
    std::map<QString, std::size_t> m_byId;
    std::multimap<QString, std::size_t> m_byStem;
};

void sortImages(std::vector<InputImage>& images)
{
    const auto order = [](const InputImage& image) {
        return std::pair(
            image.exif().rigCameraIndex.value_or(std::numeric_limits<int>::max()), image.path());
    };
    std::sort(images.begin(), images.end(), [&order](const InputImage& a, const InputImage& b) {
        return order(a) < order(b);
    });
}

} // namespace

std::vector<Capture> groupCaptures(const std::vector<InputImage>& images)
{
    Collector collector;
    for (const InputImage& image : images) {
        if (!image.exif().captureId.isEmpty()) {
            collector.addIdentified(image);
        }
    }
    for (const InputImage& image : images) {
        if (image.exif().captureId.isEmpty()) {
            collector.addByStem(image);
        }
    }
    std::vector<Capture> captures = collector.take();
    for (Capture& capture : captures) {
        sortImages(capture.images);
    }
    // The two passes above have left the order of the input.
    std::map<QString, std::size_t> position;
    for (const InputImage& image : images) {
        position.emplace(image.path(), position.size());
    }
    const auto firstPosition = [&position](const Capture& capture) {
        std::size_t first = position.size();
        for (const InputImage& image : capture.images) {
            first = std::min(first, position.at(image.path()));
        }
        return first;
    };
    std::sort(
        captures.begin(), captures.end(), [&firstPosition](const Capture& a, const Capture& b) {
            return firstPosition(a) < firstPosition(b);
        });
    return captures;
}

} // namespace lumo
