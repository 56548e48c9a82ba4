// SPDX-License-Identifier: MIT
#include "checker/PlaceOf.h"

#include "checker/RowPlaces.h"

namespace checker {

PlaceOf PlacesOf::rowsIn(const ListSources& sources)
{
    return [sources, places = RowPlaces(sources)](model::RowId row) {
        const SourceFile& file = sources.file(row.list);
        const int line = file.position(places.row(row).range.begin).line;
        return file.name() + QLatin1Char(':') + QString::number(line);
    };
}

PlaceOf PlacesOf::rowsInScript(const QString& path)
{
    return [path](model::RowId row) {
        static const QStringList kinds{QStringLiteral("long"), QStringLiteral("modifier"),
                                       QStringLiteral("shortcut")};
        return kinds.at(static_cast<int>(row.list)) + QStringLiteral(" row ") +
               QString::number(row.index + 1) + QStringLiteral(" of ") + path;
    };
}

} // namespace checker
