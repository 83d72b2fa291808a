#include "core/metadata/DOComponent.h"

namespace {
QString lastPathComponent(const QString& uri)
{
    return uri.mid(uri.lastIndexOf(QLatin1Char('/')) + 1);
}
} // namespace

int DOComponent::compareByUri(const DOComponent& other) const
{
    return QString::compare(lastPathComponent(m_sUri), lastPathComponent(other.m_sUri), Qt::CaseInsensitive);
}
