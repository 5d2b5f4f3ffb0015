// SPDX-License-Identifier: Apache-2.0
#include "xml/project_20_21/old_project_inputs.h"

#include "xml/camera/old_camera_names.h"
#include "xml/project_20_21/old_project_changes.h"

#include <algorithm>
#include <set>
#include <stdexcept>

namespace lumo::kpx {
namespace {

void convertTime(Element& time, Changes& changes)
{
    const QString before = time.value();
    bool known = false;
    const QString after = normalisedTime(before, known);
    if (!known) {
        changes.dropped(
            QStringLiteral("image/time"),
            QStringLiteral("\"%1\" is not a known form of a time, %2 is used")
                .arg(before.left(40), after),
            time.line);
    } else if (before != after) {
        changes.rewritten(
            QStringLiteral("image/time"), QStringLiteral("yyyy:MM:dd hh:mm:ss"), time.line);
    }
    clearAttributes(time, QStringLiteral("image/time"), QStringLiteral("value"), changes);
    time.text = after;
}

void convertImageChild(Element& child, Changes& changes)
{
    if (child.name == QLatin1String("time")) {
        convertTime(child, changes);
    } else if (child.name == QLatin1String("exifId")) {
        changes.renamed(QStringLiteral("image/exifId"), QStringLiteral("image/exifID"), child.line);
        child.name = QStringLiteral("exifID");
    } else if (child.name == QLatin1String("camera")) {
        renameAttributesOfCamera(child, QStringLiteral("image/camera"), changes);
    }
}

/// The height of the geoid above the ellipsoid is all that older files record of
/// heights: a constant shift.
/// \returns false if it has none
bool convertVerticalDef(Element& definition, Changes& changes)
{
    QString source = QStringLiteral("value");
    if (definition.attribute(source) == nullptr) {
        source = QStringLiteral("geoidHeight");
    }
    const std::optional<QString> height = definition.takeAttribute(source);
    if (!height) {
        changes.dropped(
            definition.name, QStringLiteral("it has no height of the geoid"), definition.line);
        return false;
    }
    clearAttributes(definition, definition.name, source, changes);
    definition.attributes = {
        {QStringLiteral("model"), QStringLiteral("constShift")},
        {QStringLiteral("geoidHeight"), *height}};
    changes.rewritten(definition.name, QStringLiteral("verticalDef@geoidHeight"), definition.line);
    return true;
}

} // namespace

void refuseComplex(const QString& tag)
{
    throw std::runtime_error("Unsupported complex tag found: " + tag.toStdString());
}

void arrange(
    Element& parent, const Positions& positions, const QStringList& repeatable, Changes& changes)
{
    std::vector<std::pair<int, Element>> kept;
    kept.reserve(parent.children.size());
    std::set<QString> single; // names that are there and may not be again
    for (Element& child : parent.children) {
        const auto listed = positions.find(child.name);
        const bool again = listed != positions.end() && !repeatable.contains(child.name) &&
                           !single.insert(child.name).second;
        if (listed != positions.end() && !again) {
            kept.emplace_back(listed->second, std::move(child));
            continue;
        }
        if (!child.children.empty()) {
            refuseComplex(child.name);
        }
        changes.dropped(
            parent.name + QLatin1Char('/') + child.name,
            again ? QStringLiteral("it is there before") : QStringLiteral("it is not known there"),
            child.line);
    }
    // Stable: repeated elements keep their order, and names that share a position too.
    std::stable_sort(
        kept.begin(), kept.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    parent.children.clear();
    for (auto& [position, child] : kept) {
        parent.children.push_back(std::move(child));
    }
}

void renameAttribute(
    Element& element, const QString& path, const QString& before, const QString& after,
    Changes& changes)
{
    const auto isEither = [&](const Attribute& one) {
        return one.name == before || one.name == after;
    };
    std::vector<Attribute>& attributes = element.attributes;
    const auto first = std::find_if(attributes.begin(), attributes.end(), isEither);
    if (first == attributes.end()) {
        return;
    }
    const QString holding = first->name;
    if (holding == before) {
        first->name = after;
        changes.renamed(
            path + QLatin1Char('@') + before, path + QLatin1Char('@') + after, element.line);
    }
    const auto second = std::find_if(std::next(first), attributes.end(), isEither);
    if (second != attributes.end()) {
        changes.dropped(
            path + QLatin1Char('@') + second->name,
            QStringLiteral("%1 is set by %2 before").arg(after, holding), element.line);
        attributes.erase(second);
    }
}

void attributeFromChild(
    Element& element, const QString& path, const QString& child, const QString& attribute,
    Changes& changes)
{
    std::vector<Element> kept;
    for (Element& one : element.children) {
        const QString value = one.value().trimmed();
        if (one.name != child || !one.children.empty() || value.isEmpty()) {
            kept.push_back(std::move(one));
            continue;
        }
        const QString what = path + QLatin1Char('/') + child;
        if (element.attribute(attribute) != nullptr) {
            changes.dropped(what, QStringLiteral("it is there before"), one.line);
        } else {
            element.setAttribute(attribute, value);
            changes.renamed(what, path + QLatin1Char('@') + attribute, one.line);
        }
    }
    element.children = std::move(kept);
}

void clearAttributes(Element& element, const QString& path, const QString& used, Changes& changes)
{
    for (const Attribute& attribute : element.attributes) {
        if (attribute.name != used) {
            changes.dropped(
                path + QLatin1Char('@') + attribute.name,
                QStringLiteral("it has no place in the result"), element.line);
        }
    }
    element.attributes.clear();
}

void renameAttributesOfCamera(Element& camera, const QString& path, Changes& changes)
{
    for (const QString& name : {QStringLiteral("cameraId"), QStringLiteral("aliasId")}) {
        renameAttribute(camera, path, name, xml::renamedOfCamera(name), changes);
    }
}

void convertImage(Element& image, const Positions& positions, Changes& changes)
{
    for (Element& child : image.children) {
        convertImageChild(child, changes);
    }
    arrange(image, positions, {QStringLiteral("group")}, changes);
}

void convertCoordinateSystem(Element& system, const QString& name, Changes& changes)
{
    static const Positions positions{{"wkt", 0}, {"verticalDef", 1}};
    arrange(system, positions, {}, changes);
    if (!system.children.empty() && system.children.back().name == QLatin1String("verticalDef") &&
        !convertVerticalDef(system.children.back(), changes)) {
        system.children.pop_back();
    }
    changes.renamed(system.name, QStringLiteral("inputs/coordinateSystems/") + name, system.line);
    system.name = name;
}

} // namespace lumo::kpx
