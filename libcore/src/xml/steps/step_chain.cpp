// SPDX-License-Identifier: Apache-2.0
#include "xml/steps/step_chain.h"

#include "lumo/foundation/log.h"

#include <QBuffer>

#include <stdexcept>

namespace lumo::xml {
namespace {

QByteArray run(IXmlConversion& conversion, QByteArray& document)
{
    QBuffer input;
    input.setData(document);
    document.clear(); // the buffer's copy is the only one now
    if (!input.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("the document cannot be read from memory");
    }
    return conversion.convert(&input);
}

} // namespace

bool runChain(
    const std::vector<ChainStep>& steps, const ChainListener& listener, QByteArray& document,
    QString& error)
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (listener.starting) {
            listener.starting(i);
        }
        log::step() << steps[i].label;
        const std::unique_ptr<IXmlConversion> conversion = steps[i].create(error);
        if (!conversion) {
            return false;
        }
        const QByteArray input = listener.finished ? document : QByteArray();
        document = run(*conversion, document);
        if (listener.finished) {
            listener.finished(i, conversion->changesOf(input));
        }
    }
    return true;
}

} // namespace lumo::xml
