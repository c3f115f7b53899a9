#include "ome/qt_checks.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <string_view>

bool Ome::detail::is_timestamp(const std::string& text)
{
    return QDateTime::fromString(QString::fromStdString(text), Qt::ISODate).isValid();
}

bool Ome::detail::is_uuid_urn(const std::string& text)
{
    constexpr std::string_view urn = "urn:uuid:";
    return !QUuid(QString::fromStdString(text).mid(static_cast<qsizetype>(urn.size()))).isNull();
}
