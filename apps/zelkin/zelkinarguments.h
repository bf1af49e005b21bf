#ifndef ZELKINARGUMENTS_H
#define ZELKINARGUMENTS_H

#include "zelkinoption.h"

#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

class ZELKinUsageError;

/*!
    A command's arguments read against the options it accepts. Everything
    the command cannot accept is a ZELKinUsageError naming the command, so
    that commands report bad command lines alike. "--" ends the options: the
    arguments after it are positional even when they start with a dash.

    An option that reads a file (ZELKinOption::Value::Input) given "-"
    reads the standard input: its value is then the standard input's path
    (ZELKinInputFile::GetPath), for the command and for the checks below.
*/
class ZELKinArguments
{
public:
    //! Throws ZELKinUsageError
    //! - "unknown option '<option>'" for an option not in `options`;
    //! - the parser's own message for an option that lacks its value or has
    //!   one it does not take;
    //! - "the option --<option> is given twice" for an option given more
    //!   than once, flags too, by any of its names;
    //! - "--<option> and --<option> cannot both read standard input ('-')"
    //!   for two options that read a file both given "-".
    ZELKinArguments(const QString& command, const QStringList& arguments, const QList<ZELKinOption>& options);

    bool IsSet(const QString& option) const;
    //! The value given to an option that takes one; empty when it was not
    //! given. For an option that reads a file, "-" is the standard input's
    //! path.
    QString GetValue(const QString& option) const;
    //! The value of an option the command cannot do without. Throws
    //! ZELKinUsageError "missing the option --<option>" when it was not given.
    QString GetRequiredValue(const QString& option) const;
    //! The positional arguments, in order.
    QStringList GetPositionals() const;
    //! The only positional argument, the path of a file. Throws
    //! ZELKinUsageError "missing the <what>" when there is none, "the <what>
    //! needs a path, not an empty text" for an empty one and "unexpected
    //! argument '<argument>'" for a second one.
    QString GetSinglePositional(const QString& what) const;
    //! The only positional argument, the path of a file the command reads:
    //! as GetSinglePositional, with "-" the standard input's path.
    QString GetSingleInput(const QString& what) const;
    //! Throws ZELKinUsageError "unexpected argument '<argument>'" for the
    //! first positional argument beyond `count`.
    void RequireAtMostPositionals(int count) const;
    //! For a command that reads the standard input itself as well, as
    //! `reader` (what the user typed that makes it do so) says: throws
    //! ZELKinUsageError "--<option> and <reader> cannot both read standard
    //! input ('-')" when an option that reads a file is given "-".
    void RequireStandardInputFor(const QString& reader) const;

    //! Throws ZELKinUsageError "the option --<option> needs a path, not an
    //! empty text" for the first of `options` given an empty value.
    void RequirePaths(const QStringList& options) const;
    //! Throws ZELKinUsageError "--<output> would overwrite the file that
    //! --<input> reads: '<path>'" when `path`, which the option `output`
    //! makes the command write, is the file of one of the `inputs` options:
    //! the same file by any name, a hard link among them.
    void RequireNotAnInput(const QString& output, const QString& path, const QStringList& inputs) const;
    //! Throws ZELKinUsageError "--<input> reads a file inside '<folder>',
    //! which --<output> replaces" when the file of one of the `inputs`
    //! options lies below `folder`, which the option `output` makes the
    //! command replace whole.
    void RequireOutside(const QString& output, const QString& folder, const QStringList& inputs) const;

    //! Whether "--help" or "-h" stands among `arguments` before any "--".
    static bool AsksForHelp(const QStringList& arguments);

private:
    QString DescribeParseError() const;
    void RequireEachOnce() const;
    void RequireOneStandardInput() const;
    //! The options that read a file given "-", as typed.
    QStringList GetStandardInputReaders() const;
    ZELKinUsageError TwoStandardInputReaders(const QString& first, const QString& second) const;
    //! The option that goes by `name`; null for none.
    const ZELKinOption* Find(const QString& name) const;
    bool ReadsStandardInput(const ZELKinOption& option) const;

    QString m_command;
    QList<ZELKinOption> m_options;
    QCommandLineParser m_parser;
};

#endif // ZELKINARGUMENTS_H
