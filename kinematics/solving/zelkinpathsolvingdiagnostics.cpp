#include "zelkinpathsolvingdiagnostics_p.h"

#include "zelkinmachine.h"
#include "zelkinvariable.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QSet>
#include <QtMath>

namespace {

const QString kAbortedLine = QStringLiteral("<aborted>\n");

QString FolderOf(const QString& parent, const QString& name)
{
    return name.isEmpty() ? parent : QDir(parent).filePath(name);
}

double InOutputUnit(const ZELKinVariable* variable, double value)
{
    return variable->GetType() == ZELKinVariable::Rotary ? qRadiansToDegrees(value) : value;
}

} // namespace

ZELKinPathSolvingDiagnostics::ZELKinPathSolvingDiagnostics(const QString& debugPath, const QString& procedureName,
                                                           const ZELKinMachine* machine)
    : procedureFolder(debugPath.isEmpty() ? QString() : FolderOf(debugPath, procedureName))
    , machine(machine)
{
}

void ZELKinPathSolvingDiagnostics::BeginScript(bool isLink, int index)
{
    if (!IsEnabled())
        return;
    const QString name = isLink ? QStringLiteral("link %1") : QStringLiteral("course %1");
    scriptFolder = QDir(procedureFolder).filePath(name.arg(index + 1));
    QDir().mkpath(scriptFolder);
    solutions.close();
    seriesList.close();
    solutions.setFileName(QDir(scriptFolder).filePath(QStringLiteral("solutions.txt")));
    seriesList.setFileName(QDir(scriptFolder).filePath(QStringLiteral("seriesList.txt")));
    Open(solutions, QIODevice::WriteOnly | QIODevice::Truncate);
    Open(seriesList, QIODevice::WriteOnly | QIODevice::Truncate);
}

void ZELKinPathSolvingDiagnostics::WriteCandidates(int pointNumber, const QList<ZELKinSolution>& candidates)
{
    if (!IsEnabled())
        return;
    QString text = QStringLiteral("Solutions for point %1\n").arg(pointNumber);
    for (const ZELKinSolution& candidate : candidates)
        text += Describe(candidate) + QLatin1Char('\n');
    Write(solutions, text);
}

void ZELKinPathSolvingDiagnostics::WriteStep(int pointNumber, const QList<ZELKinSolutionSeries>& before,
                                             QList<ZELKinSolutionSeries>& after)
{
    if (!IsEnabled())
        return;
    QSet<quint32> ids;
    QString line = QStringLiteral("%1: ").arg(pointNumber);
    for (ZELKinSolutionSeries& series : after) {
        while (ids.contains(series.GetId()))
            series.RenewId();
        ids.insert(series.GetId());
        line += QString::number(series.GetId()) + QLatin1Char(',');
    }
    Write(seriesList, line + QLatin1Char('\n'));
    for (const ZELKinSolutionSeries& series : after)
        WriteSeries(series);
    for (const ZELKinSolutionSeries& series : before) {
        if (ids.contains(series.GetId()))
            continue;
        QFile file(SeriesFileOf(stepFolder, series.GetId()));
        if (Open(file, QIODevice::Append))
            Write(file, kAbortedLine);
    }
    stepFolder = scriptFolder;
}

QString ZELKinPathSolvingDiagnostics::Describe(const ZELKinSolution& solution) const
{
    QString text;
    const QList<ZELKinVariable*> variables = machine ? machine->GetVariables() : solution.GetDefinedVariables();
    for (ZELKinVariable* variable : variables) {
        if (!variable || !solution.IsDefined(variable))
            continue;
        const double value = InOutputUnit(variable, solution.GetVariableValue(variable));
        text += QLatin1Char('\t') + variable->GetLabel() + QLatin1Char('=') + QString::number(value);
    }
    return text.isEmpty() ? QStringLiteral("\tinfinite") : text;
}

QString ZELKinPathSolvingDiagnostics::SeriesFileOf(const QString& folder, quint32 id) const
{
    return QDir(folder).filePath(QStringLiteral("series %1.txt").arg(id));
}

void ZELKinPathSolvingDiagnostics::WriteSeries(const ZELKinSolutionSeries& series) const
{
    QFile file(SeriesFileOf(scriptFolder, series.GetId()));
    if (!Open(file, QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    const QList<ZELKinSolution> entries = series.GetSolutions();
    QString text;
    for (int index = 0; index < entries.size(); ++index)
        text += QStringLiteral("%1: ").arg(index) + Describe(entries.at(index)) + QLatin1Char('\n');
    Write(file, text);
}

bool ZELKinPathSolvingDiagnostics::Open(QFile& file, QIODevice::OpenMode mode)
{
    if (file.open(mode | QIODevice::Text))
        return true;
    qWarning().noquote() << QCoreApplication::translate("ZELKinSolver", "Cannot write the path solving file %1")
                                .arg(file.fileName());
    return false;
}

void ZELKinPathSolvingDiagnostics::Write(QFile& file, const QString& text)
{
    if (file.isOpen())
        file.write(text.toUtf8());
}
