// SPDX-License-Identifier: Apache-2.0
#include "xml/project_20_21/old_project_document.h"

#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "lumo/foundation/text.h"

#include <algorithm>
#include <stdexcept>

namespace lumo::kpx {
namespace {

const QString kImage = QStringLiteral("image");
const QString kValue = QStringLiteral("value");

struct ValueRename
{
    const char* before;
    const char* after;
};

/// Values of updateInternals: names, and the numbers and truth values of older versions.
constexpr std::array<ValueRename, 8> kInternals{{
    {"none", "None"},
    {"leading", "Leading"},
    {"all", "All"},
    {"prior", "AllPrior"},
    {"0", "None"},
    {"1", "All"},
    {"true", "All"},
    {"false", "None"},
}};

constexpr std::array<ValueRename, 9> kMatchStrategies{{
    {"aerial", "AutoAerial"},
    {"oblique", "AutoOblique"},
    {"planar", "AutoAerial"},
    {"vegetation", "AutoAerial"},
    {"alternative", "AutoAerial"},
    {"Custom", "Custom"},
    {"Fixed", "Fixed"},
    {"AutoAerial", "AutoAerial"},
    {"AutoOblique", "AutoOblique"},
}};

/// Kinds of projects that are calibrated in another way than the others.
constexpr std::array<const char*, 3> kAlternative{"planar", "vegetation", "alternative"};

template <std::size_t N>
QString newValue(const std::array<ValueRename, N>& values, const QString& value, const char* option)
{
    const auto found = std::find_if(values.begin(), values.end(), [&](const ValueRename& rename) {
        return value == QLatin1String(rename.before);
    });
    if (found == values.end()) {
        throw std::runtime_error(
            std::string("unexpected value in ") + option + " when converting to new tags");
    }
    return QString::fromLatin1(found->after);
}

} // namespace

OldDocument::OldDocument(const QByteArray& bytes, Mode mode)
    : m_bytes(bytes)
    , m_mode(mode)
    , m_index(system::applicationDirectory() + QStringLiteral("/resources/xsd/0/lumo.xsd"))
    , m_options(m_index)
{
    if (mode == Mode::Project) {
        m_origin = originOfOldProject(bytes);
        if (text::versionSmallerThan(m_origin.version, QStringLiteral("1.2.0"))) {
            throw std::runtime_error(
                "conversion not supported for very old project version (" +
                m_origin.version.toStdString() + "). Please, re-create the project from scratch.");
        }
    }
    m_handlers = mode == Mode::Project ? projectHandlers() : templateHandlers();
    addOptionHandlers(m_handlers);
    root();
    collect();
    settle();
}

std::map<QString, OldDocument::Handler> OldDocument::projectHandlers()
{
    const Handler origin = [this] { this->origin(); };
    const Handler output = [this] { this->output(); };
    return {
        {"id", origin},
        {"projectVersion", origin},
        {"camera", [this] { camera(); }},
        {"rig", [this] { rig(); }},
        {"imageCS", [this] { coordinateSystem("image"); }},
        {"gcpCS", [this] { coordinateSystem("gcp"); }},
        {"outputCS", [this] { coordinateSystem("output"); }},
        {"gcp", [this] { gcp(); }},
        {"userObject", [this] { userObject(); }},
        {"name", output},
        {"resultFolder", output},
        {"reportLanguage", output},
        {"reportLogo", output},
    };
}

std::map<QString, OldDocument::Handler> OldDocument::templateHandlers()
{
    const Handler text = [this] { informationText(m_current, m_current.name); };
    return {{"information", [this] { information(); }}, {"name", text}, {"description", text}};
}

void OldDocument::addOptionHandlers(std::map<QString, Handler>& handlers)
{
    handlers["area"] = [this] { area(); };
    handlers["classes"] = [this] { classes(); };
    handlers["updateInternals"] = [this] { updateInternals(); };
    handlers["projectType"] = [this] { projectType(); };
    for (const char* name : {"regions", "denseGroups", "meshGeomGroups", "meshTexGroups"}) {
        handlers[name] = [this] { complexOption(); };
    }
}

/// Keeps the namespace declarations of the root, because any kept element may use their
/// prefixes. Drops its other attributes.
void OldDocument::root()
{
    Element root = rootOf(m_bytes);
    for (const Attribute& attribute : root.attributes) {
        if (attribute.name.startsWith(QLatin1String("xmlns:"))) {
            m_namespaces.push_back(attribute);
        }
    }
    for (const Attribute& declared : m_namespaces) {
        static_cast<void>(root.takeAttribute(declared.name));
    }
    clearAttributes(root, root.name, {}, m_changes);
}

void OldDocument::collect()
{
    walkElements(m_bytes, &m_changes, [this](QXmlStreamReader& reader) {
        // write() converts the images one by one, so that memory never has more than one.
        if (m_mode == Mode::Project && reader.qualifiedName() == kImage) {
            reader.skipCurrentElement();
        } else {
            m_current = readElement(reader, m_changes);
            element();
        }
        return true;
    });
}

void OldDocument::element()
{
    const auto handler = m_handlers.find(m_current.name);
    if (handler != m_handlers.end()) {
        handler->second();
    } else if (!m_current.children.empty()) {
        // Dropping an unknown structure could lose data that the user entered.
        refuseComplex(m_current.name);
    } else {
        m_options.place(std::move(m_current), m_changes);
    }
}

/// The values were read before; of several elements the first one counts.
void OldDocument::origin()
{
    const QString name = m_current.name;
    if (!m_originTold.insert(name).second) {
        m_changes.dropped(name, QStringLiteral("it is there before"), m_current.line);
    } else if (name == QLatin1String("id")) {
        m_changes.renamed(name, QStringLiteral("software/product"), m_current.line);
    } else {
        m_changes.renamed(name, QStringLiteral("software/convertedFrom"), m_current.line);
    }
}

void OldDocument::information()
{
    for (const Element& child : m_current.children) {
        if (child.name == QLatin1String("version")) {
            m_origin.version = child.value().trimmed();
        } else if (child.name != QLatin1String("kpxVersion")) {
            informationText(child, QStringLiteral("information/") + child.name);
        }
    }
    if (!text::versionSmallerThan(m_origin.version, QStringLiteral("2.1"))) {
        throw std::runtime_error("Expected template <= 2.0, reading template >= 2.1");
    }
}

/// Takes a text about a template, which was an element below the root before.
void OldDocument::informationText(const Element& element, const QString& path)
{
    if (!element.children.empty()) {
        refuseComplex(element.name);
    }
    const bool isKnown =
        element.name == QLatin1String("name") || element.name == QLatin1String("description");
    const QString into = QStringLiteral("information/") + element.name;
    if (!isKnown) {
        m_changes.dropped(path, QStringLiteral("it is not known there"), element.line);
    } else if (!m_information.try_emplace(element.name, Element{element.name, element.value()})
                    .second) {
        m_changes.dropped(path, QStringLiteral("it is there before"), element.line);
    } else if (path != into) {
        m_changes.moved(path, into, element.line);
    }
}

void OldDocument::area()
{
    const QString* const name = m_current.attribute(QStringLiteral("name"));
    const bool isOrthoRoi = name != nullptr && *name == QLatin1String("orthoRoi");
    if (!isOrthoRoi && !m_current.children.empty()) {
        refuseComplex(m_current.name);
    }
    complexOption();
}

void OldDocument::classes()
{
    if (!m_current.attributes.empty()) {
        throw std::runtime_error("classes tag should not have any attribute");
    }
    complexOption();
}

void OldDocument::complexOption()
{
    m_options.place(std::move(m_current), m_changes);
}

void OldDocument::updateInternals()
{
    const QString before = m_current.name;
    const QString name = QStringLiteral("internalParamOptimization");
    const QString* const value = m_current.attribute(kValue);
    const QString after =
        newValue(kInternals, value != nullptr ? *value : QString(), "updateInternals");
    const int line = m_current.line;
    m_current.setAttribute(kValue, after);
    m_current.name = name;
    if (m_options.placeRenamed(before, std::move(m_current), m_changes)) {
        m_changes.rewritten(
            before + QStringLiteral("@value"), name + QStringLiteral("@value=") + after, line);
    }
}

void OldDocument::projectType()
{
    const QString before = m_current.value();
    const QString after = newValue(kMatchStrategies, before, "projectType");
    const int line = m_current.line;
    m_current.setAttribute(kValue, after);
    m_current.text.clear();
    if (!m_options.place(std::move(m_current), m_changes)) {
        return;
    }
    if (before != after) {
        m_changes.rewritten(
            QStringLiteral("projectType@value"), QStringLiteral("matchStrategy@value=") + after,
            line);
    }
    const bool alternative =
        std::any_of(kAlternative.begin(), kAlternative.end(), [&](const char* kind) {
            return before == QLatin1String(kind);
        });
    if (alternative) {
        m_alternativeLine = line;
    }
}

void OldDocument::output()
{
    const QString name = m_current.name;
    if (!m_current.children.empty()) {
        refuseComplex(name);
    }
    if (m_output.try_emplace(name, m_current).second) {
        m_changes.moved(name, QStringLiteral("output/") + name, m_current.line);
    } else {
        m_changes.dropped(name, QStringLiteral("it is there before"), m_current.line);
    }
}

void OldDocument::camera()
{
    if (convertCamera(m_current, m_index.cameraElements(), m_changes)) {
        m_cameras.push_back(std::move(m_current));
    } else {
        log::warning() << "Invalid camera-model discarded during kpx convertion";
    }
}

void OldDocument::rig()
{
    convertRig(m_current, m_changes);
    m_cameras.push_back(std::move(m_current));
}

void OldDocument::coordinateSystem(const char* name)
{
    const QString before = m_current.name;
    convertCoordinateSystem(m_current, name, m_changes);
    if (!m_systems.try_emplace(name, m_current).second) {
        m_changes.dropped(before, QStringLiteral("it is there before"), m_current.line);
    }
}

void OldDocument::gcp()
{
    convertGcp(m_current, m_changes);
    m_gcps.push_back(std::move(m_current));
}

void OldDocument::userObject()
{
    if (convertUserObject(m_current, m_changes)) {
        m_objects.push_back(std::move(m_current));
    } else {
        log::warning() << "Invaid user-object discarded during kpx convertion";
    }
}

/// Sets the calibration that the kind of project implies, unless an option sets it.
void OldDocument::settle()
{
    const QString method = QStringLiteral("calibrationMethod");
    if (m_alternativeLine > 0 && !m_options.has(method)) {
        Element element{method};
        element.setAttribute(kValue, QStringLiteral("alternative"));
        element.line = m_alternativeLine;
        m_options.placeRenamed(QStringLiteral("projectType"), element, m_changes);
    }
}

} // namespace lumo::kpx
