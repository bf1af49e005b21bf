#ifndef ZELKINPOSTEDNC_H
#define ZELKINPOSTEDNC_H

// Posted NC as tests read and change it: the posting environment, and line
// edits of a copy of a posted program.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <functional>

//! The test's environment with SOURCE_DATE_EPOCH set (2023-11-14 22:13:20
//! UTC), so that posting the same inputs gives the same bytes.
inline QProcessEnvironment ReproducibleEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("1700000000"));
    return environment;
}

inline QString ReadText(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

inline void WriteText(const QString& path, const QString& text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(text.toUtf8());
}

//! Copies the files of the program folder `from` into the folder `to`,
//! which is made.
inline void CopyProgramFolder(const QString& from, const QString& to)
{
    ASSERT_TRUE(QDir().mkpath(to));
    const QDir source(from);
    for (const QString& name : source.entryList(QDir::Files))
        ASSERT_TRUE(QFile::copy(source.filePath(name), QDir(to).filePath(name))) << name.toStdString();
}

//! The number, from 1, of the `which`-th line after "COURSE_MODE" in the
//! block of course `course` of a ply file's `lines`.
inline int CourseLine(const QStringList& lines, int course, int which)
{
    const QString record = QStringLiteral(";[COURSE] CourseNumber=%1,").arg(course);
    const auto start = std::find_if(lines.cbegin(), lines.cend(),
                                    [&record](const QString& line) { return line.startsWith(record); });
    const int mode = int(lines.indexOf(QStringLiteral("COURSE_MODE"), int(start - lines.cbegin())));
    return mode + 1 + which;
}

//! Changes the line `number` (from 1) of the file at `path`.
inline void ChangeLine(const QString& path, int number, const std::function<QString(const QString&)>& change)
{
    QStringList lines = ReadText(path).split(QLatin1Char('\n'));
    lines[number - 1] = change(lines.at(number - 1));
    WriteText(path, lines.join(QLatin1Char('\n')));
}

//! The lines of the text file at `path`, without their line ends.
inline QStringList LinesOfFile(const QString& path)
{
    return ReadText(path).split(QLatin1Char('\n'));
}

//! The number, from 1, of the first line of `lines` from `from` (a number)
//! on that starts with `prefix`; 0 when there is none.
inline int LineStartingWith(const QStringList& lines, const QString& prefix, int from = 1)
{
    for (int i = std::max(from, 1) - 1; i < lines.size(); ++i) {
        if (lines.at(i).startsWith(prefix))
            return i + 1;
    }
    return 0;
}

//! Takes the line `number` (from 1) out of the file at `path`.
inline void RemoveLine(const QString& path, int number)
{
    QStringList lines = LinesOfFile(path);
    lines.removeAt(number - 1);
    WriteText(path, lines.join(QLatin1Char('\n')));
}

//! Puts `text` in as the line `number` (from 1) of the file at `path`, the
//! line that stood there and those after it one further down.
inline void InsertLine(const QString& path, int number, const QString& text)
{
    QStringList lines = LinesOfFile(path);
    lines.insert(number - 1, text);
    WriteText(path, lines.join(QLatin1Char('\n')));
}

//! `line` with `words` put in before its comment.
inline QString WithWords(const QString& line, const QString& words)
{
    QString changed = line;
    return changed.insert(int(line.indexOf(QLatin1Char(';'))), words);
}

//! The number after `word` on `line` (a word such as "X" or "C1=").
inline double WordValue(const QString& line, const QString& word)
{
    const QRegularExpression pattern(QRegularExpression::escape(word) + QStringLiteral("(-?\\d+\\.\\d+)"));
    return pattern.match(line).captured(1).toDouble();
}

//! `line` with the value of `word` written as `text`.
inline QString WithWordText(const QString& line, const QString& word, const QString& text)
{
    const QRegularExpression pattern(QRegularExpression::escape(word) + QStringLiteral("-?\\d+\\.\\d+"));
    QString changed = line;
    return changed.replace(pattern, word + text);
}

//! `line` with the value of `word` set to `value`, with four decimals.
inline QString WithWord(const QString& line, const QString& word, double value)
{
    return WithWordText(line, word, QString::number(value, 'f', 4));
}

//! True when `line` writes `word` (such as "C" or "C1=") with a number;
//! "C" is not taken for the start of "C1=".
inline bool HasWord(const QString& line, const QString& word)
{
    const QRegularExpression pattern(QStringLiteral("(?<![A-Z_])") + QRegularExpression::escape(word)
                                     + QStringLiteral("(?!\\d=)-?\\d"));
    return pattern.match(line.left(line.indexOf(QLatin1Char(';')))).hasMatch();
}

//! `line` without its `word` and that word's number.
inline QString WithoutWord(const QString& line, const QString& word)
{
    const QRegularExpression pattern(QStringLiteral("(?<![A-Z_])") + QRegularExpression::escape(word)
                                     + QStringLiteral("-?\\d+\\.\\d+"));
    QString changed = line;
    return changed.remove(pattern);
}

#endif // ZELKINPOSTEDNC_H
