// SPDX-License-Identifier: Apache-2.0
#include "xml/camera/old_camera_names.h"

#include <algorithm>
#include <array>

namespace lumo::xml {
namespace {

struct Rename
{
    const char* before;
    const char* after;
};

constexpr std::array<Rename, 3> kInCamera{{
    {"symmetricAffine3", "symmetricAffine"},
    {"source", "cameraModelSource"},
    {"cameraType", "lensType"},
}};

constexpr std::array<Rename, 1> kInRig{{{"refCamera", "referenceCamera"}}};

constexpr std::array<Rename, 2> kOfCamera{{{"cameraId", "name"}, {"aliasId", "aliasName"}}};

template <std::size_t N>
QString renamed(const std::array<Rename, N>& renames, const QString& name)
{
    const auto found = std::find_if(renames.begin(), renames.end(), [&](const Rename& rename) {
        return name == QLatin1String(rename.before);
    });
    return found == renames.end() ? name : QString::fromLatin1(found->after);
}

} // namespace

QString renamedInCamera(const QString& element)
{
    return renamed(kInCamera, element);
}

QString renamedInRig(const QString& element)
{
    return renamed(kInRig, element);
}

QString renamedOfCamera(const QString& attribute)
{
    return renamed(kOfCamera, attribute);
}

} // namespace lumo::xml
