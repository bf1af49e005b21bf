#ifndef ZELKINNCREPLAY_P_H
#define ZELKINNCREPLAY_P_H

#include "zelkinncreplay.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>

class ZELSysProgress;

class ZELKinNCReplayPrivate
{
    Q_DECLARE_PUBLIC(ZELKinNCReplay)

public:
    ZELKinNCReplayPrivate(ZELKinNCReplay* q, const ZELKinAFPMachine& machine);
    virtual ~ZELKinNCReplayPrivate() = default;

    //! One posted file: a file of the folder, or a section of a bundle.
    struct Section
    {
        QString path;
        QString name;
        //! The line of the file on disk that comes before the section's first.
        unsigned firstLine = 0;
        QStringList lines;
    };

    //! Every file of the program's folder, or every section of its bundle,
    //! with all its lines.
    QList<Section> ReadSections(const QString& path) const;
    //! The same files or sections with the lines of the first program-set
    //! file alone.
    QList<Section> ReadSectionHeads(const QString& path) const;
    //! The plies the first program-set file among `sections` lists, and the
    //! files that do not belong, for the program at `path`.
    ZELKinNCPlySet ListPlies(const QString& path, const QList<Section>& sections) const;
    //! The plies of `sections`, in their order, replayed side by side.
    QList<ZELKinNCPlyFile> ReplayPlies(const QList<const Section*>& sections) const;
    //! Counts the section's lines in `progress` as they are run.
    ZELKinNCPlyFile ReplayPly(const Section& section, ZELSysProgress& progress) const;

    ZELKinNCReplay* const q_ptr;
    //! Per machine variable, in the machine's order: its address and the
    //! factor from its NC unit to the model's.
    QStringList labels;
    QVector<double> scales;
    qint64 maximumLength = std::numeric_limits<qint64>::max();
};

#endif // ZELKINNCREPLAY_P_H
