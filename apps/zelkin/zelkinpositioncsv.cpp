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

#include <algorithm>
#include <cmath>

namespace {

constexpr double kDegreesPerRadian = 57.29577951308232;

QByteArray Field(const QString& text)
{
    QByteArray field = text.toUtf8();
    if (!field.contains(',') && !field.contains('"') && !field.contains('\n') && !field.contains('\r'))
        return field;
    field.replace("\"", "\"\"");
    return '"' + field + '"';
}

QByteArray ValueField(const ZELKinPosition& position, const ZELKinVariable* variable)
{
    if (!position.IsVariableDefined(variable))
        return QByteArray();
    double value = position.GetVariableValue(variable);
    if (variable->GetType() == ZELKinVariable::Rotary)
        value *= kDegreesPerRadian;
    return QByteArray::number(value, 'f', 6);
}

class CsvWriter
{
public:
    CsvWriter(const ZELKinProgram& program, QIODevice* device)
        : m_variables(program.GetMachine()->GetVariables())
        , m_device(device)
    {
    }

    void WriteHeader()
    {
        QByteArray line("procedure,script,index");
        for (const ZELKinVariable* variable : m_variables)
            line += ',' + Field(variable->GetLabel());
        WriteLine(line);
    }

    void WriteProcedure(const ZELKinProcedure& procedure)
    {
        const ZELTPProcedure* source = procedure.GetToolPathProcedure();
        m_procedure = Field(source ? source->GetName() : procedure.objectName());
        if (const auto* layup = qobject_cast<const ZELKinRollLayupProcedure*>(&procedure))
            WriteRollLayup(*layup);
        else
            WriteScript(QStringLiteral("probing"), procedure);
    }

    bool IsOk() const { return m_ok; }

private:
    // Links and courses in the order the machine runs them: link 0,
    // course 0, link 1, and so on.
    void WriteRollLayup(const ZELKinRollLayupProcedure& procedure)
    {
        const int scripts = std::max(procedure.GetNumCourseLinks(), procedure.GetNumCourses());
        for (int i = 0; i < scripts; ++i) {
            if (i < procedure.GetNumCourseLinks())
                WriteScript(QStringLiteral("link %1").arg(i + 1), *procedure.GetCourseLink(i));
            if (i < procedure.GetNumCourses())
                WriteScript(QStringLiteral("course %1").arg(i + 1), *procedure.GetCourse(i));
        }
    }

    void WriteScript(const QString& name, const ZELKinScript& script)
    {
        const QByteArray prefix = m_procedure + ',' + Field(name) + ',';
        const int count = script.GetNumCommands();
        for (int index = 0; index < count; ++index) {
            if (const auto* position = qobject_cast<const ZELKinPosition*>(script.GetCommand(index)))
                WriteLine(prefix + QByteArray::number(index) + Values(*position));
        }
    }

    QByteArray Values(const ZELKinPosition& position) const
    {
        QByteArray values;
        for (const ZELKinVariable* variable : m_variables)
            values += ',' + ValueField(position, variable);
        return values;
    }

    void WriteLine(const QByteArray& line)
    {
        m_ok = m_ok && m_device->write(line + '\n') == line.size() + 1;
    }

    const QList<ZELKinVariable*> m_variables;
    QIODevice* const m_device;
    QByteArray m_procedure;
    bool m_ok = true;
};

} // namespace

bool ZELKinPositionCsv::Write(const ZELKinProgram& program, QIODevice* device)
{
    CsvWriter writer(program, device);
    writer.WriteHeader();
    for (const ZELKinProcedure* procedure : program.GetProcedures())
        writer.WriteProcedure(*procedure);
    return writer.IsOk();
}
