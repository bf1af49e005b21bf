#include "zelkinpositioncsv.h"

#include <zelkincourse.h>
#include <zelkincourselink.h>
#include <zelkinmachine.h>
#include <zelkinposition.h>
#include <zelkinprobeprocedure.h>
#include <zelkinprogram.h>
#include <zelkinrolllayupprocedure.h>
#include <zelkinvariable.h>
#include <zeltpprocedure.h>

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

QByteArray ValueField(const ZELKinPosition& position, const ZELKinVariable* variable)
{
    if (!position.IsVariableDefined(variable))
        return QByteArray();
    double value = position.GetVariableValue(variable);
    if (variable->GetType() == ZELKinVariable::Rotary)
        value = qRadiansToDegrees(value);
    return QByteArray::number(value, 'f', 6);
}

// Every position of a program in the order the machine runs them, with the
// key that names it: procedure, script and index.
class PositionWalk
{
public:
    using Visit = std::function<void(const QByteArray& key, const ZELKinPosition& position)>;

    explicit PositionWalk(Visit visit)
        : m_visit(std::move(visit))
    {
    }

    void WalkProgram(const ZELKinProgram& program)
    {
        for (const ZELKinProcedure* procedure : program.GetProcedures())
            WalkProcedure(*procedure);
    }

private:
    void WalkProcedure(const ZELKinProcedure& procedure)
    {
        const ZELTPProcedure* source = procedure.GetToolPathProcedure();
        m_procedure = ZELKinPositionCsv::Field(source ? source->GetName() : procedure.objectName());
        if (const auto* layup = qobject_cast<const ZELKinRollLayupProcedure*>(&procedure))
            WalkRollLayup(*layup);
        else
            WalkScript(QStringLiteral("probing"), procedure);
    }

    // Links and courses in the order the machine runs them: link 0,
    // course 0, link 1, and so on.
    void WalkRollLayup(const ZELKinRollLayupProcedure& procedure)
    {
        const int scripts = std::max(procedure.GetNumCourseLinks(), procedure.GetNumCourses());
        for (int i = 0; i < scripts; ++i) {
            if (i < procedure.GetNumCourseLinks())
                WalkScript(QStringLiteral("link %1").arg(i + 1), *procedure.GetCourseLink(i));
            if (i < procedure.GetNumCourses())
                WalkScript(QStringLiteral("course %1").arg(i + 1), *procedure.GetCourse(i));
        }
    }

    void WalkScript(const QString& name, const ZELKinScript& script)
    {
        const QByteArray prefix = m_procedure + ',' + ZELKinPositionCsv::Field(name) + ',';
        const int count = script.GetNumCommands();
        for (int index = 0; index < count; ++index) {
            if (const auto* position = qobject_cast<const ZELKinPosition*>(script.GetCommand(index)))
                m_visit(prefix + QByteArray::number(index), *position);
        }
    }

    Visit m_visit;
    QByteArray m_procedure;
};

QByteArray Values(const QList<ZELKinVariable*>& variables, const ZELKinPosition& position)
{
    QByteArray values;
    for (const ZELKinVariable* variable : variables)
        values += ',' + ValueField(position, variable);
    return values;
}

} // namespace

QByteArray ZELKinPositionCsv::Field(const QString& text)
{
    QByteArray field = text.toUtf8();
    if (!field.contains(',') && !field.contains('"') && !field.contains('\n') && !field.contains('\r'))
        return field;
    field.replace("\"", "\"\"");
    return '"' + field + '"';
}

bool ZELKinPositionCsv::Write(const ZELKinProgram& program, QIODevice* device)
{
    const QList<ZELKinVariable*> variables = program.GetMachine()->GetVariables();
    bool ok = true;
    const auto writeLine = [&](const QByteArray& line) { ok = ok && device->write(line + '\n') == line.size() + 1; };
    QByteArray header("procedure,script,index");
    for (const ZELKinVariable* variable : variables)
        header += ',' + Field(variable->GetLabel());
    writeLine(header);
    PositionWalk([&](const QByteArray& key, const ZELKinPosition& position) {
        writeLine(key + Values(variables, position));
    }).WalkProgram(program);
    return ok;
}

QHash<const ZELKinPosition*, QByteArray> ZELKinPositionCsv::GetKeys(const ZELKinProgram& program)
{
    QHash<const ZELKinPosition*, QByteArray> keys;
    PositionWalk([&keys](const QByteArray& key, const ZELKinPosition& position) {
        keys.insert(&position, key);
    }).WalkProgram(program);
    return keys;
}
