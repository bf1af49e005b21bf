#ifndef ZELKINRUNTIME_H
#define ZELKINRUNTIME_H

#include <QList>
#include <QString>

/*
    How long the machine takes to run posted NC, as ZELKinRunTimeEstimator
    works it out: plain values, per course and per ply.
*/

//! The estimated time of a stretch of NC: a course, a ply, a program.
struct ZELKinRunTime
{
    //! The time of every line that could be timed.
    double seconds = 0.0;
    int motionLines = 0;
    //! Lines whose time is not known: a rapid, or a move whose roller centre
    //! stays put, with no speed limit on any axis it moves; a feed move
    //! without a feed. Their time is left out of `seconds`.
    int untimedLines = 0;

    //! Whether `seconds` holds every line's time.
    bool IsComplete() const { return untimedLines == 0; }

    void Add(const ZELKinRunTime& other)
    {
        seconds += other.seconds;
        motionLines += other.motionLines;
        untimedLines += other.untimedLines;
    }
};

//! The lines of one course: from its course record to the next one's, so
//! its approach and its retract count with it.
struct ZELKinCourseRunTime : ZELKinRunTime
{
    //! The course number of the ply file, from 1; 0 for the lines before
    //! the first course record.
    int course = 0;
};

//! Every line of one ply file.
struct ZELKinPlyRunTime : ZELKinRunTime
{
    QString plyNumber;
    QString procedure;
    //! The courses that hold motion lines, in the file's order.
    QList<ZELKinCourseRunTime> courses;
};

#endif // ZELKINRUNTIME_H
