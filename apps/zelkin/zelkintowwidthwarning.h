#ifndef ZELKINTOWWIDTHWARNING_H
#define ZELKINTOWWIDTHWARNING_H

#include <QString>

class ZELTPProcedure;
class ZELTPProgram;

/*!
    The machine's tow width sizes the plies' areas, the toolpath's head the
    roller's tow count: a toolpath made for another head deserves a word,
    once, naming the first course that differs and how many do. Courses
    are numbered as the toolpath file lists them: in path order.
*/
class ZELKinTowWidthWarning
{
public:
    //! `machineWidth` is the machine's tow width (mm).
    explicit ZELKinTowWidthWarning(double machineWidth);

    //! Looks at the courses of procedure `index` of the toolpath file.
    void Inspect(int index, const ZELTPProcedure* procedure);
    //! Looks at every procedure of `toolpath`.
    void Inspect(const ZELTPProgram& toolpath);
    //! Warns (qWarning) when a course differs; says nothing otherwise.
    void Warn() const;

private:
    double m_machineWidth;
    QString m_firstPath;
    double m_firstWidth = 0.0;
    int m_count = 0;
};

#endif // ZELKINTOWWIDTHWARNING_H
