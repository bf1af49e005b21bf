#ifndef ZELKINOPTION_H
#define ZELKINOPTION_H

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

/*!
    One option a command accepts, or its positional arguments: the names it
    goes by, what follows it and, where that is one of a few words, the
    words. A command parses its arguments against its options
    (ZELKinArguments) and "zelkin completion" completes them from the same
    list, so that the two cannot disagree.
*/
class ZELKinOption
{
public:
    //! What follows the option on the command line.
    enum class Value {
        None, //!< nothing: a flag, or a command that takes no positional argument
        Text, //!< a word or a number
        Path, //!< the path of a file or a folder
        Input, //!< the path of a file the command reads; "-" reads the standard input
    };

    //! An option named `name` ("json"), without dashes.
    ZELKinOption(const QString& name, Value value, const QStringList& words = QStringList());
    //! An option of several names ({"o", "output"}), without dashes.
    ZELKinOption(const QStringList& names, Value value, const QStringList& words = QStringList());
    //! A command's positional arguments.
    static ZELKinOption Positional(Value value, const QStringList& words = QStringList());

    //! The names without dashes; none for positional arguments.
    QStringList GetNames() const;
    //! The names as they are typed: "-o", "--output".
    QStringList GetTypedNames() const;
    Value GetValue() const;
    //! The words the value is one of; empty when it may be anything.
    QStringList GetWords() const;
    //! The option as QCommandLineParser reads it.
    QCommandLineOption GetParserOption() const;

    //! A name as it is typed: "-o" for one letter, "--output" for more.
    static QString AsTyped(const QString& name);

private:
    QStringList m_names;
    Value m_value;
    QStringList m_words;
};

#endif // ZELKINOPTION_H
