#include "core/formats/metadata/DOComponent.h"

namespace {
QString lastPathComponent(const QString& uri)
{
    return uri.mid(uri.lastIndexOf(QLatin1Char('/')) + 1);
}
} // namespace

int DOComponent::compareByUri(const DOComponent& other) const
{
    return QString::compare(lastPathComponent(getUri()), lastPathComponent(other.getUri()),
                            Qt::CaseInsensitive);
}
