// SPDX-License-Identifier: Apache-2.0
// Converting the control points and user objects of an old project.
#include "lumo/foundation/text.h"
#include "xml/project_20_21/old_project_changes.h"
#include "xml/project_20_21/old_project_inputs.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

namespace lumo::kpx {
namespace {

struct ObjectType
{
    const char* name;
    std::size_t minVertices;
    std::size_t maxVertices;
};

constexpr std::size_t kAnyNumber = ~std::size_t{0};
constexpr std::array<ObjectType, 5> kObjectTypes{{
    {"marker", 1, 1},
    {"scale", 2, 2},
    {"polyline", 2, kAnyNumber},
    {"surface", 3, kAnyNumber},
    {"volume", 3, kAnyNumber},
}};

bool hasPosition(const Element& vertex)
{
    static const std::array<QString, 3> axes{
        QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")};
    return std::all_of(axes.begin(), axes.end(), [&](const QString& axis) {
        const QString* const coordinate = vertex.attribute(axis);
        bool ok = false;
        if (coordinate != nullptr) {
            static_cast<void>(text::fromString<double>(*coordinate, &ok));
        }
        return ok;
    });
}

/// Why a user object cannot be converted, if it cannot.
std::optional<QString> faultOf(const Element& object)
{
    const QString* const type = object.attribute(QStringLiteral("type"));
    const auto known =
        std::find_if(kObjectTypes.begin(), kObjectTypes.end(), [&](const ObjectType& one) {
            return type != nullptr && *type == QLatin1String(one.name);
        });
    if (known == kObjectTypes.end()) {
        return QStringLiteral("its type is not known");
    }
    std::size_t vertices = 0;
    for (const Element& child : object.children) {
        const bool isVertex = child.name == QLatin1String("vertex");
        if (!child.children.empty() || (isVertex && !hasPosition(child))) {
            return QStringLiteral("its element %1 in line %2 cannot be read")
                .arg(child.name)
                .arg(child.line);
        }
        vertices += isVertex ? 1 : 0;
    }
    if (vertices < known->minVertices || vertices > known->maxVertices) {
        return QStringLiteral("%1 vertices do not make a %2").arg(vertices).arg(*type);
    }
    return std::nullopt;
}

} // namespace

void convertGcp(Element& gcp, Changes& changes)
{
    static const Positions positions{{"mark", 0}};
    const bool hasTolerance =
        gcp.attribute(QStringLiteral("tolerance")) != nullptr ||
        std::any_of(gcp.children.begin(), gcp.children.end(), [](const Element& child) {
            return child.name == QLatin1String("tolerance");
        });
    if (hasTolerance) {
        throw std::runtime_error("GCP:tolerance not supported anymore");
    }
    for (const QString& axes : {QStringLiteral("XY"), QStringLiteral("Z")}) {
        const QString before = QStringLiteral("tolerance") + axes;
        const QString after = QStringLiteral("accuracy") + axes;
        renameAttribute(gcp, gcp.name, before, after, changes);
        attributeFromChild(gcp, gcp.name, before, after, changes);
    }
    arrange(gcp, positions, {QStringLiteral("mark")}, changes);
    changes.moved(QStringLiteral("gcp"), QStringLiteral("gcps/gcp"), gcp.line);
}

bool convertUserObject(Element& object, Changes& changes)
{
    static const Positions positions{{"vertex", 0}};
    if (const std::optional<QString> fault = faultOf(object)) {
        const QString* const name = object.attribute(QStringLiteral("name"));
        changes.dropped(
            QStringLiteral("userObject \"%1\"").arg(name != nullptr ? *name : QString()), *fault,
            object.line);
        return false;
    }
    arrange(object, positions, {QStringLiteral("vertex")}, changes);
    changes.renamed(object.name, QStringLiteral("objects/object"), object.line);
    object.name = QStringLiteral("object");
    return true;
}

} // namespace lumo::kpx
