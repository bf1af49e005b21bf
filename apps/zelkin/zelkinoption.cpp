#include "zelkinoption.h"

ZELKinOption::ZELKinOption(const QString& name, Value value, const QStringList& words)
    : ZELKinOption(QStringList{name}, value, words)
{
}

ZELKinOption::ZELKinOption(const QStringList& names, Value value, const QStringList& words)
    : m_names(names)
    , m_value(value)
    , m_words(words)
{
}

ZELKinOption ZELKinOption::Positional(Value value, const QStringList& words)
{
    return ZELKinOption(QStringList(), value, words);
}

QStringList ZELKinOption::GetNames() const
{
    return m_names;
}

QStringList ZELKinOption::GetTypedNames() const
{
    QStringList typed;
    for (const QString& name : m_names)
        typed.append(AsTyped(name));
    return typed;
}

ZELKinOption::Value ZELKinOption::GetValue() const
{
    return m_value;
}

QStringList ZELKinOption::GetWords() const
{
    return m_words;
}

QCommandLineOption ZELKinOption::GetParserOption() const
{
    // The parser's value name only shows in its own help, which zelkin
    // does not print; what matters is whether there is one.
    return m_value == Value::None ? QCommandLineOption(m_names)
                                  : QCommandLineOption(m_names, QString(), QStringLiteral("value"));
}

QString ZELKinOption::AsTyped(const QString& name)
{
    return (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
}
