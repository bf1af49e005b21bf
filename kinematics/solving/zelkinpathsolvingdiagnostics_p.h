#ifndef ZELKINPATHSOLVINGDIAGNOSTICS_P_H
#define ZELKINPATHSOLVINGDIAGNOSTICS_P_H

#include "zelkinsolution.h"
#include "zelkinsolutionseries.h"

#include <QFile>
#include <QList>
#include <QString>

class ZELKinMachine;

/*!
    The text files in which path solving shows its work, written only when
    the solver has a debug path; without one every call returns at once.

    Layout under the debug path:

        <debug path>/
          <toolpath procedure name>/     (left out when the name is empty)
            course <n>/  or  link <n>/   (n = index of the course or course
                                          link + 1; one folder per script
                                          that holds positions)
              solutions.txt
              seriesList.txt
              series <id>.txt            (one per series live in the script)

    - solutions.txt: for each solved position, "Solutions for point <m>"
      (m = the position's number within its script, from 1), then one line
      per candidate of the solver, in its order. A candidate line lists,
      in the machine's variable order, each variable the candidate defines
      as a tab, the variable's label, "=" and the value (rotary variables in
      degrees, linear ones in millimetres); a candidate that defines none
      (the infinite solution) reads "\tinfinite".
    - seriesList.txt: one line after each chaining step: "<m>: " and the
      id of each live series followed by ",". A series whose id already
      appears in the line (a second copy of one predecessor) first draws a
      new id.
    - series <id>.txt: rewritten after each step in the script's folder:
      one line per entry, "<index>: " (from 0) and the variable list as in
      solutions.txt. When a series dies at a step, "<aborted>" is appended
      to the file it was last written to.

    Values are written in the shortest of fixed or scientific notation with
    six significant digits. The folders are made as needed; an existing
    file is overwritten. A file that cannot be opened is reported by a
    warning and left out.
*/
class ZELKinPathSolvingDiagnostics
{
public:
    //! Writes nothing when `debugPath` is empty. `machine` gives the order
    //! and the labels of the variables (null: each solution's own order).
    ZELKinPathSolvingDiagnostics(const QString& debugPath, const QString& procedureName,
                                 const ZELKinMachine* machine);

    //! Starts the files of a course or course link (the script's index).
    void BeginScript(bool isLink, int index);
    //! The candidates of the solved position `pointNumber`.
    void WriteCandidates(int pointNumber, const QList<ZELKinSolution>& candidates);
    /*!
        Records a chaining step at position `pointNumber`: `before` were the
        live series before it, `after` are the live ones now. Gives a new id
        to each series of `after` whose id an earlier one of `after` has.
    */
    void WriteStep(int pointNumber, const QList<ZELKinSolutionSeries>& before, QList<ZELKinSolutionSeries>& after);

private:
    bool IsEnabled() const { return !procedureFolder.isEmpty(); }
    QString Describe(const ZELKinSolution& solution) const;
    QString SeriesFileOf(const QString& folder, quint32 id) const;
    void WriteSeries(const ZELKinSolutionSeries& series) const;
    //! Opens `file` as `mode` | Text; warns when it cannot.
    static bool Open(QFile& file, QIODevice::OpenMode mode);
    static void Write(QFile& file, const QString& text);

    //! The folder of the procedure; empty when nothing is written.
    QString procedureFolder;
    const ZELKinMachine* const machine;
    //! The folder of the current script, and of the last chaining step.
    QString scriptFolder;
    QString stepFolder;
    QFile solutions;
    QFile seriesList;
};

#endif // ZELKINPATHSOLVINGDIAGNOSTICS_P_H
