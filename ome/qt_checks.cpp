#include "ome/qt_checks.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <string_view>

namespace {

constexpr std::string_view urn = "urn:uuid:";

/// The null UUID where `text` is none. Qt alone would not look behind the last digit.
QUuid uuid_of(const QString& text)
{
    constexpr qsizetype digits_and_hyphens = 36;
    const bool has_braces = text.startsWith('{') && text.endsWith('}');
    if (text.size() != digits_and_hyphens + (has_braces ? 2 : 0))
        return QUuid();
    return QUuid::fromString(text);
}

}

bool Ome::detail::is_timestamp(const std::string& text)
{
    return QDateTime::fromString(QString::fromStdString(text), Qt::ISODate).isValid();
}

bool Ome::detail::is_uuid_urn(const std::string& text)
{
    return !QUuid(QString::fromStdString(text).mid(static_cast<qsizetype>(urn.size()))).isNull();
}

std::string Ome::detail::uuid_urn(const std::string& text)
{
    const bool has_urn = text.rfind(urn, 0) == 0;
    const QUuid uuid = uuid_of(QString::fromStdString(has_urn ? text.substr(urn.size()) : text));
    return std::string(urn) + uuid.toString(QUuid::WithoutBraces).toStdString();
}
