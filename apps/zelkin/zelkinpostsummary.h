#ifndef ZELKINPOSTSUMMARY_H
#define ZELKINPOSTSUMMARY_H

#include <QHash>
#include <QString>
#include <QStringList>

class ZELKinAFPMachine;
class ZELKinProgram;

/*!
    What "post" tells when it has written its files: each file with its
    size, then per ply its courses, positions, laid length and estimated
    run time (ZELKinRunTimeEstimator), read back from the files as the
    controller reads them (ZELKinNCReplay) two plies at a time, so that the
    figures are those of the NC and not of the solved program.
*/
class ZELKinPostSummary
{
public:
    //! `machine` and `program` (not owned) are those the files were posted
    //! for and from.
    ZELKinPostSummary(const ZELKinAFPMachine& machine, const ZELKinProgram& program);
    //! A program posted one procedure at a time: the positions of each
    //! roll layup procedure, by its toolpath procedure's name.
    ZELKinPostSummary(const ZELKinAFPMachine& machine, const QHash<QString, qint64>& positionsByProcedure);

    //! The files `files` (paths, in the order to list them) and, read back
    //! from `posted` (what the post was given: a folder or a bundle), the
    //! plies. Throws ZELSysException when the files cannot be read back.
    QString Describe(const QStringList& files, const QString& posted) const;
    //! The files alone: the single-ply mode writes no program-set file to
    //! read the plies back by.
    QString DescribeFiles(const QStringList& files) const;

private:
    QString DescribePlies(const QString& posted) const;

    const ZELKinAFPMachine& m_machine;
    const QHash<QString, qint64> m_positions;
};

#endif // ZELKINPOSTSUMMARY_H
