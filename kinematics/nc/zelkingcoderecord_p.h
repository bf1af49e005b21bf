#ifndef ZELKINGCODERECORD_P_H
#define ZELKINGCODERECORD_P_H

#include "zelkingcoderecord.h"

#include <QList>
#include <QSharedData>
#include <QString>
#include <QStringView>

/*!
    The shared body of ZELKinGCodeRecord.

    The words are not copied out of the line: the body keeps the line itself
    (implicitly shared with the caller's text, so keeping it is free) and,
    per word, where its name and value stand in it. A query makes a text of
    a name or value only when it returns one.

    Copying a body (when a record detaches) copies the line number and both
    texts and shares the words, which are implicitly shared as well.
*/
class ZELKinGCodeRecordPrivate : public QSharedData
{
public:
    //! One word: name and value as ranges of the line, in UTF-16 code units.
    //! An empty value has length 0.
    struct Word
    {
        qsizetype nameBegin = 0;
        qsizetype nameLength = 0;
        qsizetype valueBegin = 0;
        qsizetype valueLength = 0;
    };
    //! Every word in the order of the line.
    using Words = QList<Word>;

    //! The body of every default-constructed record: no words at all, so a
    //! default record costs no allocation. It is never freed.
    static ZELKinGCodeRecordPrivate* SharedEmpty();

    //! Splits `text` into words and comment, on a body that holds no line
    //! yet.
    void Parse(const QString& text);

    QStringView NameOf(const Word& word) const { return QStringView(line).mid(word.nameBegin, word.nameLength); }
    QStringView ValueOf(const Word& word) const { return QStringView(line).mid(word.valueBegin, word.valueLength); }

    unsigned lineNumber = 0;
    QString comment;
    //! Reserved beside the comment: every record leaves it empty and no
    //! query reads it.
    QString secondText;
    //! The parsed line, which the words point into.
    QString line;
    Words words;
};

#endif // ZELKINGCODERECORD_P_H
