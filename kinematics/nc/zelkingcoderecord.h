#ifndef ZELKINGCODERECORD_H
#define ZELKINGCODERECORD_H

#include "zelkinematics_export.h"

#include <QExplicitlySharedDataPointer>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class ZELKinGCodeRecordPrivate;

/*!
    One line of NC text taken apart into its words, for hosts that read NC
    programs back line by line: the line number the caller gives, the
    comment, and every address (a letter or a name such as "R1") with its
    value as text.

    The text before the first semicolon holds the words and the text after
    it is the comment. A line without a semicolon has all of it taken for
    words and all of it for the comment as well.

    Words are upper-case letters and underscores, with one digit more when
    an "=" follows that digit ("R1=16" is R1 with 16, "X12" is X with 12),
    then an optional "=", "(" and double quote, then the value: the text up
    to the next double quote, or a number with an optional minus sign and
    decimal part. The value may be empty. Lower-case letters, blanks and
    anything else between words are skipped, so "g1" is no word. A name may
    come several times on a line (several G or M codes); every occurrence is
    kept.

    A record is a value type with copy-on-write sharing: copies share one
    body through an atomic reference count. A record is never changed once
    constructed, so copies may be read from several threads, and lines may
    be parsed on several threads at once.

    Nothing declared here throws.
*/
class ZELKINEMATICS_EXPORT ZELKinGCodeRecord
{
public:
    //! No words, no comment, line number 0; every query answers nothing.
    ZELKinGCodeRecord();
    //! Takes `text` apart into its words and comment. `lineNumber` is kept
    //! as it is given; a line number in the text ("N100") is a word like
    //! any other.
    ZELKinGCodeRecord(unsigned lineNumber, const QString& text);
    ZELKinGCodeRecord(const ZELKinGCodeRecord& other);
    ZELKinGCodeRecord& operator=(const ZELKinGCodeRecord& other);
    virtual ~ZELKinGCodeRecord();

    unsigned GetLineNumber() const;
    //! The text after the first semicolon, as it stands; the whole line when
    //! it has no semicolon.
    QString GetComment() const;
    //! The values of all G words, the last on the line first. A value that
    //! is not an unsigned decimal number (empty, signed, fractional) reads 0.
    QList<unsigned> GetGCodes() const;
    //! The values of all M words, as GetGCodes.
    QList<unsigned> GetMCodes() const;
    //! The names of all words other than G and M, once per occurrence (a name
    //! used twice is listed twice), in no particular order.
    QStringList GetVariables() const;
    //! The value of the last word called `name` on the line; empty when
    //! there is none.
    QString GetVariableValue(const QString& name) const;
    //! The values of every word called `name`, in their order on the line;
    //! empty when there is none. For readers that need all of a repeated
    //! name, such as the several X words of a malformed line.
    QStringList GetVariableValues(const QString& name) const;
    //! Every word, G and M included, as its name and value in the order of
    //! the line. For readers that go through all the words of a line at
    //! once, which asking name by name would make quadratic in the words.
    QList<QPair<QString, QString>> GetWords() const;
    //! Whether the line has a word called `name`, G and M included.
    bool IsVariable(const QString& name) const;

private:
    QExplicitlySharedDataPointer<ZELKinGCodeRecordPrivate> d_ptr;
    Q_DECLARE_PRIVATE(ZELKinGCodeRecord)
    friend class ZELKinTestAccess;
};

Q_DECLARE_TYPEINFO(ZELKinGCodeRecord, Q_RELOCATABLE_TYPE);

#endif // ZELKINGCODERECORD_H
