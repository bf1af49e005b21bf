#include "zelkintexttable.h"

#include <algorithm>

namespace {

const QString ColumnGap = QStringLiteral("  ");

} // namespace

void ZELKinTextTable::AddRow(const QStringList& cells)
{
    m_rows.append(cells);
}

QString ZELKinTextTable::ToText(int indent) const
{
    const QList<int> widths = GetColumnWidths();
    QString text;
    for (const QStringList& row : m_rows) {
        QString line(indent, QLatin1Char(' '));
        for (int column = 0; column < row.size(); ++column)
            line += row.at(column).leftJustified(widths.at(column)) + ColumnGap;
        // Padding is only there to line up what follows; nothing follows the last cell.
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}

QList<int> ZELKinTextTable::GetColumnWidths() const
{
    QList<int> widths;
    for (const QStringList& row : m_rows) {
        for (int column = 0; column < row.size(); ++column) {
            if (column == widths.size())
                widths.append(0);
            widths[column] = std::max(widths.at(column), int(row.at(column).size()));
        }
    }
    return widths;
}
