#include "ome/current_timestamp.h"

#include <QDateTime>
#include <QString>

std::string Ome::detail::current_timestamp()
{
    const QDateTime now = QDateTime::currentDateTime();
    return now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate).toStdString();
}
