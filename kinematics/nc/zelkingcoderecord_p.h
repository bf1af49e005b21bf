#ifndef ZELKINGCODERECORD_P_H
#define ZELKINGCODERECORD_P_H

#include "zelkingcoderecord.h"

#include <QMultiHash>
#include <QSharedData>
#include <QString>

/*!
    The shared body of ZELKinGCodeRecord.

    Copying a body (when a record detaches) copies the line number and both
    texts and shares the words: the hash is itself implicitly shared, and
    only a body that inserts a word pays for a copy of it.
*/
class ZELKinGCodeRecordPrivate : public QSharedData
{
public:
    using Words = QMultiHash<QString, QString>;

    //! The body of every default-constructed record: no hash at all, so a
    //! default record costs no allocation. It is never freed.
    static ZELKinGCodeRecordPrivate* SharedEmpty();

    //! Splits `text` into words and comment; the words are added to those
    //! already held.
    void Parse(const QString& text);

    unsigned lineNumber = 0;
    QString comment;
    //! Reserved beside the comment: every record leaves it empty and no
    //! query reads it.
    QString secondText;
    //! Name to value, every occurrence kept; a name's latest value comes
    //! first in QMultiHash::values().
    Words words;
};

#endif // ZELKINGCODERECORD_P_H
