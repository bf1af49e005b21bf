#ifndef ZELSYSJSONTEXT_H
#define ZELSYSJSONTEXT_H

#include "zelsystem_export.h"

#include <QString>
#include <QStringView>

/*!
    Text as a JSON string: the one place where every writer of JSON in
    ZELKinematics escapes what it writes.

    Quotes and backslashes are escaped, the control characters below U+0020
    are written as \b, \f, \n, \r, \t or \u00XX (lowercase hex), and every
    other character stays as it is. Embedding::HtmlScript, for JSON placed
    inside an HTML <script> element, also writes '<' as \u003c (so that no
    "</script>" can end the element early) and U+2028 and U+2029 as \u2028
    and \u2029 (which older script parsers take for line breaks). Nothing
    here throws.
*/
namespace ZELSysJsonText {

enum class Embedding { Plain, HtmlScript };

//! Appends `text` to `json` as a JSON string, between double quotes.
ZELSYSTEM_EXPORT void AppendString(QString& json, QStringView text, Embedding embedding = Embedding::Plain);

//! `text` as a JSON string, between double quotes.
ZELSYSTEM_EXPORT QString Quoted(QStringView text, Embedding embedding = Embedding::Plain);

} // namespace ZELSysJsonText

#endif // ZELSYSJSONTEXT_H
