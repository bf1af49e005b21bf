#ifndef ZELKINTEXTTABLE_H
#define ZELKINTEXTTABLE_H

#include <QList>
#include <QString>
#include <QStringList>

/*!
    Rows of text cells laid out in columns for a terminal: each column as wide
    as its widest cell, two blanks between columns. Rows may have fewer cells
    than others; lines carry no trailing blanks, so that output compares and
    greps cleanly.
*/
class ZELKinTextTable
{
public:
    void AddRow(const QStringList& cells);
    //! One line per row, each started with `indent` blanks.
    QString ToText(int indent) const;

private:
    QList<int> GetColumnWidths() const;

    QList<QStringList> m_rows;
};

#endif // ZELKINTEXTTABLE_H
