// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QNetworkAccessManager>

namespace lumo::xml {

/// Restricts what Qt's XML engines may load on their own: nothing at all, or local
/// files only.
class RestrictedNetwork : public QNetworkAccessManager
{
public:
    enum class Access { None, LocalFiles };

    explicit RestrictedNetwork(Access access);

protected:
    QNetworkReply* createRequest(
        Operation operation, const QNetworkRequest& request, QIODevice* outgoingData) override;

private:
    Access m_access;
};

} // namespace lumo::xml
