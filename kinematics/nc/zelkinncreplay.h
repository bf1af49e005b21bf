#ifndef ZELKINNCREPLAY_H
#define ZELKINNCREPLAY_H

#include "zelkinematics_export.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>
#include <memory>

class ZELKinAFPMachine;
class ZELKinNCReplayPrivate;

//! One motion line of a posted ply file and the axis values the machine
//! stands at once it has run.
struct ZELKinNCMotion
{
    //! The line's number in its file on disk, from 1.
    unsigned line = 0;
    //! The course the line belongs to, from the course record before it
    //! ("CourseNumber="); 0 before the first course.
    int course = 0;
    //! A line along the course: between COURSE_MODE and OFF_COURSE_MODE, and
    //! the first off-part point after it. Other lines belong to the links.
    bool alongCourse = false;
    //! A rapid move (G0), which runs at the machine's own speed.
    bool rapid = false;
    //! Every machine variable in the machine's order, in model units (mm,
    //! rad; the material axis in mm of material): the modal value after the
    //! line, NaN until a line sets it. X, Y and Z are the roller centre, as
    //! TRAORI reads them.
    QVector<double> values;
    //! The values the line starts from: the last line's, with any preset
    //! since then (the course start's "G92(U,0.0000)") applied.
    QVector<double> starts;
    //! Per machine variable: whether the line writes its word. A word left
    //! out keeps the value the controller holds.
    QVector<bool> written;
    //! The modal feed (mm/min); NaN until a line sets it.
    double feedrate = std::numeric_limits<double>::quiet_NaN();
    //! For a link line, its link among the procedure's course links: the
    //! approach into course n is link n - 1, the retract after it link n.
    //! -1 along a course and before the first course record.
    int link = -1;
};

//! One tow event of a course's ";PMAC1: G500" lines.
struct ZELKinNCTowEvent
{
    unsigned line = 0;
    int course = 0;
    //! Material from the course start (mm).
    double u = 0.0;
    //! "A/B", "A/E", "C/B", "P/B" or "P/E".
    QString code;
    //! Bit 0 is tow 1.
    quint64 tows = 0;
};

//! Something the files hold that the post never writes, found while they
//! are read: a number the controller would read otherwise than a person,
//! a code that stops the program or that the post does not write among
//! motion lines, a file the program does not account for.
struct ZELKinNCIrregularity
{
    //! "number", "code" or "program".
    QString check;
    //! The file on disk and the line (0 for a whole file).
    QString file;
    unsigned line = 0;
    int course = 0;
    //! The word or code it is about; empty for a file.
    QString subject;
    //! One sentence for people.
    QString message;
};

//! What one ply file of a posted program holds, as the controller reads it.
struct ZELKinNCPlyFile
{
    //! The file on disk that holds the lines: the ply file, or the bundle.
    QString path;
    //! The ply file's own name, "NAME#0101.PPF" (a section name in a bundle).
    QString name;
    //! "0101".
    QString plyNumber;
    //! The procedure the program-set file names for the ply.
    QString procedure;
    QList<ZELKinNCMotion> motions;
    QList<ZELKinNCTowEvent> towEvents;
    //! The line of each course's record (";[COURSE] CourseNumber="), by
    //! course number.
    QMap<int, unsigned> courseRecords;
    QList<ZELKinNCIrregularity> irregularities;
};

//! A posted program as the controller reads it.
struct ZELKinNCProgram
{
    //! The ply files the program-set file lists, in ply number order.
    QList<ZELKinNCPlyFile> plies;
    //! Files beside them that do not belong: a second program-set file, a
    //! ply file the program-set file does not list.
    QList<ZELKinNCIrregularity> irregularities;
};

//! One ply of a posted program as its program-set file lists it, before
//! its lines are read.
struct ZELKinNCPlyListing
{
    //! The file on disk that holds the lines: the ply file, or the bundle.
    QString path;
    //! The ply file's own name, "NAME#0101.PPF" (a section name in a bundle).
    QString name;
    //! "0101".
    QString plyNumber;
    //! The procedure the program-set file names for the ply.
    QString procedure;
    //! The line of the file on disk that comes before the ply's first: 0
    //! for a ply file, the section's start in a bundle.
    unsigned firstLine = 0;
};

//! The plies a posted program lists, none of them read yet.
struct ZELKinNCPlySet
{
    //! In ply number order, as ZELKinNCProgram::plies.
    QList<ZELKinNCPlyListing> plies;
    //! As ZELKinNCProgram::irregularities.
    QList<ZELKinNCIrregularity> irregularities;
};

/*!
    Reads posted NC files back as a controller runs them: the program-set
    file for the list of plies, then each ply file line by line, keeping
    every axis word modal. A word is an address (capital letters and
    underscores, with one digit when "=" follows it) and its value; numbers
    are read whole, exponent and sign included, so that "F2e+05" is 200000
    as a controller reads it (and an irregularity, since the post writes
    plain decimals). Inches and degrees are converted back to mm and rad;
    the material axis is in mm already. The probing file is not read.

    Read holds every ply at once. ReadPlySet and ReadPly hold one: the
    program-set file is read for the list of plies, then each ply file (or
    bundle section) on its own, line by line, when its caller asks for it.

    Throws ZELSysException for a path that holds no posted program, or
    several, and for a file that cannot be read or holds what no NC text
    does (a line too long, a NUL character: /dev/zero, a binary file).
*/
class ZELKINEMATICS_EXPORT ZELKinNCReplay
{
public:
    //! `machine` (not owned) gives the axis labels, their kinds and the
    //! material axis.
    explicit ZELKinNCReplay(const ZELKinAFPMachine& machine);
    virtual ~ZELKinNCReplay();

    //! Refuses posted files that hold more than `characters` characters in
    //! all (line ends not counted), since every line is kept: in Read, the
    //! files together; in ReadPly, the ply alone. No bound by default. Each
    //! line is bounded on its own (ZELKinNCLineReader).
    void SetMaximumLength(qint64 characters);

    //! `path` is what "zelkin post" was given: a folder (holding the
    //! program's folder, or the program's folder itself), a bundle file
    //! (.bun) or the .aptsource beside one.
    ZELKinNCProgram Read(const QString& path) const;

    //! The plies of the program at `path` (as Read takes it) and what does
    //! not belong to it, as Read finds them, reading the program-set file and
    //! no ply file. A bundle is read through once, no line of it kept.
    ZELKinNCPlySet ReadPlySet(const QString& path) const;
    //! One ply of ReadPlySet's, as Read gives it. The file is read again,
    //! so it must be one: a pipe or a device can be read by Read alone.
    ZELKinNCPlyFile ReadPly(const ZELKinNCPlyListing& ply) const;

protected:
    ZELKinNCReplay(ZELKinNCReplayPrivate* d);

    std::unique_ptr<ZELKinNCReplayPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinNCReplay)
    Q_DISABLE_COPY_MOVE(ZELKinNCReplay)
};

#endif // ZELKINNCREPLAY_H
