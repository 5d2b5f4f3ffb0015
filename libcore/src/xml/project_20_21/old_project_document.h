// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/kpx_conversion_20_21.h"
#include "xml/project/kpx_file_version.h"
#include "xml/project_20_21/old_project_changes.h"
#include "xml/project_20_21/old_project_inputs.h"
#include "xml/project_20_21/old_project_options.h"

#include <map>
#include <set>

namespace lumo::kpx {

/// The content of an old project or template in the form of 2.1, without its images.
/// Images are converted one by one while the result is written, because a project may
/// have a hundred thousand of them.
class OldDocument
{
public:
    using Mode = KpxConversion20_21::Mode;

    /// \param bytes  must have passed xml::checkXml; must live as long as this
    /// \throws std::runtime_error
    OldDocument(const QByteArray& bytes, Mode mode);

    /// \returns the new document
    /// \throws std::runtime_error
    [[nodiscard]] QByteArray write();

    [[nodiscard]] const Changes& changes() const { return m_changes; }

private:
    using Handler = std::function<void()>;

    [[nodiscard]] std::map<QString, Handler> projectHandlers();
    [[nodiscard]] std::map<QString, Handler> templateHandlers();
    void addOptionHandlers(std::map<QString, Handler>& handlers);
    void collect();
    void root();
    void element();
    void origin();

    void information();
    void informationText(const Element& element, const QString& path);
    void area();
    void classes();
    void updateInternals();
    void projectType();
    void complexOption();
    void output();
    void camera();
    void rig();
    void coordinateSystem(const char* name);
    void gcp();
    void userObject();
    void settle();

    void writeRoot(QXmlStreamWriter& writer, const char* name) const;
    void writeProject(QXmlStreamWriter& writer);
    void writeTemplate(QXmlStreamWriter& writer) const;
    void writeInputs(QXmlStreamWriter& writer);
    void writeImages(QXmlStreamWriter& writer);

    const QByteArray& m_bytes;
    Mode m_mode;
    XsdTypeElementIndex m_index;
    Origin m_origin;
    std::set<QString> m_originTold;      ///< the elements of the origin met so far
    std::vector<Attribute> m_namespaces; ///< declarations of prefixes by the root
    Changes m_changes;
    std::map<QString, Handler> m_handlers; ///< by the name of an element below the root
    Element m_current;                     ///< the element for the handler

    OptionSections m_options;
    std::map<QString, Element> m_information; ///< texts about a template
    std::vector<Element> m_cameras;           ///< and rigs
    std::map<QString, Element> m_systems;
    std::map<QString, Element> m_output;
    std::vector<Element> m_gcps;
    std::vector<Element> m_objects;
    int m_alternativeLine = 0; ///< of a project type that asks for the alternative calibration
};

} // namespace lumo::kpx
